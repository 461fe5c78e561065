#pragma once

#include "TarnFWAddressMAC.h"

namespace TarnFirewall {

/// One MAC address: text "mac A", code 7. Wire: the address.
class CTarnFWAddressEther final : public CTarnFWAddressMAC {
 public:
  /// Throws `CInvalidAddressException` with the text when `ether_aton_r` refuses it, or something
  /// other than white space follows the last octet.
  CTarnFWAddressEther(const char* text, bool negated);
  CTarnFWAddressEther(const fw_ether_& address, bool negated);
  explicit CTarnFWAddressEther(const FWAddress_* record);

  int getType() const override;
  bool getAddress(fw_ether_* address) const;

 private:
  void appendValue(CTarnFWText& text) const override;
  void storeValue(ValueArea value) const override;

  /// Descending by bytes, the reverse of the other layer-2 addresses. The kernel keeps its sets in
  /// this order.
  bool valueLess(const CTarnFWAddress& other) const override;

  fw_ether_ address_;
};

}  // namespace TarnFirewall
