#include "TarnFWCmdGetRuleSetInfo.h"

#include "TarnFWCmdPrint.h"

namespace TarnFirewall {

void CTarnFWCmdGetRuleSetInfo::print(const CTarnFWCmdReply& reply,
                                     const PrettyPrinting& out) const {
  out.print(out.context, "rule count       : %u\n", count(reply));
  printRealization(reply, 68, "", out);
}

}  // namespace TarnFirewall
