#pragma once

#include "TarnFWRuleAction.h"

namespace TarnFirewall {

/// Base of the actions that name a key policy by its id.
class CTarnFWRuleActionKeyPolicy : public CTarnFWRuleAction {
 public:
  const std::string& getKeyPolicy() const { return keyPolicy_; }

 protected:
  explicit CTarnFWRuleActionKeyPolicy(std::string keyPolicy) : keyPolicy_(std::move(keyPolicy)) {}

  /// " keypolicy " and the id; nothing for an empty one.
  void appendKeyPolicy(CTarnFWText& text) const;

 private:
  /// An id of more than 36 characters is cut without a word: configurations with longer ones load
  /// so.
  void writeData(fw_rule_action_& record) override;

  std::string keyPolicy_;
};

}  // namespace TarnFirewall
