#pragma once

#include "TarnFWRecordCmd.h"

namespace TarnFirewall {

/// Sets whether a filter shares its address sets with others.
///
/// Command 44  request  +0  u32  enable                         reply  none
class CTarnFWCmdConfigSharedAddrSet final : public CTarnFWWordCmd<44> {
 public:
  CTarnFWCmdConfigSharedAddrSet(const dvs_port_* port, bool enable)
      : CTarnFWRecordCmd(port, enable ? 1u : 0u) {}
  std::string toString() const override {
    return (record() != 0 ? "enable shared addrset" : "disable shared addrset") +
           dvsportToString("of");
  }
};

}  // namespace TarnFirewall
