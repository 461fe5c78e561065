#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Kind of rules in the commands that read them: 0 filter rules, 1 snat, 2 dnat. Gives `kind` back;
/// throws `CUnsupportedException` above 3.
unsigned int checkRuleKind(unsigned int kind);

/// "snat ", "dnat " or nothing, as statements name the kind.
const char* ruleKindWord(unsigned int kind);

/// Asks how many rules of a kind a rule set has, and prints it.
///
/// Command 8   request  +0  64 bytes  name of the rule set      reply  +68  u32  count
///                     +64  low two bits  kind
class CTarnFWCmdGetRuleCountOfRuleSet final : public CTarnFWPrinted<CTarnFWRuleSetNameCmd<8, 72>> {
 public:
  CTarnFWCmdGetRuleCountOfRuleSet(const dvs_port_* port, const FWRuleSetID_t& id,
                                  unsigned int kind);
  std::string toString() const override;

  static std::uint32_t count(const CTarnFWCmdReply& reply) { return reply.word(68); }

 private:
  void fill(std::span<std::byte> body) const override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;

  unsigned int kind_;
};

}  // namespace TarnFirewall
