#include "TarnFWAddressIPv4CIDR.h"

namespace TarnFirewall {

bool CTarnFWAddressIPv4CIDR::valueLess(const CTarnFWAddress& other) const {
  const auto& right = static_cast<const CTarnFWAddressIPv4CIDR&>(other);
  if (prefix_ != right.prefix_) return prefix_ < right.prefix_;
  return unswapped(address_) < unswapped(right.address_);
}

}  // namespace TarnFirewall
