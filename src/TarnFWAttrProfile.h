#pragma once

#include <memory>
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

  /// The same for an attribute; one without a key of the table is ignored silently.
  bool addAttribute(std::unique_ptr<CTarnFWL7Attribute> attribute);

  /// The name, and a line for each key with all its values.
  std::string toString() const override;
};

}  // namespace TarnFirewall
