#include "TarnFWCmdGetSpoofGuardStat.h"

#include "TarnFWCmdPrint.h"

namespace TarnFirewall {

void CTarnFWCmdGetSpoofGuardStat::print(const CTarnFWCmdReply& reply,
                                        const PrettyPrinting& out) const {
  const auto stat = reply.record<FWSpoofGuardStat_>(0);
  // Layer 2 before layer 3, although the record has them the other way: scripts read by the line.
  out.print(out.context, "l2 drop count     : %llu\n", wide(stat.l2Drop));
  out.print(out.context, "l3 drop count     : %llu\n", wide(stat.l3Drop));
  out.print(out.context, "invalid arp count : %llu\n", wide(stat.invalidArp));
  out.print(out.context, "unknown arp count : %llu\n", wide(stat.unknownArp));
  out.print(out.context, "bad MAC arp count : %llu\n", wide(stat.badMacArp));
  out.print(out.context, "bad IP arp count  : %llu\n", wide(stat.badIpArp));
  out.print(out.context, "good arp count    : %llu\n", wide(stat.goodArp));
}

}  // namespace TarnFirewall
