#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>

#include "TarnFWContainer.h"
#include "TarnFWL7Attribute.h"

namespace TarnFirewall {

/// A container of layer-7 attributes that a rule refers to by name. Attributes of one key stand
/// together in its text.
class CTarnFWAttrProfile final : public CTarnFWContainer {
 public:
  /// Throws `CInvalidContainerNameException` for a name of more than 37 characters.
  explicit CTarnFWAttrProfile(const std::string& name);

  /// Takes attributes only: anything else is logged and changes nothing.
  bool addElement(std::unique_ptr<CTarnFWContainerElement> element) override;

  /// The same for an attribute; null is ignored.
  bool addAttribute(std::unique_ptr<CTarnFWL7Attribute> attribute);

  /// The name, and a line for each key with all its values.
  std::string toString() const override;

 private:
  struct Less {
    bool operator()(const CTarnFWL7Attribute* left, const CTarnFWL7Attribute* right) const {
      return *left < *right;
    }
  };

  bool join(std::unique_ptr<CTarnFWL7Attribute> attribute);

  /// Elements of the container by key, not owned.
  std::map<FWAttrKeyID, std::set<const CTarnFWL7Attribute*, Less>> groups_;
};

}  // namespace TarnFirewall
