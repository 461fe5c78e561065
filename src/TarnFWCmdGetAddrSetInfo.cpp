#include "TarnFWCmdGetAddrSetInfo.h"

#include "TarnFWCmdPrint.h"

namespace TarnFirewall {

void CTarnFWCmdGetAddrSetInfo::print(const CTarnFWCmdReply& reply,
                                     const PrettyPrinting& out) const {
  out.print(out.context, "address count    : %u\n", count(reply));
  printRealization(reply, 42, "", out);
}

}  // namespace TarnFirewall
