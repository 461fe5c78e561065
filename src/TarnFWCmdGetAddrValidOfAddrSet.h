#pragma once

#include "TarnFWAddressReadCmd.h"
#include "TarnFWRecords.h"

namespace TarnFirewall {

/// Asks for the addresses of a set with their validity counts, and prints them.
///
/// Command 18  request  as `CTarnFWAddressReadCmd`, form 0      reply  +50  u32  records returned
///                                                                     +54  145 bytes each
class CTarnFWCmdGetAddrValidOfAddrSet final
    : public CTarnFWPrinted<CTarnFWAddressReadCmd<18, 0, 50, 54, FWAddressValid_>> {
 public:
  using CTarnFWPrinted::CTarnFWPrinted;
  std::string toString() const override { return statement("describe valid address of addrset"); }

 private:
  void read(const CTarnFWCmdReply& reply) override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
