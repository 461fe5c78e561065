#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Ends all connections of a filter, and prints how many there were.
///
/// Command 43  request  +0  u32  zero             reply  +0  u32  connections that were cleared
class CTarnFWCmdClearAllConnection final : public CTarnFWPrinted<CTarnFWFixedCmd<43, 4>> {
 public:
  explicit CTarnFWCmdClearAllConnection(const dvs_port_* port) : CTarnFWPrinted(port) {}
  std::string toString() const override { return "clear all connection" + dvsportToString("of"); }

  static std::uint32_t count(const CTarnFWCmdReply& reply) { return reply.word(0); }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override {
    out.print(out.context, "Cleared connection count : %u\n", count(reply));
  }
};

}  // namespace TarnFirewall
