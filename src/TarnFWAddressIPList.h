#pragma once

#include "TarnFWAddressList.h"

namespace TarnFirewall {

/// The members of an IP set, as the kernel lists them: types 0 to 6. Text "ip " and the list,
/// code 16.
class CTarnFWAddressIPList final : public CTarnFWAddressList {
 public:
  /// Throws `CInvalidAddressException` for a record of another type.
  CTarnFWAddressIPList(const FWAddrSetID_t& id, const FWAddress_* records, unsigned int count);

  int getType() const override;
  std::string toString() const override;
  void appendTo(CTarnFWText& text) const override;
};

}  // namespace TarnFirewall
