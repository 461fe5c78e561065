#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks what an address set or container holds and how large it is, and prints it.
///
/// Command 15  request  +0  38 bytes  name of the set           reply  +38  u32  elements
///                                                                     +42  u32  type
///                                                                     +46  u32  serialized size
class CTarnFWCmdGetAddrSetTypeAndSize final : public CTarnFWPrinted<CTarnFWAddrSetNameCmd<15, 50>> {
 public:
  CTarnFWCmdGetAddrSetTypeAndSize(const dvs_port_* port, const FWAddrSetID_t& id)
      : CTarnFWPrinted(port, id) {}
  std::string toString() const override { return statement("describe size of addrset"); }

  static std::uint32_t count(const CTarnFWCmdReply& reply) { return reply.word(38); }
  static std::uint32_t type(const CTarnFWCmdReply& reply) { return reply.word(42); }
  static std::uint32_t serializedSize(const CTarnFWCmdReply& reply) { return reply.word(46); }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
