#pragma once

#include "TarnFWAddressIP.h"

namespace TarnFirewall {

/// A range of IPv4 addresses: text "ip A-B", code 3. First is strictly below last, so that there is
/// no range of one address.
class CTarnFWAddressIPv4Range final
    : public CTarnFWAddressIPRange<IPv4Family, FW_ADDRESS_IPV4_RANGE> {
 public:
  using CTarnFWAddressIPRange::CTarnFWAddressIPRange;

 private:
  /// By last, then first, as unswapped numbers. Meant in this order.
  bool valueLess(const CTarnFWAddress& other) const override;
};

}  // namespace TarnFirewall
