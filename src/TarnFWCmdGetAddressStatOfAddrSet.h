#pragma once

#include "TarnFWAddressReadCmd.h"
#include "TarnFWRecords.h"

namespace TarnFirewall {

/// Asks for the statistics of a set's addresses, in their order. Prints nothing: the caller reads
/// the records.
///
/// Command 19  request  as `CTarnFWAddressReadCmd`, form 0      reply  +54  u32  records returned
///                      +50  u32  clear what was read                  +58  80 bytes each
class CTarnFWCmdGetAddressStatOfAddrSet final
    : public CTarnFWAddressReadCmd<19, 0, 54, 58, FWAddressStat_> {
 public:
  CTarnFWCmdGetAddressStatOfAddrSet(const dvs_port_* port, const FWAddrSetID_t& id,
                                    std::uint32_t max, std::uint32_t from, std::uint32_t clear)
      : CTarnFWAddressReadCmd(port, id, max, from), clear_(clear) {}
  std::string toString() const override { return statement("describe address stat of addrset"); }

 private:
  void fill(std::span<std::byte> body) const override;
  void read(const CTarnFWCmdReply& reply) override;

  std::uint32_t clear_;
};

}  // namespace TarnFirewall
