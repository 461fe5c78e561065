#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Zeroes the counters of a filter's interface.
///
/// Command 30  request  +0  1642 bytes  zero                   reply  none
class CTarnFWCmdClearKifStat final : public CTarnFWFixedCmd<30, 1642> {
 public:
  explicit CTarnFWCmdClearKifStat(const dvs_port_* port) : CTarnFWFixedCmd(port) {}
  std::string toString() const override { return "clear stat of kif"; }
};

}  // namespace TarnFirewall
