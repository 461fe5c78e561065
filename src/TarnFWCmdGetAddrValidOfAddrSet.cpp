#include "TarnFWCmdGetAddrValidOfAddrSet.h"

#include "TarnFWAddress.h"
#include "TarnFWLog.h"
#include "tarnfw.h"

namespace TarnFirewall {

void CTarnFWCmdGetAddrValidOfAddrSet::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t records = returned(reply);
  TARNFW_TRACE(FW_COMPONENT_CMD, 0, "retrieved %d addresses of addrset %s\n",
               static_cast<int>(records), name().c_str());
  const PrettyPrinting out;
  if (!out) return;
  for (std::uint32_t i = 0; i < records; ++i) {
    const FWAddressValid_ record = recordAt(reply, i);
    const auto address = loadRecord<FWAddress_>(record.address);
    char text[512];
    if (const FWStatus_t status = FW_GetAddressString(&address, 1, text, sizeof text)) {
      TARNFW_TRACE(FW_COMPONENT_CMD, 0, "failed to convert address #%d: %d\n", static_cast<int>(i),
                   static_cast<int>(status));
      break;
    }
    out.print(out.context, "%s  dlb_valid_cnt = 0x%02x\n", text, record.validCount);
  }
}

}  // namespace TarnFirewall
