#pragma once

#include <memory>

#include "TarnFWAddressList.h"

namespace TarnFirewall {

/// Builds the list of a set's members from the kernel's records.
class CTarnFWAddressListFactory {
 public:
  CTarnFWAddressListFactory() = delete;

  /// `type` is 1 for an IP set, 2 for a MAC set and 15, the attribute's type code and not the set
  /// type 5, for a SID set. Throws `CInvalidAddressException` for another.
  static std::unique_ptr<CTarnFWAddressList> newFromArray(int type, const FWAddrSetID_t& id,
                                                          const FWAddress_* records,
                                                          unsigned int count);

  /// Adds the addresses of `count` records to a list that owns its members. Throws what the
  /// address factory throws; those before that one are in the list then.
  static void append(CTarnFWAddressList& list, const FWAddress_* records, unsigned int count);
};

}  // namespace TarnFirewall
