#pragma once

#include "TarnFWAddressRecord.h"

namespace TarnFirewall {

/// What all layer-2 addresses share.
class CTarnFWAddressMAC : public CTarnFWAddressRecord {
 public:
  bool isMACAddress() const final;

 protected:
  using CTarnFWAddressRecord::CTarnFWAddressRecord;

  /// Six octets of two lower-case digits, whatever the input looked like.
  static void appendOctets(CTarnFWText& text, const fw_ether_& address);
};

/// What the layer-2 addresses of two values share. Wire: first, second.
class CTarnFWAddressMACPair : public CTarnFWAddressMAC {
 public:
  bool getAddress(fw_ether_* first, fw_ether_* second) const;

 protected:
  /// Throws `CInvalidAddressException` when `format` does not scan twelve values of at most 255
  /// from the text. Such an object is never negated: see the classes.
  CTarnFWAddressMACPair(const char* text, char separator);
  CTarnFWAddressMACPair(const fw_ether_& first, const fw_ether_& second, bool negated);
  explicit CTarnFWAddressMACPair(const FWAddress_& record);

  fw_ether_ first_;
  fw_ether_ second_;

 private:
  virtual char separator() const = 0;

  void appendValue(CTarnFWText& text) const final;
  void storeValue(ValueArea value) const final;

  /// By the first value, then by the second, in the order of their bytes.
  bool valueLess(const CTarnFWAddress& other) const final;
};

}  // namespace TarnFirewall
