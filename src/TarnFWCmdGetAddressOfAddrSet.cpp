#include "TarnFWCmdGetAddressOfAddrSet.h"

#include "TarnFWBootTime.h"
#include "TarnFWLog.h"
#include "TarnFWText.h"
#include "tarnfw.h"

namespace TarnFirewall {

std::string CTarnFWCmdGetAddressOfAddrSet::toString() const {
  std::string text = "describe address of addrset " + name();
  if (from() != 0) appendText(text, " from %u", from());
  return text + dvsportToString("of");
}

void CTarnFWCmdGetAddressOfAddrSet::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t addresses = returned(reply);
  TARNFW_TRACE(FW_COMPONENT_CMD, 0, "retrieved %d addresses of addrset %s\n",
               static_cast<int>(addresses), name().c_str());
  const PrettyPrinting out;
  if (!out) return;
  out.print(out.context, "# generation number: %llu\n",
            static_cast<unsigned long long>(reply.longWord(62)));
  const FWLocalTime_ t = bootsec2local(reply.longWord(54));
  out.print(out.context, "# realization time : %04d-%02d-%02dT%02d:%02d:%02d\n", t.year, t.month,
            t.day, t.hour, t.minute, t.second);
  for (std::uint32_t i = 0; i < addresses; ++i) {
    const FWAddress_ address = addressAt(reply, i);
    char text[512];
    if (const FWStatus_t status = FW_GetAddressString(&address, 1, text, sizeof text)) {
      TARNFW_TRACE(FW_COMPONENT_CMD, 0, "failed to convert address #%d: %d\n", static_cast<int>(i),
                   static_cast<int>(status));
      break;
    }
    out.print(out.context, "%s\n", text);
  }
}

}  // namespace TarnFirewall
