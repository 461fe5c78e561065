#include "TarnFWCmdGetTimeout.h"

#include "TarnFWUtilTimeout.h"

namespace TarnFirewall {

void CTarnFWCmdGetTimeout::print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const {
  const FWInstTimeout_ timeouts = answer(reply);
  out.print(out.context, "Connection Timeouts:\n");
  for (unsigned int i = 0; i < kTimeouts; ++i) {
    if (timeouts.marks[i] == 0) continue;
    out.print(out.context, "   %-22s: %u\n", g_tarnfw_timeout_name[i],
              static_cast<std::uint32_t>(timeouts.values[i]));
  }
}

}  // namespace TarnFirewall
