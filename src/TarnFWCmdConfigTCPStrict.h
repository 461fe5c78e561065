#pragma once

#include "TarnFWRecordCmd.h"

namespace TarnFirewall {

/// Sets whether a filter follows TCP connections strictly.
///
/// Command 58  request  +0  u32  strict: 0 or 1                reply  none
class CTarnFWCmdConfigTCPStrict final : public CTarnFWWordCmd<58> {
 public:
  CTarnFWCmdConfigTCPStrict(const dvs_port_* port, bool strict)
      : CTarnFWRecordCmd(port, strict ? 1u : 0u) {}
  std::string toString() const override {
    return (record() != 0 ? "enable tcp strict" : "disable tcp strict") + dvsportToString("of");
  }
};

}  // namespace TarnFirewall
