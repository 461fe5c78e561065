#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "TarnFWAttrStaticMaps.h"
#include "TarnFWAttrValue.h"
#include "TarnFWContainerElement.h"
#include "TarnFWSid.h"

namespace TarnFirewall {

/// A key and a value that deep packet inspection matches or reports: an application, a TLS version,
/// a path, a user. The value is held in binary form and as text.
///
/// The constructors throw `CInvalidAttrKey` for a number that is not a key and `CInvalidAttrValue`
/// for a value that the key does not take. Identifiers are 16 bytes in the order in which they are
/// written.
class CTarnFWL7Attribute final : public CTarnFWContainerElement {
 public:
  using Uuid = std::array<unsigned char, 16>;

  /// For keys of encoded numbers, by name, and of security identifiers.
  CTarnFWL7Attribute(FWAttrKeyID key, const std::string& text);

  /// For keys of encoded numbers.
  CTarnFWL7Attribute(FWAttrKeyID key, long value);

  /// For keys of unsigned numbers.
  CTarnFWL7Attribute(FWAttrKeyID key, unsigned long value);

  /// For keys of an identifier with a text, which may be empty. Refuses a text that its 16-bit
  /// length can't hold.
  CTarnFWL7Attribute(FWAttrKeyID key, const Uuid& uuid, const std::string& text);

  /// The identifier as two numbers, each in network order, the first eight bytes first.
  CTarnFWL7Attribute(FWAttrKeyID key, unsigned long high, unsigned long low,
                     const std::string& text);

  /// Reads a record of exactly `size` bytes. An identifier's text becomes "TEXT(IDENTIFIER)", or
  /// the identifier alone, and is written so again: the kernel only matches the identifier.
  CTarnFWL7Attribute(const _FWAttrValue* value, unsigned int size);

  FWContElementType getTlvType() const override;
  unsigned int getTlvLength() const override;
  bool serializeValue(void* buffer, unsigned int size, unsigned int* written) const override;

  /// Key, kind of value, value. The text of an identifier plays no part.
  bool operator==(const CTarnFWContainerElement& other) const override;
  bool operator==(const CTarnFWL7Attribute& other) const;
  bool operator<(const CTarnFWContainerElement& other) const override;
  SortKey sortKey() const override;

  FWAttrKeyID getKeyID() const { return key_; }
  FWAttrKeyValueType getAttrType() const { return type_; }
  const Uuid& getUUID() const { return value_.uuid; }
  long getInt() const { return value_.number; }
  unsigned long getUInt() const { return value_.unsignedNumber; }

  /// Text of a security identifier.
  const std::string& getSID() const { return text_; }
  const std::string& getString() const { return text_; }

  std::string toStringValue() const;

  /// "KEY : VALUE".
  std::string toString() const override;

  /// True when the record's type and length agree with each other and with `size`. Logs what is
  /// wrong.
  static bool checkFWAttrValue(const _FWAttrValue* value, unsigned int size);

 private:
  union Value {
    std::int64_t number;
    std::uint64_t unsignedNumber;
    Uuid uuid;
    fwattr_sid sid;
  };
  static_assert(sizeof(Value) == 72);

  struct Kind;
  const Kind& kind() const;

  void init(FWAttrKeyID key);
  void initUuid(const Uuid& uuid, const std::string& text);

  FWAttrKeyID key_ = FW_ATTR_KEY_NONE;
  FWAttrKeyValueType type_ = FW_ATTR_VALUE_INT;
  Value value_;
  std::string text_;
};

}  // namespace TarnFirewall
