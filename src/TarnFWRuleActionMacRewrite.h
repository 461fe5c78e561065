#pragma once

#include "TarnFWRuleAction.h"

namespace TarnFirewall {

/// Gives the packet another destination MAC address.
class CTarnFWRuleActionMacRewrite final : public CTarnFWRuleAction {
 public:
  /// Copies the 6 bytes of the new address.
  explicit CTarnFWRuleActionMacRewrite(const unsigned char* mac);

  FWRuleAction_t getAction() const override { return FW_ACTION_MACREWRITE; }

 private:
  void appendData(CTarnFWText& text) const override;
  void writeData(fw_rule_action_& record) override;

  std::uint8_t mac_[6];
};

}  // namespace TarnFirewall
