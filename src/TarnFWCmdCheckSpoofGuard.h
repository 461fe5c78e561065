#pragma once

#include "TarnFWAddress.h"
#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks whether a filter guards a MAC address and by which IP addresses, and prints it.
///
/// Command 27  request  +8  u32  1        reply   +0  6 bytes    MAC address
///                                                +6  bit 0      enabled
///                                                +8  u32        addresses
///                                               +12  144 bytes  each, 1024 at most
class CTarnFWCmdCheckSpoofGuard final : public CTarnFWPrinted<CTarnFWFixedCmd<27, 147468>> {
 public:
  explicit CTarnFWCmdCheckSpoofGuard(const dvs_port_* port) : CTarnFWPrinted(port) {}
  std::string toString() const override { return "describe spoofguard"; }

  static bool enabled(const CTarnFWCmdReply& reply) { return (reply.byte(6) & 1) != 0; }
  static fw_ether_ mac(const CTarnFWCmdReply& reply) { return reply.record<fw_ether_>(0); }
  static CTarnFWReplyRecords<FWAddress_> addresses(const CTarnFWCmdReply& reply) {
    return reply.records<FWAddress_>(12, reply.word(8), 1024);
  }

 private:
  void fill(std::span<std::byte> body) const override { storeAt(body, 8, host32(1)); }
  void read(const CTarnFWCmdReply& reply) override { addresses(reply).checkedSize(); }
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
