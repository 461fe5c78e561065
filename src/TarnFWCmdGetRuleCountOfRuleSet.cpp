#include "TarnFWCmdGetRuleCountOfRuleSet.h"

namespace TarnFirewall {

unsigned int checkRuleKind(unsigned int kind) {
  if (kind > 3) throw CUnsupportedException("invalid rule type");
  return kind;
}

const char* ruleKindWord(unsigned int kind) {
  switch (kind) {
    case 1:
      return "snat ";
    case 2:
      return "dnat ";
    default:
      return "";
  }
}

CTarnFWCmdGetRuleCountOfRuleSet::CTarnFWCmdGetRuleCountOfRuleSet(const dvs_port_* port,
                                                                 const FWRuleSetID_t& id,
                                                                 unsigned int kind)
    : CTarnFWPrinted(port, id), kind_(checkRuleKind(kind)) {}

std::string CTarnFWCmdGetRuleCountOfRuleSet::toString() const {
  return statement(
      (std::string("describe ") + ruleKindWord(kind_) + "rule count of ruleset").c_str());
}

void CTarnFWCmdGetRuleCountOfRuleSet::fill(std::span<std::byte> body) const {
  CTarnFWNamed::fill(body);
  storeAt(body, 64, static_cast<std::uint8_t>(kind_));
}

void CTarnFWCmdGetRuleCountOfRuleSet::print(const CTarnFWCmdReply& reply,
                                            const PrettyPrinting& out) const {
  out.print(out.context, "rule count : %d\n", static_cast<int>(count(reply)));
}

}  // namespace TarnFirewall
