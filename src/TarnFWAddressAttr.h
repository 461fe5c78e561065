#pragma once

#include <string>

#include "TarnFWAddress.h"
#include "TarnFWAttrStaticMaps.h"

namespace TarnFirewall {

/// What an attribute address holds beside its negation: the value area of an address record, as it
/// stands on the wire. Integers in host order.
struct FWAttrRecord_ {
  host32 key;               //  +0  record +4
  host32 valueType;         //  +4  record +8
  std::uint8_t value[132];  //  +8  record +12, by kind of value
};
static_assert(sizeof(FWAttrRecord_) == sizeof FWAddress_::value && alignof(FWAttrRecord_) == 1);
static_assert(offsetof(FWAttrRecord_, key) == 0 && offsetof(FWAttrRecord_, valueType) == 4 &&
              offsetof(FWAttrRecord_, value) == 8);

/// Value of an attribute of text.
struct fw_str {
  std::uint8_t unread[2];  // +0  record +12, kept as it stands
  char text[130];          // +2  record +14
};
static_assert(sizeof(fw_str) == sizeof FWAttrRecord_::value && alignof(fw_str) == 1);
static_assert(offsetof(fw_str, unread) == 0 && offsetof(fw_str, text) == 2);

/// Value of an attribute of a security identifier. It is carried and never looked into.
struct fw_sid {
  std::uint8_t bytes[76];  // +0  record +12
};
static_assert(sizeof(fw_sid) == 76 && alignof(fw_sid) == 1 && offsetof(fw_sid, bytes) == 0);

/// Base of the addresses that match on one attribute. It stands for no address itself: it has no
/// text and no wire form of its own.
class CTarnFWAddressAttr : public CTarnFWAddress {
 public:
  int getType() const override;
  bool isContainer() const override;
  std::string toString() const override;
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;

  /// Attribute addresses have no order: always false.
  bool operator<(const CTarnFWAddress& other) const override;

  FWAttrIDType getKey() const { return static_cast<FWAttrIDType>(std::uint32_t{record_.key}); }
  FWAttrIDValType getValueType() const {
    return static_cast<FWAttrIDValType>(std::uint32_t{record_.valueType});
  }

 protected:
  CTarnFWAddressAttr(FWAttrIDType key, FWAttrIDValType valueType, bool negated);

  /// Takes the 139 bytes from the key on as they stand; the last byte of the area stays zero.
  explicit CTarnFWAddressAttr(const FWAddress_& record);

  /// Writes the type code, the negation and the first `valueSize` bytes of the value.
  bool storeAttr(void* buffer, unsigned int size, unsigned int* written,
                 std::size_t valueSize) const;

  /// The number of the integer kinds, at record offset 16.
  std::int64_t number() const;
  void setNumber(std::int64_t number);

  FWAttrRecord_ record_;
};

/// An address that matches on one attribute, by kind of value: 0 signed, 1 unsigned, 2 text, 5
/// security identifier.
template <FWAttrIDValType Kind>
class CTarnFWAttr final : public CTarnFWAddressAttr {
  static_assert(Kind == FW_ATTR_ID_VALUE_INT || Kind == FW_ATTR_ID_VALUE_UINT ||
                Kind == FW_ATTR_ID_VALUE_STRING || Kind == FW_ATTR_ID_VALUE_SID);

 public:
  /// Kinds 0 and 1 read the text as a decimal number and throw `CInvalidAddressException` with the
  /// text when it is none. Kind 0 takes what `strtol` takes, so that trailing characters are
  /// ignored. Kind 1 takes whole texts up to 2147483647 only:
  /// scripts rely on the refusal of larger ones.
  ///
  /// Kinds 2 and 5 only measure the text and throw `CIDTooLongException` when it has more than 128
  /// or 75 characters. It is not kept, and the value stays zero: the kernel takes such texts in
  /// containers only.
  CTarnFWAttr(FWAttrIDType key, const char* text, bool negated);

  explicit CTarnFWAttr(const FWAddress_* record);

  int getType() const override;

  /// "not " when negated, the kind's words and the value; a security identifier is not rendered.
  std::string toString() const override;
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;
};

extern template class CTarnFWAttr<FW_ATTR_ID_VALUE_INT>;
extern template class CTarnFWAttr<FW_ATTR_ID_VALUE_UINT>;
extern template class CTarnFWAttr<FW_ATTR_ID_VALUE_STRING>;
extern template class CTarnFWAttr<FW_ATTR_ID_VALUE_SID>;

}  // namespace TarnFirewall
