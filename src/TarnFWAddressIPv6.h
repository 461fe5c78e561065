#pragma once

#include "TarnFWAddressIP.h"

namespace TarnFirewall {

/// One IPv6 address: text "ip A", code 2. Nothing in the word tells the families apart.
class CTarnFWAddressIPv6 final : public CTarnFWAddressIPSingle<IPv6Family, FW_ADDRESS_IPV6> {
 public:
  using CTarnFWAddressIPSingle::CTarnFWAddressIPSingle;

 private:
  /// When any word is less: no strict weak order, and meant so.
  bool valueLess(const CTarnFWAddress& other) const override;
};

}  // namespace TarnFirewall
