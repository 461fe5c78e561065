#pragma once

#include "TarnFWRuleAction.h"

namespace TarnFirewall {

/// Balances the load of a virtual server over its members.
class CTarnFWRuleActionLB final : public CTarnFWRuleAction {
 public:
  /// All throw CUnsupportedException for a type above 2 and for options of more than 127
  /// characters. Type 0 is layer 4, 1 and 2 are layer 7 in the text.
  explicit CTarnFWRuleActionLB(unsigned short type);
  CTarnFWRuleActionLB(unsigned short type, unsigned short idleTimeout, unsigned short closeTimeout);
  /// Has options even when their text is empty.
  CTarnFWRuleActionLB(unsigned short type, unsigned short idleTimeout, unsigned short closeTimeout,
                      const char* options);

  FWRuleAction_t getAction() const override { return FW_ACTION_LB; }

 private:
  void appendData(CTarnFWText& text) const override;
  void writeData(fw_rule_action_& record) override;

  std::uint16_t type_;
  std::uint16_t idleTimeout_;
  std::uint16_t closeTimeout_;
  bool hasOptions_ = false;
  std::string options_;
};

}  // namespace TarnFirewall
