#pragma once

#include "TarnFWAddressIP.h"

namespace TarnFirewall {

/// A block of IPv4 addresses: text "ip A/N", code 5.
class CTarnFWAddressIPv4CIDR final : public CTarnFWAddressIPCIDR<IPv4Family, FW_ADDRESS_IPV4_CIDR> {
 public:
  using CTarnFWAddressIPCIDR::CTarnFWAddressIPCIDR;

 private:
  /// By prefix length, then by the unmasked address as an unswapped number, as in the sets of
  /// the kernel.
  bool valueLess(const CTarnFWAddress& other) const override;
};

}  // namespace TarnFirewall
