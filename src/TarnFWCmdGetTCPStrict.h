#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks whether a filter follows TCP connections strictly. Prints nothing.
///
/// Command 59  request  +0  4 bytes  zero                      reply  +0  u32  strict: 0 or 1
class CTarnFWCmdGetTCPStrict final : public CTarnFWFixedCmd<59, 4> {
 public:
  explicit CTarnFWCmdGetTCPStrict(const dvs_port_* port) : CTarnFWFixedCmd(port) {}
  std::string toString() const override { return "describe tcp strict" + dvsportToString("of"); }

  static std::uint32_t strict(const CTarnFWCmdReply& reply) { return reply.word(0); }
};

}  // namespace TarnFirewall
