#include "TarnFWCmdGetDlbOfRuleSet.h"

namespace TarnFirewall {

void CTarnFWCmdGetDlbOfRuleSet::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t rules = ids(reply).checkedSize();
  TARNFW_TRACE_IN(kCheckCmdReply, LOG_DEBUG, FW_COMPONENT_CMD, 0,
                  "retrieved %d dlb of ruleset %s\n", static_cast<int>(rules), name().c_str());
}

void CTarnFWCmdGetDlbOfRuleSet::print(const CTarnFWCmdReply& reply,
                                      const PrettyPrinting& out) const {
  for (const host32& id : ids(reply)) out.print(out.context, "rule %5u\n", std::uint32_t{id});
}

}  // namespace TarnFirewall
