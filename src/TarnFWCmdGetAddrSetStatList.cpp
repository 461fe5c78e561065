#include "TarnFWCmdGetAddrSetStatList.h"

#include "TarnFWLog.h"

namespace TarnFirewall {

namespace {

unsigned long long number(const host64& value) { return static_cast<std::uint64_t>(value); }

}  // namespace

std::string CTarnFWCmdGetAddrSetStatList::toString() const {
  return "describe stat of addrset" + dvsportToString("of");
}

void CTarnFWCmdGetAddrSetStatList::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t stats = returned(reply);
  const PrettyPrinting out;
  if (!out) return;
  for (std::uint32_t i = 0; i < stats; ++i) {
    const FWAddrSetStat_ stat = statAt(reply, i);
    out.print(out.context, "addrset %s:\n", fieldText(stat.name.text).c_str());
    out.print(out.context, "    in + pass  : packets = %-16llu  bytes = %-16llu\n",
              number(stat.packetsInPass), number(stat.bytesInPass));
    out.print(out.context, "    in + drop  : packets = %-16llu  bytes = %-16llu\n",
              number(stat.packetsInDrop), number(stat.bytesInDrop));
    out.print(out.context, "    out + pass : packets = %-16llu  bytes = %-16llu\n",
              number(stat.packetsOutPass), number(stat.bytesOutPass));
    out.print(out.context, "    out + drop : packets = %-16llu  bytes = %-16llu\n",
              number(stat.packetsOutDrop), number(stat.bytesOutDrop));
    out.print(out.context, "    match = %-16llu  no_match = %-16llu  uptime = %-16llu\n",
              number(stat.match), number(stat.noMatch), number(stat.uptime));
  }
}

}  // namespace TarnFirewall
