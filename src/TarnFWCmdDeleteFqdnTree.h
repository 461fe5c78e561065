#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Forgets all addresses of fully qualified names, and prints what became of it.
///
/// Command 69  request  +0  4 bytes  zero                      reply  +0  u32  return code
class CTarnFWCmdDeleteFqdnTree final : public CTarnFWPrinted<CTarnFWFixedCmd<69, 4>> {
 public:
  explicit CTarnFWCmdDeleteFqdnTree(const dvs_port_* port) : CTarnFWPrinted(port) {}
  std::string toString() const override { return "clear fqdn" + dvsportToString("of"); }

  static std::int32_t returnCode(const CTarnFWCmdReply& reply) { return reply.record<hosti32>(0); }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override {
    out.print(out.context, "fqdn tree deleted return code %d\n", returnCode(reply));
  }
};

}  // namespace TarnFirewall
