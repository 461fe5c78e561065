#pragma once

#include "TarnFWAddressIP.h"

namespace TarnFirewall {

/// A block of IPv6 addresses: text "ip A/N", code 6.
class CTarnFWAddressIPv6CIDR final : public CTarnFWAddressIPCIDR<IPv6Family, FW_ADDRESS_IPV6_CIDR> {
 public:
  using CTarnFWAddressIPCIDR::CTarnFWAddressIPCIDR;

 private:
  /// By prefix length, then when any word of the unmasked address is less.
  bool valueLess(const CTarnFWAddress& other) const override;
};

}  // namespace TarnFirewall
