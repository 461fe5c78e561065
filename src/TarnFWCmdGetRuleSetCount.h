#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks how many rule sets a filter has, and prints it.
///
/// Command 1   request  +0  4 bytes  zero                       reply  +0  u32  count
class CTarnFWCmdGetRuleSetCount final : public CTarnFWPrinted<CTarnFWFixedCmd<1, 4>> {
 public:
  explicit CTarnFWCmdGetRuleSetCount(const dvs_port_* port) : CTarnFWPrinted(port) {}
  std::string toString() const override;

  static std::uint32_t count(const CTarnFWCmdReply& reply) { return reply.word(0); }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
