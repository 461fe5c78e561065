#pragma once

#include "TarnFWRuleActionKeyPolicy.h"

namespace TarnFirewall {

/// Encrypts the packet with the keys of a policy.
class CTarnFWRuleActionEncrypt final : public CTarnFWRuleActionKeyPolicy {
 public:
  explicit CTarnFWRuleActionEncrypt(std::string keyPolicy)
      : CTarnFWRuleActionKeyPolicy(std::move(keyPolicy)) {}

  FWRuleAction_t getAction() const override { return FW_ACTION_ENCRYPT; }
  void appendTo(CTarnFWText& text) const override {
    CTarnFWRuleAction::appendTo(text);
    appendKeyPolicy(text);
  }
};

}  // namespace TarnFirewall
