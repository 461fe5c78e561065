#pragma once

#include <string>

#include "TarnFWLoadValue.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// Characters of a container's name at most.
inline constexpr std::size_t kContainerNameLength = sizeof(FWAddrSetID_t) - 1;

/// Throws `CInvalidContainerNameException` for a name of more than 37 characters.
void checkContainerName(const std::string& name);

/// Reference to a container by its name.
class CTarnFWContainerID final : public CTarnFWLoadValue<CTarnFWContainerID> {
 public:
  /// Throws `CInvalidContainerNameException` for a name of more than 37 characters.
  explicit CTarnFWContainerID(const std::string& name);

  /// Takes the text up to its NUL, or the whole field when there is none; no length is refused.
  explicit CTarnFWContainerID(const FWAddrSetID_t& id);

  const std::string& getContainerID() const { return name_; }

 private:
  std::string name_;
};

}  // namespace TarnFirewall
