#include "TarnFWCmdGetRuleSetList.h"

#include "TarnFWText.h"

namespace TarnFirewall {

CTarnFWCmdGetRuleSetList::CTarnFWCmdGetRuleSetList(const dvs_port_* port, std::uint32_t max,
                                                   std::uint32_t from)
    : CTarnFWPrinted(port, countedSize(12, sizeof(FWRuleSetID_t), max,
                                       "integer overflow for the number of rulesets")),
      max_(max),
      from_(from) {}

std::string CTarnFWCmdGetRuleSetList::toString() const {
  std::string text = "describe list of ruleset";
  if (from_ != 0) appendText(text, " from %u", from_);
  return text + dvsportToString("of");
}

void CTarnFWCmdGetRuleSetList::fill(std::span<std::byte> body) const {
  storeAt(body, 0, host32(max_));
  storeAt(body, 4, host32(from_));
}

void CTarnFWCmdGetRuleSetList::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t names = records(reply).checkedSize();
  TARNFW_TRACE_IN(kCheckCmdReply, LOG_DEBUG, FW_COMPONENT_CMD, 0, "retrieved %d rulesets\n",
                  static_cast<int>(names));
}

void CTarnFWCmdGetRuleSetList::print(const CTarnFWCmdReply& reply,
                                     const PrettyPrinting& out) const {
  for (const FWRuleSetID_t& name : records(reply)) {
    out.print(out.context, "%s\n", fieldText(name.text).c_str());
  }
}

}  // namespace TarnFirewall
