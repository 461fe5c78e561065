#pragma once

#include "TarnFWRuleAction.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// Goes on with another rule set.
class CTarnFWRuleActionJumpto final : public CTarnFWRuleAction {
 public:
  /// Throws CIDTooLongException for a name of 64 characters and more.
  explicit CTarnFWRuleActionJumpto(const char* name);
  /// The same for an id that fills its field without a NUL.
  explicit CTarnFWRuleActionJumpto(const FWRuleSetID_t* id);

  FWRuleAction_t getAction() const override { return FW_ACTION_JUMPTO; }

 private:
  void appendData(CTarnFWText& text) const override;
  void writeData(fw_rule_action_& record) override;

  FWRuleSetID_t id_{};
};

}  // namespace TarnFirewall
