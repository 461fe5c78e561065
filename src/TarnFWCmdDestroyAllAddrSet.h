#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Destroys all address sets and containers of a filter.
///
/// Command 65  request  +0  4 bytes  zero                       reply  none
class CTarnFWCmdDestroyAllAddrSet final : public CTarnFWFixedCmd<65, 4> {
 public:
  explicit CTarnFWCmdDestroyAllAddrSet(const dvs_port_* port) : CTarnFWFixedCmd(port) {}
  std::string toString() const override { return "destroy all addrset" + dvsportToString("of"); }
};

}  // namespace TarnFirewall
