#include "TarnFWCmdGetSharedAddrSet.h"

namespace TarnFirewall {

std::string CTarnFWCmdGetSharedAddrSet::toString() const {
  return "describe shared addrset" + dvsportToString("of");
}

void CTarnFWCmdGetSharedAddrSet::print(const CTarnFWCmdReply& reply,
                                       const PrettyPrinting& out) const {
  out.print(out.context, "shared addrset: %s\n", enabled(reply) ? "enabled" : "disabled");
}

}  // namespace TarnFirewall
