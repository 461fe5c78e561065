#include "TarnFWCmdGetAddrValidOfAddrSet.h"

#include "TarnFWAddress.h"
#include "TarnFWRuleText.h"

namespace TarnFirewall {

void CTarnFWCmdGetAddrValidOfAddrSet::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t addresses = records(reply).checkedSize();
  TARNFW_TRACE_IN(kCheckCmdReply, LOG_DEBUG, FW_COMPONENT_CMD, 0,
                  "retrieved %d addresses of addrset %s\n", static_cast<int>(addresses),
                  name().c_str());
}

void CTarnFWCmdGetAddrValidOfAddrSet::print(const CTarnFWCmdReply& reply,
                                            const PrettyPrinting& out) const {
  const CTarnFWReplyRecords<FWAddressValid_> addresses = records(reply);
  for (std::uint32_t i = 0; i < addresses.size(); ++i) {
    const FWAddressValid_ record = addresses[i];
    const auto address = loadRecord<FWAddress_>(record.address);
    char text[512];
    if (const FWStatus_t status = addressesToText(&address, 1, text, sizeof text)) {
      TARNFW_TRACE_IN(kCheckCmdReply, LOG_DEBUG, FW_COMPONENT_CMD, 0,
                      "failed to convert address #%d: %d\n", static_cast<int>(i),
                      static_cast<int>(status));
      break;
    }
    out.print(out.context, "%s  dlb_valid_cnt = 0x%02x\n", text, record.validCount);
  }
}

}  // namespace TarnFirewall
