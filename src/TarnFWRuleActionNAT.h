#pragma once

#include <memory>

#include "TarnFWAddress.h"
#include "TarnFWRuleAction.h"

namespace TarnFirewall {

/// Base of the actions that translate an address: owns the translation address.
class CTarnFWRuleActionNAT : public CTarnFWRuleAction {
 public:
  /// Throws CIDTooLongException for a name of more than 37 characters, whatever the address is.
  std::unique_ptr<CTarnFWAddress> replaceIPRangeAddress(const char* name) final;

 protected:
  explicit CTarnFWRuleActionNAT(std::unique_ptr<CTarnFWAddress> address)
      : address_(std::move(address)) {}
  /// Throws what the address factory throws.
  explicit CTarnFWRuleActionNAT(const FWAddress_* record);

  void appendData(CTarnFWText& text) const override;
  bool dataFits() const override;
  void writeData(fw_rule_action_& record) override;

 private:
  std::unique_ptr<CTarnFWAddress> address_;
};

}  // namespace TarnFirewall
