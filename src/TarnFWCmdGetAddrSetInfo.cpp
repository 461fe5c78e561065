#include "TarnFWCmdGetAddrSetInfo.h"

#include "TarnFWBootTime.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

void CTarnFWCmdGetAddrSetInfo::read(const CTarnFWCmdReply& reply) {
  const PrettyPrinting out;
  if (!out) return;
  out.print(out.context, "address count    : %u\n", count(reply));
  out.print(out.context, "generation number: %llu\n",
            static_cast<unsigned long long>(generation(reply)));
  const FWLocalTime_ t = bootsec2local(realizationTime(reply));
  out.print(out.context, "realization time : %04d-%02d-%02dT%02d:%02d:%02d\n", t.year, t.month,
            t.day, t.hour, t.minute, t.second);
}

}  // namespace TarnFirewall
