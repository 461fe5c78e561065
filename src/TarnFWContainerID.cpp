#include "TarnFWContainerID.h"

#include "TarnFWException.h"
#include "TarnFWText.h"

namespace TarnFirewall {

void checkContainerName(const std::string& name) {
  if (name.size() <= kContainerNameLength) return;
  // No blank between the length and "greater": scripts match the text as it is.
  throw CInvalidContainerNameException(
      name, formatText("size: %zugreater than max size: %zu", name.size(), kContainerNameLength));
}

CTarnFWContainerID::CTarnFWContainerID(const std::string& name) : name_(name) {
  checkContainerName(name);
}

CTarnFWContainerID::CTarnFWContainerID(const FWAddrSetID_t& id)
    : name_(id.text, fieldLength(id.text, sizeof id.text)) {}

}  // namespace TarnFirewall
