#pragma once

#include "TarnFWAddress.h"
#include "TarnFWAddressReadCmd.h"

namespace TarnFirewall {

/// Asks for the addresses of a set, and prints them.
///
/// Command 17  request  as `CTarnFWAddressReadCmd`, form 1      reply  +50  u32  addresses returned
///                                                                     +54  u64  realization time,
///                                                                               seconds since boot
///                                                                     +62  u64  generation number
///                                                                     +70  144 bytes each
class CTarnFWCmdGetAddressOfAddrSet final
    : public CTarnFWAddressReadCmd<17, 1, 70, sizeof(FWAddress_)> {
 public:
  using CTarnFWAddressReadCmd::CTarnFWAddressReadCmd;
  std::string toString() const override;

  std::uint32_t returned(const CTarnFWCmdReply& reply) const { return entries(reply, 50); }
  static FWAddress_ addressAt(const CTarnFWCmdReply& reply, std::uint32_t index) {
    return reply.record<FWAddress_>(offsetOf(index));
  }

 private:
  void read(const CTarnFWCmdReply& reply) override;
};

}  // namespace TarnFirewall
