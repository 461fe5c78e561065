#include "TarnFWCmdGetStatOfRuleSet.h"

#include "TarnFWLog.h"

namespace TarnFirewall {

namespace {

unsigned long long number(const host64& value) { return static_cast<std::uint64_t>(value); }

}  // namespace

std::uint32_t CTarnFWCmdGetStatOfRuleSet::returned(const CTarnFWCmdReply& reply) const {
  return entries(reply, records(reply), sizeof(FWRuleStat_));
}

FWRuleStat_ CTarnFWCmdGetStatOfRuleSet::statAt(const CTarnFWCmdReply& reply, std::uint32_t index) {
  return reply.record<FWRuleStat_>(records(reply) + sizeof(FWRuleStat_) * index);
}

void CTarnFWCmdGetStatOfRuleSet::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t stats = returned(reply);
  TARNFW_TRACE(FW_COMPONENT_CMD, 0, "retrieved %d stats of ruleset %s\n", static_cast<int>(stats),
               name().c_str());
  const PrettyPrinting out;
  if (!out) return;
  for (std::uint32_t i = 0; i < stats; ++i) {
    const FWRuleStat_ stat = statAt(reply, i);
    out.print(out.context,
              "rule %5u: %llu evals, %llu hits, %llu sessions, in %llu out %llu pkts, in %llu out "
              "%llu bytes\n",
              std::uint32_t{stat.id}, number(stat.evaluations), number(stat.hits),
              number(stat.sessions), number(stat.packetsIn), number(stat.packetsOut),
              number(stat.bytesIn), number(stat.bytesOut));
  }
}

}  // namespace TarnFirewall
