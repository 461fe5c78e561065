#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Destroys a rule set.
///
/// Command 7   request  +0  64 bytes  name of the rule set      reply  none
class CTarnFWCmdDestroyRuleSet final : public CTarnFWRuleSetNameCmd<7, 64> {
 public:
  CTarnFWCmdDestroyRuleSet(const dvs_port_* port, const FWRuleSetID_t& id)
      : CTarnFWNamed(port, id) {}
  std::string toString() const override { return statement("destroy ruleset"); }
};

}  // namespace TarnFirewall
