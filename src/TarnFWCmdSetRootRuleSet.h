#pragma once

#include "TarnFWRuleSetCreateCmd.h"

namespace TarnFirewall {

/// Sets the root of a filter: the unnamed rule set with a rule that sends all IP traffic to the
/// layer-3 set and one that sends all Ethernet traffic to the layer-2 set. Nothing else separates
/// the layers. Sent as the creation of a rule set, number 3, though its object type is 28.
class CTarnFWCmdSetRootRuleSet final : public CTarnFWRuleSetCreateCmd {
 public:
  static constexpr int kType = 28;

  /// A root without rules.
  explicit CTarnFWCmdSetRootRuleSet(const dvs_port_* port);

  /// Throws `CUnsupportedException` of status 3 when both names are empty.
  CTarnFWCmdSetRootRuleSet(const dvs_port_* port, const FWRuleSetID_t& layer3,
                           const FWRuleSetID_t& layer2);

  int getType() const override { return kType; }

  /// "set root ruleset A and B", an empty name as two quotation marks. " and B" is left out when B
  /// is A with "_L2" after it, in any case.
  std::string toString() const override;

 private:
  void addJump(bool layer3, const FWRuleSetID_t& target);

  FWRuleSetID_t layer3_{};
  FWRuleSetID_t layer2_{};
};

}  // namespace TarnFirewall
