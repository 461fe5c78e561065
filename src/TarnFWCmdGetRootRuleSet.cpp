#include "TarnFWCmdGetRootRuleSet.h"

namespace TarnFirewall {

std::string CTarnFWCmdGetRootRuleSet::toString() const {
  return "describe root ruleset" + dvsportToString("of");
}

void CTarnFWCmdGetRootRuleSet::print(const CTarnFWCmdReply& reply,
                                     const PrettyPrinting& out) const {
  out.print(out.context, "layer3 root ruleset : %s\n", reply.text(0, 64).c_str());
  out.print(out.context, "layer2 root ruleset : %s\n", reply.text(64, 64).c_str());
}

}  // namespace TarnFirewall
