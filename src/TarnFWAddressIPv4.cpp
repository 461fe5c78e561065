#include "TarnFWAddressIPv4.h"

namespace TarnFirewall {

bool CTarnFWAddressIPv4::valueLess(const CTarnFWAddress& other) const {
  const auto& right = static_cast<const CTarnFWAddressIPv4&>(other);
  return unswapped(address_) < unswapped(right.address_);
}

}  // namespace TarnFirewall
