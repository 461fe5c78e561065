#pragma once

#include "TarnFWRuleAction.h"

namespace TarnFirewall {

/// Drops the packet and answers its sender.
class CTarnFWRuleActionReject final : public CTarnFWRuleAction {
 public:
  FWRuleAction_t getAction() const override { return FW_ACTION_REJECT; }
};

}  // namespace TarnFirewall
