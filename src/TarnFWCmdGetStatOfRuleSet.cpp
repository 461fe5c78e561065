#include "TarnFWCmdGetStatOfRuleSet.h"

#include "TarnFWCmdPrint.h"

namespace TarnFirewall {

void CTarnFWCmdGetStatOfRuleSet::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t stats = records(reply).checkedSize();
  TARNFW_TRACE_IN(kCheckCmdReply, LOG_DEBUG, FW_COMPONENT_CMD, 0,
                  "retrieved %d stats of ruleset %s\n", static_cast<int>(stats), name().c_str());
}

void CTarnFWCmdGetStatOfRuleSet::print(const CTarnFWCmdReply& reply,
                                       const PrettyPrinting& out) const {
  for (const FWRuleStat_& stat : records(reply)) {
    out.print(out.context,
              "rule %5u: %llu evals, %llu hits, %llu sessions, in %llu out %llu pkts, in %llu out "
              "%llu bytes\n",
              std::uint32_t{stat.id}, wide(stat.evaluations), wide(stat.hits), wide(stat.sessions),
              wide(stat.packetsIn), wide(stat.packetsOut), wide(stat.bytesIn), wide(stat.bytesOut));
  }
}

}  // namespace TarnFirewall
