#include "TarnFWCmdGetRuleSetCount.h"

#include "TarnFWLog.h"

namespace TarnFirewall {

std::string CTarnFWCmdGetRuleSetCount::toString() const {
  return "describe count of ruleset" + dvsportToString("of");
}

void CTarnFWCmdGetRuleSetCount::read(const CTarnFWCmdReply& reply) {
  if (const PrettyPrinting out; out) {
    out.print(out.context, "ruleset count : %d\n", static_cast<int>(count(reply)));
  }
}

}  // namespace TarnFirewall
