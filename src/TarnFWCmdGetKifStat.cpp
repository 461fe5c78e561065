#include "TarnFWCmdGetKifStat.h"

namespace TarnFirewall {

namespace {

constexpr std::size_t kFirstRow = 2;
constexpr std::size_t kRows = 40;

}  // namespace

void CTarnFWCmdGetKifStat::print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const {
  out.print(out.context, "PACKETS                       IN                OUT\n");
  out.print(out.context, "-------                       --                ---\n");
  for (std::size_t i = 0; i < kRows; ++i) {
    const auto row = reply.record<FWKifStatRow_>(kFirstRow + i * sizeof(FWKifStatRow_));
    const unsigned long in = row.in;
    const unsigned long outward = row.out;
    if (in == 0 && outward == 0) continue;
    out.print(out.context, "%-24s%8lu%19lu\n", fieldText(row.name).c_str(), in, outward);
  }
}

}  // namespace TarnFirewall
