#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks for the version in which a filter's state is exported, and prints it.
///
/// Command 55  request  +0  4 bytes  zero                      reply  +0  u32  export version
class CTarnFWCmdGetSkifferExportver final : public CTarnFWPrinted<CTarnFWFixedCmd<55, 4>> {
 public:
  explicit CTarnFWCmdGetSkifferExportver(const dvs_port_* port) : CTarnFWPrinted(port) {}
  std::string toString() const override { return "describe exportver"; }

  static std::uint32_t version(const CTarnFWCmdReply& reply) { return reply.word(0); }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override {
    out.print(out.context, "Current export version: %u\n", version(reply));
  }
};

}  // namespace TarnFirewall
