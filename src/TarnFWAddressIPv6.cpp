#include "TarnFWAddressIPv6.h"

namespace TarnFirewall {

bool CTarnFWAddressIPv6::valueLess(const CTarnFWAddress& other) const {
  const auto& right = static_cast<const CTarnFWAddressIPv6&>(other);
  return anyWordLess(address_, right.address_);
}

}  // namespace TarnFirewall
