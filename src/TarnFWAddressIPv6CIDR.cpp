#include "TarnFWAddressIPv6CIDR.h"

namespace TarnFirewall {

bool CTarnFWAddressIPv6CIDR::valueLess(const CTarnFWAddress& other) const {
  const auto& right = static_cast<const CTarnFWAddressIPv6CIDR&>(other);
  if (prefix_ != right.prefix_) return prefix_ < right.prefix_;
  return anyWordLess(address_, right.address_);
}

}  // namespace TarnFirewall
