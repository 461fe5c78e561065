#pragma once

#include "TarnFWAlgCmd.h"

namespace TarnFirewall {

/// Fetches the ports that application-level gateways have opened, and prints how many came.
///
/// Command 48  request  +0  u32  bytes of the records           reply  +4  u32  records
///                      +4  u32  records asked for                     +8  `FWAlgPort_` each
class CTarnFWCmdGetAlgPorts final : public CTarnFWAlgListCmd<48, FWAlgPort_> {
 public:
  /// Throws `CIntegerOverflowException` for a size that leaves no room for the head.
  CTarnFWCmdGetAlgPorts(const dvs_port_* port, unsigned int size, unsigned int count)
      : CTarnFWAlgListCmd(port, size, count) {}
  std::string toString() const override { return "describe alg port" + dvsportToString("of"); }
};

}  // namespace TarnFirewall
