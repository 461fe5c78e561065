#include "TarnFWCmdGetKifFlags.h"

namespace TarnFirewall {

void CTarnFWCmdGetKifFlags::print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const {
  const auto flags = reply.record<FWKifFlags_>(0);
  out.print(out.context, "kif flags: (0x%x)\n", static_cast<std::uint32_t>(flags.mask));
  for (unsigned int i = 0; i < kKifFlags; ++i) {
    const std::string name = fieldText(flags.names[i]);
    if (name.empty()) continue;
    out.print(out.context, "    %-40s %d\n", name.c_str(), flags.values[i]);
  }
}

}  // namespace TarnFirewall
