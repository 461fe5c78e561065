#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks how large an address set is and when it took effect, and prints it.
///
/// Command 16  request  +0  38 bytes  name of the set           reply  +38  u32  address count
///                                                                     +42  u64  realization time,
///                                                                               seconds since boot
///                                                                     +50  u64  generation number
class CTarnFWCmdGetAddrSetInfo final : public CTarnFWPrinted<CTarnFWAddrSetNameCmd<16, 58>> {
 public:
  CTarnFWCmdGetAddrSetInfo(const dvs_port_* port, const FWAddrSetID_t& id)
      : CTarnFWPrinted(port, id) {}
  std::string toString() const override { return statement("describe info of addrset"); }

  static std::uint32_t count(const CTarnFWCmdReply& reply) { return reply.word(38); }
  static std::uint64_t realizationTime(const CTarnFWCmdReply& reply) { return reply.longWord(42); }
  static std::uint64_t generation(const CTarnFWCmdReply& reply) { return reply.longWord(50); }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
