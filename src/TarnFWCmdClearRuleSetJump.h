#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Takes the jump target of a rule set away.
///
/// Command 63  request  +0  64 bytes  name of the rule set      reply  none
class CTarnFWCmdClearRuleSetJump final : public CTarnFWRuleSetNameCmd<63, 64> {
 public:
  CTarnFWCmdClearRuleSetJump(const dvs_port_* port, const FWRuleSetID_t& id)
      : CTarnFWNamed(port, id) {}
  std::string toString() const override { return statement("clear jumpto of ruleset"); }
};

}  // namespace TarnFirewall
