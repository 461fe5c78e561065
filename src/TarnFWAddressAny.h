#pragma once

#include "TarnFWAddress.h"

namespace TarnFirewall {

/// Every address: text "any", code 0.
class CTarnFWAddressAny final : public CTarnFWAddress {
 public:
  CTarnFWAddressAny() = default;

  /// The record's flags are not read: the kernel reports "any" without them. A negated one is read
  /// as a plain one.
  explicit CTarnFWAddressAny(const FWAddress_* record);

  int getType() const override;
  std::string toString() const override;
  void appendTo(CTarnFWText& text) const override;

  /// Writes the type code alone; the flags byte stays as the buffer held it, which the kernel
  /// ignores for this type.
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;
  bool operator<(const CTarnFWAddress& other) const override;
};

}  // namespace TarnFirewall
