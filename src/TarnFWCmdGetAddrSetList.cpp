#include "TarnFWCmdGetAddrSetList.h"

#include "TarnFWText.h"

namespace TarnFirewall {

std::string CTarnFWCmdGetAddrSetList::toString() const {
  std::string text = "describe list of addrset";
  if (from() != 0) appendText(text, " from %u", from());
  return text + dvsportToString("of");
}

void CTarnFWCmdGetAddrSetList::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t names = records(reply).checkedSize();
  TARNFW_TRACE_IN(kCheckCmdReply, LOG_DEBUG, FW_COMPONENT_CMD, 0, "retrieved %d addrsets\n",
                  static_cast<int>(names));
}

void CTarnFWCmdGetAddrSetList::print(const CTarnFWCmdReply& reply,
                                     const PrettyPrinting& out) const {
  for (const FWAddrSetID_t& name : records(reply)) {
    out.print(out.context, "%s\n", fieldText(name.text).c_str());
  }
}

}  // namespace TarnFirewall
