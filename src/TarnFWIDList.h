#pragma once

#include <cstdint>
#include <functional>

#include "TarnFWSortedList.h"

namespace TarnFirewall {

/// A set of rule ids, which go to the kernel as words in host order. Its text is "{1,2,3}"; ids
/// above 2147483647 print negative, as scripts know them.
class CTarnFWIDList final : public CTarnFWSortedList<std::uint32_t, std::less<std::uint32_t>, 130> {
 public:
  /// Adds an id; one that is there already changes nothing. Always true.
  bool addID(std::uint32_t id);

 private:
  void appendEntry(CTarnFWText& text, const std::uint32_t& id) const override;
};

}  // namespace TarnFirewall
