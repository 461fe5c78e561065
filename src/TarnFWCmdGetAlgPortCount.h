#pragma once

#include "TarnFWAlgCmd.h"

namespace TarnFirewall {

/// Asks how many ports the application-level gateways have opened, and prints it.
///
/// Command 48  request  +0  8 bytes  zero                    reply  +0  u32  bytes of a record
///                                                                  +4  u32  records
class CTarnFWCmdGetAlgPortCount final : public CTarnFWAlgCountCmd<48> {
 public:
  explicit CTarnFWCmdGetAlgPortCount(const dvs_port_* port) : CTarnFWAlgCountCmd(port) {}
  std::string toString() const override {
    return "describe alg port count" + dvsportToString("of");
  }
};

}  // namespace TarnFirewall
