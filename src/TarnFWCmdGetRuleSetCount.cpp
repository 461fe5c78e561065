#include "TarnFWCmdGetRuleSetCount.h"

namespace TarnFirewall {

std::string CTarnFWCmdGetRuleSetCount::toString() const {
  return "describe count of ruleset" + dvsportToString("of");
}

void CTarnFWCmdGetRuleSetCount::print(const CTarnFWCmdReply& reply,
                                      const PrettyPrinting& out) const {
  out.print(out.context, "ruleset count : %d\n", static_cast<int>(count(reply)));
}

}  // namespace TarnFirewall
