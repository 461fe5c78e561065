#include "TarnFWCmdCheckSpoofGuard.h"

#include "TarnFWRuleText.h"
#include "TarnFWStatus.h"

namespace TarnFirewall {

namespace {

/// The addresses on one line. One without a text is left out, and the last one ends the line:
/// without it the MAC address stands on the same line, as scripts that read the output expect.
void printAddresses(const CTarnFWReplyRecords<FWAddress_>& addresses, const PrettyPrinting& out) {
  const std::uint32_t count = addresses.size();
  for (std::uint32_t i = 0; i < count; ++i) {
    const bool isLast = i + 1 == count;
    const FWAddress_ address = addresses[i];
    char text[512];
    const FWStatus_t status = addressesToText(&address, 1, text, sizeof text);
    if (status == FW_STATUS_OK) {
      out.print(out.context, isLast ? "%s\n" : "%s, ", text);
    } else if (isLast) {
      TARNFW_LOG_IN(kCheckCmdReply, LOG_ERR, "Failed to parse ip address: %s\n\n",
                    statusText(status));
    } else {
      TARNFW_LOG_IN(kCheckCmdReply, LOG_ERR, "Failed to parse %u ip address: %s\n\n", i,
                    statusText(status));
    }
  }
}

}  // namespace

void CTarnFWCmdCheckSpoofGuard::print(const CTarnFWCmdReply& reply,
                                      const PrettyPrinting& out) const {
  out.print(out.context, "%s", enabled(reply) ? "enabled : " : "disabled : ");
  printAddresses(addresses(reply), out);
  const fw_ether_ address = mac(reply);
  const std::uint8_t* const m = address.octet;
  out.print(out.context, "MAC = %02x:%02x:%02x:%02x:%02x:%02x\n", m[0], m[1], m[2], m[3], m[4],
            m[5]);
}

}  // namespace TarnFirewall
