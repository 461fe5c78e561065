#pragma once

/// A set of rule ids, ascending and without duplicates.

#include <cstdint>
#include <set>

#include "TarnFWObject.h"

namespace TarnFirewall {

class CTarnFWIDList final : public ITarnFWObject {
 public:
  CTarnFWIDList() = default;

  /// Adds an id; one that is there already changes nothing. Always true.
  bool addID(std::uint32_t id);

  std::size_t size() const { return ids_.size(); }

  /// Four bytes an id. Throws `CIntegerOverflowException` for a count of 2^30 or more.
  unsigned int getMsgSize() const override { return sizeOf(ids_.size()); }
  int getType() const override;

  /// "{1,2,3}". Ids above 2147483647 print negative, as scripts know them.
  std::string toString() const override;

  /// Host-order words, ascending.
  bool toMessage(void* buffer, unsigned int room, unsigned int* written) override;

  /// Message size of a list of `count` ids, with the exception of `getMsgSize`.
  static unsigned int sizeOf(std::uint64_t count);

 private:
  std::set<std::uint32_t> ids_;
};

/// By message size. Lists of one size have no order: throws `CUnsupportedException`.
bool operator<(const CTarnFWIDList& left, const CTarnFWIDList& right);

}  // namespace TarnFirewall
