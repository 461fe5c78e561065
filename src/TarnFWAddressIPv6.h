#pragma once

#include "TarnFWAddressIP.h"

namespace TarnFirewall {

/// One IPv6 address: text "ip A", code 2. The word is the same for both families.
class CTarnFWAddressIPv6 final : public CTarnFWAddressIPSingle<IPv6Family, FW_ADDRESS_IPV6> {
 public:
  using CTarnFWAddressIPSingle::CTarnFWAddressIPSingle;

 private:
  /// When any word is less. Not a strict weak order: the kernel sorts sets this way.
  bool valueLess(const CTarnFWAddress& other) const override;
};

}  // namespace TarnFirewall
