#pragma once

#include "TarnFWRuleAction.h"

namespace TarnFirewall {

/// Hands the packet to the local process that asked for it.
class CTarnFWRuleActionDivert final : public CTarnFWRuleAction {
 public:
  FWRuleAction_t getAction() const override { return FW_ACTION_DIVERT; }
};

}  // namespace TarnFirewall
