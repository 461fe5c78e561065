#pragma once

#include "TarnFWRecordCmd.h"

namespace TarnFirewall {

/// Sets whether a filter copies packets for the inspection of layer 7.
///
/// Command 85  request  +0  bit 0  enable                       reply  none
class CTarnFWCmdConfigL7CopyMode final : public CTarnFWWordCmd<85> {
 public:
  CTarnFWCmdConfigL7CopyMode(const dvs_port_* port, bool enable)
      : CTarnFWRecordCmd(port, enable ? 1u : 0u) {}
  std::string toString() const override {
    return (record() != 0 ? "enable l7 copy mode" : "disable l7 copy mode") + dvsportToString("of");
  }
};

}  // namespace TarnFirewall
