#pragma once

#include "TarnFWAddressList.h"

namespace TarnFirewall {

/// The members of a MAC set, as the kernel lists them: single addresses only. Text "mac " and the
/// list, code 17.
class CTarnFWAddressMACList final : public CTarnFWAddressList {
 public:
  /// Throws `CInvalidAddressException` for a record of another type.
  CTarnFWAddressMACList(const FWAddrSetID_t& id, const FWAddress_* records, unsigned int count);

  int getType() const override;
  std::string toString() const override;
  void appendTo(CTarnFWText& text) const override;
};

}  // namespace TarnFirewall
