#pragma once

#include "TarnFWAddressMAC.h"

namespace TarnFirewall {

/// A MAC address with a mask: text "mac A/M", code 9.
class CTarnFWAddressEtherMask final : public CTarnFWAddressMACPair {
 public:
  /// Throws `CInvalidAddressException` with the text. The bool is not stored: a negated one comes
  /// only from a record or from two values. Stored configurations are read so.
  CTarnFWAddressEtherMask(const char* text, bool negated);
  CTarnFWAddressEtherMask(const fw_ether_& address, const fw_ether_& mask, bool negated);
  explicit CTarnFWAddressEtherMask(const FWAddress_* record);

  int getType() const override;

 private:
  char separator() const override;
};

}  // namespace TarnFirewall
