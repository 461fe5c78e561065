#pragma once

#include "TarnFWRuleAction.h"

namespace TarnFirewall {

/// Lets the packet pass and hands a copy on.
class CTarnFWRuleActionCopy final : public CTarnFWRuleAction {
 public:
  FWRuleAction_t getAction() const override { return FW_ACTION_COPY; }
};

}  // namespace TarnFirewall
