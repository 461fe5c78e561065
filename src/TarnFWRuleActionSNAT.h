#pragma once

#include "TarnFWRuleActionNAT.h"

namespace TarnFirewall {

/// Translates the source address.
class CTarnFWRuleActionSNAT final : public CTarnFWRuleActionNAT {
 public:
  explicit CTarnFWRuleActionSNAT(std::unique_ptr<CTarnFWAddress> address)
      : CTarnFWRuleActionNAT(std::move(address)) {}
  explicit CTarnFWRuleActionSNAT(const FWAddress_* record) : CTarnFWRuleActionNAT(record) {}

  FWRuleAction_t getAction() const override { return FW_ACTION_SNAT; }
};

}  // namespace TarnFirewall
