#include "TarnFWCmdGetRuleOfRuleSet.h"

#include "TarnFWCmdPrint.h"
#include "TarnFWRuleText.h"

namespace TarnFirewall {

void CTarnFWCmdGetRuleOfRuleSet::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t rules = records(reply).checkedSize();
  TARNFW_TRACE_IN(kCheckCmdReply, LOG_DEBUG, FW_COMPONENT_CMD, 0,
                  "retrieved %d rules of ruleset %s\n", static_cast<int>(rules), name().c_str());
}

void CTarnFWCmdGetRuleOfRuleSet::print(const CTarnFWCmdReply& reply,
                                       const PrettyPrinting& out) const {
  printRealization(reply, 80, "# ", out);
  const CTarnFWReplyRecords<FWRule_> rules = records(reply);
  for (std::uint32_t i = 0; i < rules.size(); ++i) {
    const FWRule_ rule = rules[i];
    char text[512];
    if (const FWStatus_t status = rulesToText(&rule, 1, text, sizeof text, false)) {
      TARNFW_TRACE_IN(kCheckCmdReply, LOG_DEBUG, FW_COMPONENT_CMD, 0,
                      "failed to convert rule #%d: %d\n", static_cast<int>(i),
                      static_cast<int>(status));
      break;
    }
    out.print(out.context, "%s\n", text);
  }
}

}  // namespace TarnFirewall
