#include "TarnFWCmdDebugStatus.h"

namespace TarnFirewall {

void CTarnFWCmdDebugStatus::fill(std::span<std::byte> body) const {
  storeAt(body, 21, static_cast<std::uint8_t>(kTarnComponents));
}

void CTarnFWCmdDebugStatus::print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const {
  out.print(out.context, "Filter debug status:\n");
  out.print(out.context, "    %-10s %-6s\n", "comp", "level");
  for (unsigned int i = 0; i < kTarnComponents; ++i) {
    out.print(out.context, "    %-10s %-6d\n", tarn_comp_name[i], reply.byte(i));
  }
}

}  // namespace TarnFirewall
