#pragma once

#include "TarnFWAddressMAC.h"

namespace TarnFirewall {

/// A range of MAC addresses: text "mac A-B", code 8. It can be written to a record, but no factory
/// reads one back: the kernel never reports one.
class CTarnFWAddressEtherRange final : public CTarnFWAddressMACPair {
 public:
  /// Throws `CInvalidAddressException` with the text, then as `validateRange`. The bool is not
  /// stored: a negated one comes only from a record or from two values. Stored configurations are
  /// read so.
  CTarnFWAddressEtherRange(const char* text, bool negated);
  CTarnFWAddressEtherRange(const fw_ether_& first, const fw_ether_& last, bool negated);
  explicit CTarnFWAddressEtherRange(const FWAddress_* record);

  int getType() const override;

  /// Throws `CInvalidEtherRangeException` unless first is strictly below last. The last octet
  /// weighs most, the reverse of how a MAC address is read: the kernel compares the ends so.
  static void validateRange(const fw_ether_* first, const fw_ether_* last);

 private:
  char separator() const override;
};

}  // namespace TarnFirewall
