#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks whether a filter shares its address sets, and prints it.
///
/// Command 45  request  +0  4 bytes  zero                       reply  +0  bit 0  enabled
class CTarnFWCmdGetSharedAddrSet final : public CTarnFWPrinted<CTarnFWFixedCmd<45, 4>> {
 public:
  explicit CTarnFWCmdGetSharedAddrSet(const dvs_port_* port) : CTarnFWPrinted(port) {}
  std::string toString() const override;

  static bool enabled(const CTarnFWCmdReply& reply) { return (reply.byte(0) & 1) != 0; }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
