#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks how many address sets of a type there are, and prints it. Type 0 counts every kind.
///
/// Command 20  request  +0  low four bits  type                 reply  +4  u32  count
class CTarnFWCmdGetAddrSetCount final : public CTarnFWPrinted<CTarnFWFixedCmd<20, 8>> {
 public:
  CTarnFWCmdGetAddrSetCount(const dvs_port_* port, FWAddrSetType_t type)
      : CTarnFWPrinted(port), type_(type) {}
  std::string toString() const override;

  static std::uint32_t count(const CTarnFWCmdReply& reply) { return reply.word(4); }

 private:
  void fill(std::span<std::byte> body) const override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;

  FWAddrSetType_t type_;
};

}  // namespace TarnFirewall
