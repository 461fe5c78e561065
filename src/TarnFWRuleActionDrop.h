#pragma once

#include "TarnFWRuleAction.h"

namespace TarnFirewall {

/// Drops the packet without a word.
class CTarnFWRuleActionDrop final : public CTarnFWRuleAction {
 public:
  FWRuleAction_t getAction() const override { return FW_ACTION_DROP; }
};

}  // namespace TarnFirewall
