#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Sets where a rule set jumps to.
///
/// Command 61  request  +0  64 bytes  name of the rule set      reply  none
///                     +64  64 bytes  name of the jump target
class CTarnFWCmdSetRuleSetJump final : public CTarnFWRuleSetNameCmd<61, 128> {
 public:
  CTarnFWCmdSetRuleSetJump(const dvs_port_* port, const FWRuleSetID_t& id,
                           const FWRuleSetID_t& target)
      : CTarnFWNamed(port, id), target_(target) {}
  std::string toString() const override {
    return "set jumpto of ruleset " + name() + " as " + fieldText(target_.text) +
           dvsportToString("of");
  }

 private:
  void fill(std::span<std::byte> body) const override {
    CTarnFWNamed::fill(body);
    storeAt(body, 64, target_);
  }

  FWRuleSetID_t target_;
};

}  // namespace TarnFirewall
