#pragma once

#include "TarnFWAlgCmd.h"

namespace TarnFirewall {

/// Fetches the application-level gateways, and prints how many came.
///
/// Command 47  request  +0  u32  bytes of the records           reply  +4  u32  records
///                      +4  u32  records asked for                     +8  `FWAlg_` each
class CTarnFWCmdGetAlgs final : public CTarnFWAlgListCmd<47, FWAlg_> {
 public:
  /// Throws `CIntegerOverflowException` for a size that leaves no room for the head.
  CTarnFWCmdGetAlgs(const dvs_port_* port, unsigned int size, unsigned int count)
      : CTarnFWAlgListCmd(port, size, count) {}
  std::string toString() const override { return "describe alg" + dvsportToString("of"); }
};

}  // namespace TarnFirewall
