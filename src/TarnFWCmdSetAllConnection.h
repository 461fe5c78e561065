#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Sets all connections of a filter; how is the kernel's matter. Prints nothing.
///
/// Command 67  request  +0  u32  zero                   reply  +0  u32  connections that were set
class CTarnFWCmdSetAllConnection final : public CTarnFWFixedCmd<67, 4> {
 public:
  explicit CTarnFWCmdSetAllConnection(const dvs_port_* port) : CTarnFWFixedCmd(port) {}
  std::string toString() const override { return "set all connection" + dvsportToString("of"); }

  static std::uint32_t count(const CTarnFWCmdReply& reply) { return reply.word(0); }
};

}  // namespace TarnFirewall
