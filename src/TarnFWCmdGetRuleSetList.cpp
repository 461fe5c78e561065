#include "TarnFWCmdGetRuleSetList.h"

#include "TarnFWLog.h"
#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

constexpr unsigned int kNames = 12;

}  // namespace

CTarnFWCmdGetRuleSetList::CTarnFWCmdGetRuleSetList(const dvs_port_* port, std::uint32_t max,
                                                   std::uint32_t from)
    : CTarnFWSizedCmd(port, countedSize(kNames, sizeof(FWRuleSetID_t), max,
                                        "integer overflow for the number of rulesets")),
      max_(max),
      from_(from) {}

std::string CTarnFWCmdGetRuleSetList::toString() const {
  std::string text = "describe list of ruleset";
  if (from_ != 0) appendText(text, " from %u", from_);
  return text + dvsportToString("of");
}

std::uint32_t CTarnFWCmdGetRuleSetList::returned(const CTarnFWCmdReply& reply) const {
  return reply.fitting(reply.word(8), max_, kNames, sizeof(FWRuleSetID_t));
}

FWRuleSetID_t CTarnFWCmdGetRuleSetList::nameAt(const CTarnFWCmdReply& reply, std::uint32_t index) {
  return reply.record<FWRuleSetID_t>(kNames + sizeof(FWRuleSetID_t) * index);
}

void CTarnFWCmdGetRuleSetList::fill(std::span<std::byte> body) const {
  storeAt(body, 0, host32(max_));
  storeAt(body, 4, host32(from_));
}

void CTarnFWCmdGetRuleSetList::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t names = returned(reply);
  TARNFW_TRACE(FW_COMPONENT_CMD, 0, "retrieved %d rulesets\n", static_cast<int>(names));
  const PrettyPrinting out;
  if (!out) return;
  for (std::uint32_t i = 0; i < names; ++i) {
    out.print(out.context, "%s\n", fieldText(nameAt(reply, i).text).c_str());
  }
}

}  // namespace TarnFirewall
