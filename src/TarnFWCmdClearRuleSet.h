#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Removes the rules of a rule set and keeps the set.
///
/// Command 6   request  +0  64 bytes  name of the rule set      reply  none
///                      +64  8 bytes  zero
class CTarnFWCmdClearRuleSet final : public CTarnFWRuleSetNameCmd<6, 72> {
 public:
  CTarnFWCmdClearRuleSet(const dvs_port_* port, const FWRuleSetID_t& id) : CTarnFWNamed(port, id) {}
  std::string toString() const override { return statement("clear rule of ruleset"); }
};

}  // namespace TarnFirewall
