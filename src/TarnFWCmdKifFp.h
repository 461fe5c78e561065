#pragma once

#include <array>

#include "TarnFWRecordCmd.h"

namespace TarnFirewall {

/// Body of command 68: value and mode.
using FWKifFp = std::array<host32, 2>;

/// Sets or asks whether a filter's interface takes the fast path.
///
/// Command 68  request  +0  u32  value: 1 on                   reply  +0  u32  value
///                      +4  u32  mode: 0 set, 1 read
class CTarnFWCmdKifFp final : public CTarnFWPrinted<CTarnFWRecordCmd<68, FWKifFp>> {
 public:
  CTarnFWCmdKifFp(const dvs_port_* port, unsigned int value, unsigned int mode)
      : CTarnFWPrinted(port, FWKifFp{value, mode}) {}
  std::string toString() const override { return "Set/show kif fast flag" + dvsportToString("of"); }

  static std::uint32_t value(const CTarnFWCmdReply& reply) { return reply.word(0); }

 private:
  // Whatever the kernel answered: scripts that read the output expect this line.
  void print(const CTarnFWCmdReply&, const PrettyPrinting& out) const override {
    out.print(out.context, "Kif flag not set\n");
  }
};

}  // namespace TarnFirewall
