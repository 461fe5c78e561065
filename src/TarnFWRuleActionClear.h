#pragma once

#include "TarnFWRuleAction.h"

namespace TarnFirewall {

/// Lets the packet pass in clear text where others are encrypted.
class CTarnFWRuleActionClear final : public CTarnFWRuleAction {
 public:
  FWRuleAction_t getAction() const override { return FW_ACTION_CLEAR; }
};

}  // namespace TarnFirewall
