#pragma once

#include <span>
#include <string>

#include "TarnFWAddress.h"

namespace TarnFirewall {

/// What all addresses of one record share: the frame of the text form, of the wire form and of the
/// ordering. A class gives its code, its text, its value area and its comparison of values.
class CTarnFWAddressRecord : public CTarnFWAddress {
 public:
  unsigned int getMsgSize() const final { return sizeof(FWAddress_); }

  /// "not " when negated, then the class's text.
  std::string toString() const final;
  void appendTo(CTarnFWText& text) const final;

  /// Writes the type code, bit 0 of the flags and the value area; touches no other byte. `written`
  /// may be null.
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) final;

  bool operator<(const CTarnFWAddress& other) const final;

 protected:
  /// Where a class writes its fields: the record from its fifth byte on.
  using ValueArea = std::span<std::uint8_t, sizeof FWAddress_::value>;

  explicit CTarnFWAddressRecord(bool negated) : CTarnFWAddress(negated) {}
  explicit CTarnFWAddressRecord(const FWAddress_& record)
      : CTarnFWAddress((record.flags & kAddressNegated) != 0) {}

 private:
  virtual void appendValue(CTarnFWText& text) const = 0;
  virtual void storeValue(ValueArea value) const = 0;

  /// Both have the same type code, so that the other can be cast to the own class.
  virtual bool valueLess(const CTarnFWAddress& other) const = 0;
};

}  // namespace TarnFirewall
