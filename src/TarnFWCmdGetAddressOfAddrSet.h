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
    : public CTarnFWPrinted<CTarnFWAddressReadCmd<17, 1, 50, 70, FWAddress_>> {
 public:
  using CTarnFWPrinted::CTarnFWPrinted;
  std::string toString() const override;

 private:
  void read(const CTarnFWCmdReply& reply) override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
