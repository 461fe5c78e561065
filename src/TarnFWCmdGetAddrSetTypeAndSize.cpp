#include "TarnFWCmdGetAddrSetTypeAndSize.h"

namespace TarnFirewall {

void CTarnFWCmdGetAddrSetTypeAndSize::print(const CTarnFWCmdReply& reply,
                                            const PrettyPrinting& out) const {
  out.print(out.context, "addrset type : %d\n", static_cast<int>(type(reply)));
  out.print(out.context, "addrset elements count : %d\n", static_cast<int>(count(reply)));
  out.print(out.context, "addrset serialize size : %d\n", static_cast<int>(serializedSize(reply)));
}

}  // namespace TarnFirewall
