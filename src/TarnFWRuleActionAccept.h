#pragma once

#include "TarnFWRuleAction.h"

namespace TarnFirewall {

/// Lets the packet pass.
class CTarnFWRuleActionAccept final : public CTarnFWRuleAction {
 public:
  FWRuleAction_t getAction() const override { return FW_ACTION_ACCEPT; }
};

}  // namespace TarnFirewall
