#pragma once

#include "TarnFWAddressList.h"

namespace TarnFirewall {

/// The members of a SID set, as the kernel lists them: attributes of sid value. Text "sid " and the
/// list, code 18.
class CTarnFWAddressSIDList final : public CTarnFWAddressList {
 public:
  /// Throws `CInvalidAddressException` for a record of another type.
  CTarnFWAddressSIDList(const FWAddrSetID_t& id, const FWAddress_* records, unsigned int count);

  int getType() const override;
  std::string toString() const override;
  void appendTo(CTarnFWText& text) const override;
};

}  // namespace TarnFirewall
