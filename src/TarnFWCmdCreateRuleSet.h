#pragma once

#include "TarnFWRuleSetCreateCmd.h"

namespace TarnFirewall {

/// Creates a rule set, or replaces its rules. One message holds the whole set.
class CTarnFWCmdCreateRuleSet final : public CTarnFWRuleSetCreateCmd {
 public:
  /// The jump target is part of the text only and is not sent: `CTarnFWCmdSetRuleSetJump` sets it.
  /// A name of more than 63 characters throws `CIDTooLongException`.
  CTarnFWCmdCreateRuleSet(const dvs_port_* port, const FWRuleSetID_t& name,
                          const FWRuleSetID_t& jump);
  CTarnFWCmdCreateRuleSet(const dvs_port_* port, const FWRuleSetID_t& name,
                          const FWRuleSetID_t& jump, std::unique_ptr<CTarnFWRuleList> list);
  CTarnFWCmdCreateRuleSet(const dvs_port_* port, const char* name);
  CTarnFWCmdCreateRuleSet(const dvs_port_* port, const char* name,
                          std::unique_ptr<CTarnFWRuleList> list);

  /// "create ruleset NAME", the selector, " jumpto NAME" and the rules, each only where there is
  /// one.
  std::string toString() const override;

 private:
  FWRuleSetID_t jump_;
};

}  // namespace TarnFirewall
