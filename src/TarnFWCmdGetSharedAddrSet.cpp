#include "TarnFWCmdGetSharedAddrSet.h"

#include "TarnFWLog.h"

namespace TarnFirewall {

std::string CTarnFWCmdGetSharedAddrSet::toString() const {
  return "describe shared addrset" + dvsportToString("of");
}

void CTarnFWCmdGetSharedAddrSet::read(const CTarnFWCmdReply& reply) {
  if (const PrettyPrinting out; out) {
    out.print(out.context, "shared addrset: %s\n", enabled(reply) ? "enabled" : "disabled");
  }
}

}  // namespace TarnFirewall
