#include "TarnFWCmdGetRuleOfRuleSet.h"

#include "TarnFWBootTime.h"
#include "TarnFWLog.h"
#include "tarnfw.h"

namespace TarnFirewall {

std::uint32_t CTarnFWCmdGetRuleOfRuleSet::returned(const CTarnFWCmdReply& reply) const {
  return entries(reply, records(reply), sizeof(FWRule_));
}

std::uint32_t CTarnFWCmdGetRuleOfRuleSet::copyRules(const CTarnFWCmdReply& reply,
                                                    FWRule_* rules) const {
  const std::uint32_t count = returned(reply);
  reply.copyRecords(records(reply), count, rules);
  return count;
}

void CTarnFWCmdGetRuleOfRuleSet::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t rules = returned(reply);
  TARNFW_TRACE(FW_COMPONENT_CMD, 0, "retrieved %d rules of ruleset %s\n", static_cast<int>(rules),
               name().c_str());
  const PrettyPrinting out;
  if (!out) return;
  out.print(out.context, "# generation number: %llu\n",
            static_cast<unsigned long long>(reply.longWord(88)));
  const FWLocalTime_ t = bootsec2local(reply.longWord(80));
  out.print(out.context, "# realization time : %04d-%02d-%02dT%02d:%02d:%02d\n", t.year, t.month,
            t.day, t.hour, t.minute, t.second);
  for (std::uint32_t i = 0; i < rules; ++i) {
    const auto rule = reply.record<FWRule_>(records(reply) + sizeof(FWRule_) * i);
    char text[512];
    if (const FWStatus_t status = FW_GetRuleString(&rule, 1, text, sizeof text, 0)) {
      TARNFW_TRACE(FW_COMPONENT_CMD, 0, "failed to convert rule #%d: %d\n", static_cast<int>(i),
                   static_cast<int>(status));
      break;
    }
    out.print(out.context, "%s\n", text);
  }
}

}  // namespace TarnFirewall
