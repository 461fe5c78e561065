#pragma once

#include "TarnFWFixedCmd.h"
#include "TarnFWFlowRecords.h"

namespace TarnFirewall {

/// Asks how many connections a filter has, and prints it.
///
/// Command 23  request  +0  16 bytes  zero                          reply  +4  u32  connections
class CTarnFWCmdGetConnectionCount final : public CTarnFWPrinted<CTarnFWFixedCmd<23, 16>> {
 public:
  /// A filter of connections is taken and not sent: the kernel counts them all.
  CTarnFWCmdGetConnectionCount(const dvs_port_* port, const FWConnFilter_*)
      : CTarnFWPrinted(port) {}
  std::string toString() const override {
    return "describe connection count" + dvsportToString("of");
  }

  static std::uint32_t count(const CTarnFWCmdReply& reply) { return reply.word(4); }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override {
    out.print(out.context, "connection count : %d\n", static_cast<int>(count(reply)));
  }
};

}  // namespace TarnFirewall
