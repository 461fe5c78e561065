#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks how many addresses of fully qualified names a filter holds, and prints it.
///
/// Command 70  request  +0  8 bytes  zero                      reply  +0  u32  entries
///                                                                    +4  u32  identifiers of all
class CTarnFWCmdGetFqdnCount final : public CTarnFWPrinted<CTarnFWFixedCmd<70, 8>> {
 public:
  explicit CTarnFWCmdGetFqdnCount(const dvs_port_* port) : CTarnFWPrinted(port) {}
  std::string toString() const override { return "describe count of fqdn" + dvsportToString("of"); }

  static std::uint32_t entries(const CTarnFWCmdReply& reply) { return reply.word(0); }
  static std::uint32_t uuids(const CTarnFWCmdReply& reply) { return reply.word(4); }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override {
    // Counts above 31 bits print as negative numbers: what reads them expects "%d".
    const auto entryCount = static_cast<int>(entries(reply));
    out.print(out.context, "fqdn count : %d uuid count %d\n", entryCount,
              static_cast<int>(uuids(reply)));
  }
};

}  // namespace TarnFirewall
