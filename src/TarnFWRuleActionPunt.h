#pragma once

#include "TarnFWRuleAction.h"

namespace TarnFirewall {

/// Hands the packet to the next service.
class CTarnFWRuleActionPunt final : public CTarnFWRuleAction {
 public:
  FWRuleAction_t getAction() const override { return FW_ACTION_PUNT; }
};

}  // namespace TarnFirewall
