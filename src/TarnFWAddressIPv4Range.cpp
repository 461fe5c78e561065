#include "TarnFWAddressIPv4Range.h"

namespace TarnFirewall {

bool CTarnFWAddressIPv4Range::valueLess(const CTarnFWAddress& other) const {
  const auto& right = static_cast<const CTarnFWAddressIPv4Range&>(other);
  if (last_.s_addr != right.last_.s_addr) return unswapped(last_) < unswapped(right.last_);
  return unswapped(first_) < unswapped(right.first_);
}

}  // namespace TarnFirewall
