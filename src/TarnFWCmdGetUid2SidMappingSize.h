#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks how many users of a filter have security identifiers and how large their listing is, and
/// prints it.
///
/// Command 82  request  +0  84 bytes  zero               reply  +4  u32  users
///                                                              +8  u32  bytes of their listing
class CTarnFWCmdGetUid2SidMappingSize final : public CTarnFWPrinted<CTarnFWFixedCmd<82, 84>> {
 public:
  explicit CTarnFWCmdGetUid2SidMappingSize(const dvs_port_* port) : CTarnFWPrinted(port) {}
  std::string toString() const override {
    return "describe size of uid2sidmap" + dvsportToString("of");
  }

  static std::uint32_t users(const CTarnFWCmdReply& reply) { return reply.word(4); }
  static std::uint32_t size(const CTarnFWCmdReply& reply) { return reply.word(8); }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override {
    const unsigned long bytes = size(reply);
    out.print(out.context, "uid2sid map size : %lu\n", bytes);
    out.print(out.context, "uid2sid map num entries : %u\n", users(reply));
  }
};

}  // namespace TarnFirewall
