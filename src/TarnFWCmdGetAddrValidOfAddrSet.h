#pragma once

#include "TarnFWAddressReadCmd.h"
#include "TarnFWRecords.h"

namespace TarnFirewall {

/// Asks for the addresses of a set with their validity counts, and prints them.
///
/// Command 18  request  as `CTarnFWAddressReadCmd`, form 0      reply  +50  u32  records returned
///                                                                     +54  145 bytes each
class CTarnFWCmdGetAddrValidOfAddrSet final
    : public CTarnFWAddressReadCmd<18, 0, 54, sizeof(FWAddressValid_)> {
 public:
  using CTarnFWAddressReadCmd::CTarnFWAddressReadCmd;
  std::string toString() const override { return statement("describe valid address of addrset"); }

  std::uint32_t returned(const CTarnFWCmdReply& reply) const { return entries(reply, 50); }
  static FWAddressValid_ recordAt(const CTarnFWCmdReply& reply, std::uint32_t index) {
    return reply.record<FWAddressValid_>(offsetOf(index));
  }

 private:
  void read(const CTarnFWCmdReply& reply) override;
};

}  // namespace TarnFirewall
