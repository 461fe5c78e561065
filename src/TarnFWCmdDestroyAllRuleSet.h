#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Destroys all rule sets of a filter.
///
/// Command 60  request  +0  4 bytes  zero                       reply  none
class CTarnFWCmdDestroyAllRuleSet final : public CTarnFWFixedCmd<60, 4> {
 public:
  explicit CTarnFWCmdDestroyAllRuleSet(const dvs_port_* port) : CTarnFWFixedCmd(port) {}
  std::string toString() const override { return "destroy all ruleset" + dvsportToString("of"); }
};

}  // namespace TarnFirewall
