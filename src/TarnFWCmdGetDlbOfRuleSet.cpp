#include "TarnFWCmdGetDlbOfRuleSet.h"

#include "TarnFWLog.h"

namespace TarnFirewall {

namespace {

constexpr unsigned int kIds = 80;

}  // namespace

std::uint32_t CTarnFWCmdGetDlbOfRuleSet::returned(const CTarnFWCmdReply& reply) const {
  return entries(reply, records(reply), sizeof(FWDlbRule_));
}

FWDlbRule_ CTarnFWCmdGetDlbOfRuleSet::ruleAt(const CTarnFWCmdReply& reply, std::uint32_t index) {
  return reply.record<FWDlbRule_>(records(reply) + sizeof(FWDlbRule_) * index);
}

void CTarnFWCmdGetDlbOfRuleSet::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t rules = entries(reply, kIds, sizeof(std::uint32_t));
  TARNFW_TRACE(FW_COMPONENT_CMD, 0, "retrieved %d dlb of ruleset %s\n", static_cast<int>(rules),
               name().c_str());
  const PrettyPrinting out;
  if (!out) return;
  for (std::uint32_t i = 0; i < rules; ++i) {
    out.print(out.context, "rule %5u\n", reply.word(kIds + std::size_t{4} * i));
  }
}

}  // namespace TarnFirewall
