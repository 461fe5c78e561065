#pragma once

#include "TarnFWRuleActionKeyPolicy.h"

namespace TarnFirewall {

/// Routes the packet by the policy of this id, or past all policies for the id of all ones.
class CTarnFWRuleActionPbr final : public CTarnFWRuleActionKeyPolicy {
 public:
  explicit CTarnFWRuleActionPbr(std::string keyPolicy)
      : CTarnFWRuleActionKeyPolicy(std::move(keyPolicy)) {}

  FWRuleAction_t getAction() const override { return FW_ACTION_PBR; }
  void appendTo(CTarnFWText& text) const override {
    CTarnFWRuleAction::appendTo(text);
    if (getKeyPolicy() == "ffffffff-ffff-ffff-ffff-ffffffffffff") {
      text += " pass-through";
    } else {
      appendKeyPolicy(text);
    }
  }
};

}  // namespace TarnFirewall
