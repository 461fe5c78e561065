#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Takes the root rule sets of a filter away.
///
/// Command 36  request  +0  4 bytes  zero                       reply  none
class CTarnFWCmdClearRootRuleSet final : public CTarnFWFixedCmd<36, 4> {
 public:
  explicit CTarnFWCmdClearRootRuleSet(const dvs_port_* port) : CTarnFWFixedCmd(port) {}
  std::string toString() const override { return "clear root ruleset" + dvsportToString("of"); }
};

}  // namespace TarnFirewall
