#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks where a rule set jumps to. Prints nothing: the caller reads the reply.
///
/// Command 62  request  +0  64 bytes  name of the rule set      reply  +64  64 bytes  jump target
class CTarnFWCmdGetRuleSetJump final : public CTarnFWRuleSetNameCmd<62, 128> {
 public:
  CTarnFWCmdGetRuleSetJump(const dvs_port_* port, const FWRuleSetID_t& id)
      : CTarnFWNamed(port, id) {}
  std::string toString() const override { return statement("describe jumpto of ruleset"); }
};

}  // namespace TarnFirewall
