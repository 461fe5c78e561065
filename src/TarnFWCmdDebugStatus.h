#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks how much each component of the kernel's firewall logs, and prints it.
///
/// Command 34  request  +21  1 byte  21, the components       reply  +0  21 bytes  level of each
class CTarnFWCmdDebugStatus final : public CTarnFWPrinted<CTarnFWFixedCmd<34, 23>> {
 public:
  explicit CTarnFWCmdDebugStatus(const dvs_port_* port) : CTarnFWPrinted(port) {}
  std::string toString() const override { return "debug status"; }

 private:
  void fill(std::span<std::byte> body) const override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
