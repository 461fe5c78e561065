#include "TarnFWAddressIPv6Range.h"

namespace TarnFirewall {

bool CTarnFWAddressIPv6Range::valueLess(const CTarnFWAddress& other) const {
  const auto& right = static_cast<const CTarnFWAddressIPv6Range&>(other);
  const auto mine = unswapped(last_);
  const auto others = unswapped(right.last_);
  for (std::size_t i = mine.size(); i-- > 0;) {
    if (mine[i] != others[i]) return mine[i] < others[i];
  }
  return anyWordLess(first_, right.first_);
}

}  // namespace TarnFirewall
