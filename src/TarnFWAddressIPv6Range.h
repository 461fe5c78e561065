#pragma once

#include "TarnFWAddressIP.h"

namespace TarnFirewall {

/// A range of IPv6 addresses: text "ip A-B", code 4. A text is judged by another rule than a
/// record, so that a range can be read from text, written, and refused on reading back. Stored
/// configurations rely on the one, the kernel on the other.
class CTarnFWAddressIPv6Range final
    : public CTarnFWAddressIPRange<IPv6Family, FW_ADDRESS_IPV6_RANGE> {
 public:
  using CTarnFWAddressIPRange::CTarnFWAddressIPRange;

 private:
  /// By last, unswapped word by word from the last word on; of equal ones, when any word of first
  /// is less. The kernel keeps its sets in this order.
  bool valueLess(const CTarnFWAddress& other) const override;
};

}  // namespace TarnFirewall
