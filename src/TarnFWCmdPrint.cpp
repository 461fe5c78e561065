#include "TarnFWCmdPrint.h"

#include "TarnFWBootTime.h"

namespace TarnFirewall {

void printRealization(const CTarnFWCmdReply& reply, std::size_t time, const char* prefix,
                      const PrettyPrinting& out) {
  out.print(out.context, "%sgeneration number: %llu\n", prefix, wide(reply.longWord(time + 8)));
  const FWLocalTime_ t = bootsec2local(reply.longWord(time));
  out.print(out.context, "%srealization time : %04d-%02d-%02dT%02d:%02d:%02d\n", prefix, t.year,
            t.month, t.day, t.hour, t.minute, t.second);
}

}  // namespace TarnFirewall
