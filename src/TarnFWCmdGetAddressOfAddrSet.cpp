#include "TarnFWCmdGetAddressOfAddrSet.h"

#include "TarnFWCmdPrint.h"
#include "TarnFWRuleText.h"
#include "TarnFWText.h"

namespace TarnFirewall {

std::string CTarnFWCmdGetAddressOfAddrSet::toString() const {
  std::string text = "describe address of addrset " + name();
  if (from() != 0) appendText(text, " from %u", from());
  return text + dvsportToString("of");
}

void CTarnFWCmdGetAddressOfAddrSet::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t addresses = records(reply).checkedSize();
  TARNFW_TRACE_IN(kCheckCmdReply, LOG_DEBUG, FW_COMPONENT_CMD, 0,
                  "retrieved %d addresses of addrset %s\n", static_cast<int>(addresses),
                  name().c_str());
}

void CTarnFWCmdGetAddressOfAddrSet::print(const CTarnFWCmdReply& reply,
                                          const PrettyPrinting& out) const {
  printRealization(reply, 54, "# ", out);
  const CTarnFWReplyRecords<FWAddress_> addresses = records(reply);
  for (std::uint32_t i = 0; i < addresses.size(); ++i) {
    const FWAddress_ address = addresses[i];
    char text[512];
    if (const FWStatus_t status = addressesToText(&address, 1, text, sizeof text)) {
      TARNFW_TRACE_IN(kCheckCmdReply, LOG_DEBUG, FW_COMPONENT_CMD, 0,
                      "failed to convert address #%d: %d\n", static_cast<int>(i),
                      static_cast<int>(status));
      break;
    }
    out.print(out.context, "%s\n", text);
  }
}

}  // namespace TarnFirewall
