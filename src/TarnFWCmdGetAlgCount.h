#pragma once

#include "TarnFWAlgCmd.h"

namespace TarnFirewall {

/// Asks how many application-level gateways there are, and prints it.
///
/// Command 47  request  +0  8 bytes  zero                    reply  +0  u32  bytes of a record
///                                                                  +4  u32  records
class CTarnFWCmdGetAlgCount final : public CTarnFWAlgCountCmd<47> {
 public:
  explicit CTarnFWCmdGetAlgCount(const dvs_port_* port) : CTarnFWAlgCountCmd(port) {}
  std::string toString() const override { return "describe alg count" + dvsportToString("of"); }
};

}  // namespace TarnFirewall
