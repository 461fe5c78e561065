#pragma once

#include "TarnFWRecordCmd.h"

namespace TarnFirewall {

/// Sets whether a filter drops ICMP errors.
///
/// Command 49  request  +0  u32  enable                        reply  none
class CTarnFWCmdConfigICMPErrPktDrop final : public CTarnFWWordCmd<49> {
 public:
  CTarnFWCmdConfigICMPErrPktDrop(const dvs_port_* port, int enable)
      : CTarnFWRecordCmd(port, static_cast<std::uint32_t>(enable)) {}
  std::string toString() const override {
    return (record() != 0 ? "enable icmp error drop" : "disable icmp error drop") +
           dvsportToString("of");
  }
};

}  // namespace TarnFirewall
