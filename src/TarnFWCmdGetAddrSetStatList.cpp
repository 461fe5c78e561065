#include "TarnFWCmdGetAddrSetStatList.h"

#include "TarnFWCmdPrint.h"

namespace TarnFirewall {

std::string CTarnFWCmdGetAddrSetStatList::toString() const {
  return "describe stat of addrset" + dvsportToString("of");
}

void CTarnFWCmdGetAddrSetStatList::read(const CTarnFWCmdReply& reply) {
  records(reply).checkedSize();
}

void CTarnFWCmdGetAddrSetStatList::print(const CTarnFWCmdReply& reply,
                                         const PrettyPrinting& out) const {
  for (const FWAddrSetStat_& stat : records(reply)) {
    const struct {
      const char* way;
      std::uint64_t packets;
      std::uint64_t bytes;
    } lines[] = {
        {"in + pass  :", stat.packetsInPass, stat.bytesInPass},
        {"in + drop  :", stat.packetsInDrop, stat.bytesInDrop},
        {"out + pass :", stat.packetsOutPass, stat.bytesOutPass},
        {"out + drop :", stat.packetsOutDrop, stat.bytesOutDrop},
    };
    out.print(out.context, "addrset %s:\n", fieldText(stat.name.text).c_str());
    for (const auto& line : lines) {
      out.print(out.context, "    %s packets = %-16llu  bytes = %-16llu\n", line.way,
                wide(line.packets), wide(line.bytes));
    }
    out.print(out.context, "    match = %-16llu  no_match = %-16llu  uptime = %-16llu\n",
              wide(stat.match), wide(stat.noMatch), wide(stat.uptime));
  }
}

}  // namespace TarnFirewall
