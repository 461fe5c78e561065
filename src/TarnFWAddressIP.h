#pragma once

/// The single address, the range and the block of addresses, each written once for both families.
/// The six classes of the two families add their ordering.
///
/// All share: the text constructor throws `CInvalidAddressException` with the whole text for
/// whatever is wrong with it; white space in front of an address is skipped and what follows an
/// address after white space is not looked at.

#include <cstring>
#include <string>
#include <string_view>

#include "TarnFWAddressIPFamily.h"
#include "TarnFWAddressRecord.h"
#include "TarnFWText.h"
#include "TarnFWUtil.h"

namespace TarnFirewall {

template <typename Family>
class CTarnFWAddressIP : public CTarnFWAddressRecord {
 public:
  bool isIPAddress() const final { return true; }
  bool isIPv4Address() const final { return Family::family == AF_INET; }
  bool isIPv6Address() const final { return Family::family == AF_INET6; }

 protected:
  using Address = typename Family::Address;
  using CTarnFWAddressRecord::CTarnFWAddressRecord;
  using ValueArea = CTarnFWAddressRecord::ValueArea;

  static bool read(std::string_view text, Address* address) {
    return inetPton(Family::family, text, address) == 1;
  }

  static Address load(const std::uint8_t* from) {
    Address address;
    std::memcpy(&address, from, sizeof address);
    return address;
  }

  static void store(std::uint8_t* to, const Address& address) {
    std::memcpy(to, &address, sizeof address);
  }

  static void appendAddress(CTarnFWText& text, const Address& address) {
    text.appendBy(Family::maxText, [&](char* to) { return Family::writeAddress(to, address); });
  }

  static std::string_view whole(const char* text) { return text == nullptr ? "" : text; }
};

/// One address. Wire: the address.
template <typename Family, FWAddressType_t Type>
class CTarnFWAddressIPSingle : public CTarnFWAddressIP<Family> {
  using Base = CTarnFWAddressIP<Family>;

 public:
  using typename Base::Address;

  CTarnFWAddressIPSingle(const char* text, bool negated)
      : CTarnFWAddressIPSingle(Base::whole(text), negated) {}
  CTarnFWAddressIPSingle(std::string_view text, bool negated) : Base(negated) {
    if (!Base::read(text, &address_)) throw CInvalidAddressException(text);
  }
  CTarnFWAddressIPSingle(const Address& address, bool negated) : Base(negated), address_(address) {}
  explicit CTarnFWAddressIPSingle(const FWAddress_* record)
      : Base(*record), address_(Base::load(record->value)) {}

  int getType() const final { return Type; }

  bool getAddress(Address* address) const {
    *address = address_;
    return this->negated_;
  }

 private:
  void appendValue(CTarnFWText& text) const final {
    text += "ip ";
    Base::appendAddress(text, address_);
  }
  void storeValue(typename Base::ValueArea value) const final {
    Base::store(value.data(), address_);
  }

 protected:
  Address address_;
};

/// All addresses from a first to a last one. Wire: first, last.
template <typename Family, FWAddressType_t Type>
class CTarnFWAddressIPRange : public CTarnFWAddressIP<Family> {
  using Base = CTarnFWAddressIP<Family>;

 public:
  using typename Base::Address;

  CTarnFWAddressIPRange(const char* text, bool negated) : Base(negated) {
    const std::string_view all = Base::whole(text);
    const std::size_t dash = all.find('-');
    if (dash == all.npos || !Base::read(all.substr(0, dash), &first_) ||
        !Base::read(all.substr(dash + 1), &last_) || !Family::isTextRange(first_, last_)) {
      throw CInvalidAddressException(all);
    }
  }

  /// Throws the family's range exception.
  CTarnFWAddressIPRange(const Address& first, const Address& last, bool negated)
      : Base(negated), first_(first), last_(last) {
    validate();
  }

  /// Throws the family's range exception.
  explicit CTarnFWAddressIPRange(const FWAddress_* record)
      : Base(*record),
        first_(Base::load(record->value)),
        last_(Base::load(record->value + sizeof(Address))) {
    validate();
  }

  int getType() const final { return Type; }

  bool getAddress(Address* first, Address* last) const {
    *first = first_;
    *last = last_;
    return this->negated_;
  }

 private:
  void validate() const {
    if (!Family::isRange(first_, last_)) throw typename Family::RangeException(first_, last_);
  }

  void appendValue(CTarnFWText& text) const final {
    text += "ip ";
    Base::appendAddress(text, first_);
    text += '-';
    Base::appendAddress(text, last_);
  }
  void storeValue(typename Base::ValueArea value) const final {
    Base::store(value.data(), first_);
    Base::store(value.data() + sizeof(Address), last_);
  }

 protected:
  Address first_;
  Address last_;
};

/// A block of addresses. The address is kept as given and printed so; only the wire form masks it.
/// Wire: masked address, prefix length.
template <typename Family, FWAddressType_t Type>
class CTarnFWAddressIPCIDR : public CTarnFWAddressIP<Family> {
  using Base = CTarnFWAddressIP<Family>;

 public:
  using typename Base::Address;

  /// The text has a prefix length, or a mask of contiguous bits, after the slash.
  CTarnFWAddressIPCIDR(const char* text, bool negated)
      : CTarnFWAddressIPCIDR(Base::whole(text), negated) {}
  CTarnFWAddressIPCIDR(std::string_view text, bool negated) : Base(negated) {
    const std::size_t slash = text.find('/');
    if (slash == text.npos || !Base::read(text.substr(0, slash), &address_) ||
        !readMask(text.substr(slash + 1))) {
      throw CInvalidAddressException(text);
    }
  }

  /// Throws `CInvalidAddressException` for a prefix that is too long.
  CTarnFWAddressIPCIDR(const Address& address, unsigned char prefix, bool negated)
      : Base(negated), prefix_(prefix), address_(address) {
    checkPrefix();
  }

  /// Throws `CInvalidAddressException` for a prefix that is too long.
  explicit CTarnFWAddressIPCIDR(const FWAddress_* record)
      : Base(*record),
        prefix_(record->value[sizeof(Address)]),
        address_(Base::load(record->value)) {
    checkPrefix();
  }

  int getType() const final { return Type; }

  bool getAddress(Address* address, unsigned char* prefix) const {
    *address = address_;
    *prefix = prefix_;
    return this->negated_;
  }
  bool getAddress(Address* address, unsigned char* prefix, Address* mask) const {
    *mask = this->mask();
    return getAddress(address, prefix);
  }

 private:
  bool readMask(std::string_view text) {
    if (text.find(Family::maskMark) != text.npos) {
      Address mask;
      return Base::read(text, &mask) && Family::mask2prefix(mask, &prefix_);
    }
    return Family::str2prefix(text, &prefix_);
  }

  void checkPrefix() const {
    if (prefix_ > Family::maxPrefix) {
      throw CInvalidAddressException(Family::invalidPrefix, prefix_);
    }
  }

  Address mask() const {
    Address mask{};
    Family::prefix2mask(prefix_, &mask);
    return mask;
  }

  void appendValue(CTarnFWText& text) const final {
    text += "ip ";
    Base::appendAddress(text, address_);
    text += '/';
    text.appendDecimal(prefix_);
  }
  void storeValue(typename Base::ValueArea value) const final {
    std::uint8_t mask[sizeof(Address)];
    Base::store(value.data(), address_);
    Base::store(mask, this->mask());
    for (std::size_t i = 0; i < sizeof mask; ++i) value[i] &= mask[i];
    value[sizeof(Address)] = prefix_;
  }

 protected:
  unsigned char prefix_;
  Address address_;
};

}  // namespace TarnFirewall
