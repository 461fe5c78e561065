#include "TarnFWCmdGetFailPolicy.h"

#include "TarnFWCmdSetFailPolicy.h"

namespace TarnFirewall {

std::string CTarnFWCmdGetFailPolicy::toString() const {
  return "describe failure policy" + dvsportToString("of");
}

void CTarnFWCmdGetFailPolicy::print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const {
  out.print(out.context, "filter fail policy: %s\n", failPolicyName(policy(reply)));
}

}  // namespace TarnFirewall
