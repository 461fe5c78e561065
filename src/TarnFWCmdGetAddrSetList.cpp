#include "TarnFWCmdGetAddrSetList.h"

#include "TarnFWLog.h"
#include "TarnFWText.h"

namespace TarnFirewall {

std::string CTarnFWCmdGetAddrSetList::toString() const {
  std::string text = "describe list of addrset";
  if (from() != 0) appendText(text, " from %u", from());
  return text + dvsportToString("of");
}

void CTarnFWCmdGetAddrSetList::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t names = returned(reply);
  TARNFW_TRACE(FW_COMPONENT_CMD, 0, "retrieved %d addrsets\n", static_cast<int>(names));
  const PrettyPrinting out;
  if (!out) return;
  for (std::uint32_t i = 0; i < names; ++i) {
    out.print(out.context, "%s\n", fieldText(nameAt(reply, i).text).c_str());
  }
}

}  // namespace TarnFirewall
