#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks how many rule sets a filter has, and prints it.
///
/// Command 1   request  +0  4 bytes  zero                       reply  +0  u32  count
class CTarnFWCmdGetRuleSetCount final : public CTarnFWFixedCmd<1, 4> {
 public:
  explicit CTarnFWCmdGetRuleSetCount(const dvs_port_* port) : CTarnFWFixedCmd(port) {}
  std::string toString() const override;

  static std::uint32_t count(const CTarnFWCmdReply& reply) { return reply.word(0); }

 private:
  void read(const CTarnFWCmdReply& reply) override;
};

}  // namespace TarnFirewall
