#pragma once

#include "TarnFWAddressIP.h"

namespace TarnFirewall {

/// One IPv4 address: text "ip A", code 1.
class CTarnFWAddressIPv4 final : public CTarnFWAddressIPSingle<IPv4Family, FW_ADDRESS_IPV4> {
 public:
  using CTarnFWAddressIPSingle::CTarnFWAddressIPSingle;

 private:
  /// By the unswapped number, so that the last octet weighs most, as in the sets of the kernel.
  bool valueLess(const CTarnFWAddress& other) const override;
};

}  // namespace TarnFirewall
