#include "TarnFWL7Attribute.h"

#include <algorithm>
#include <compare>
#include <cstring>
#include <iterator>
#include <limits>
#include <typeinfo>

#include "TarnFWAttributeUtils.h"
#include "TarnFWException.h"
#include "TarnFWLog.h"
#include "TarnFWText.h"
#include "TarnFWUtilIdentifier.h"

namespace TarnFirewall {

namespace {

constexpr unsigned int kHead = sizeof(_FWAttrValue);
constexpr unsigned int kNumberLength = kHead + 8;
constexpr unsigned int kSidLength = kHead + sizeof(fwattr_sid);
constexpr unsigned int kTextLengthAt = kHead + 16;
constexpr unsigned int kTextAt = kTextLengthAt + 2;

/// Longest text whose length with its NUL fits the record's 16 bits.
constexpr std::size_t kMaxText = std::numeric_limits<std::uint16_t>::max() - 1;

std::string keyName(FWAttrKeyID key) { return std::string(dpID2str(key)); }

[[noreturn]] void refuse(FWAttrKeyID key, const std::string& value) {
  throw CInvalidAttrValue(keyName(key) + " : " + value);
}

constexpr std::size_t kUuidText = 36;

void appendUuid(std::string* to, const CTarnFWL7Attribute::Uuid& uuid) {
  char text[kUuidText + 1];
  if (!uuid2normalstr(uuid.data(), text, sizeof text)) {
    throw CInvalidAttrValue("failed to convert uuid value to string");
  }
  to->append(text, kUuidText);
}

std::string uuidText(const CTarnFWL7Attribute::Uuid& uuid) {
  std::string text;
  appendUuid(&text, uuid);
  return text;
}

/// The beginning of a value, in two numbers that are ordered as the values are.
using Beginning = std::array<std::uint64_t, 2>;

Beginning beginningOf(const std::array<unsigned char, 16>& bytes) {
  return {loadRecord<net64>(bytes.data()), loadRecord<net64>(bytes.data() + 8)};
}

}  // namespace

/// What the kinds of values do each in its own way. The kind of an attribute is its key's.
struct CTarnFWL7Attribute::Kind {
  using Attribute = CTarnFWL7Attribute;

  const char* word;      // in the log line about a record of a wrong size
  unsigned int length;   // bytes of the record, 0 when a text ends it
  unsigned int minimum;  // bytes below which the log line is another

  /// Bytes of a whole record of `size` bytes by what it holds; 0 when that is too short to say.
  unsigned int recordLength(const _FWAttrValue* record, unsigned int size) const {
    if (length != 0) return length;
    if (size < kTextAt) return 0;
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(record);
    return kTextAt + std::uint16_t{loadRecord<host16>(bytes + kTextLengthAt)};
  }

  /// Takes a value by its text; null when the kind is not given so.
  bool (*parse)(Attribute& attribute, const std::string& text);

  /// Reads the value of a record of `size` bytes that `checkFWAttrValue` has passed.
  void (*read)(Attribute& attribute, const std::uint8_t* record, unsigned int size);

  /// Writes the value into a record, all of which is there.
  void (*write)(const Attribute& attribute, std::uint8_t* record);

  std::strong_ordering (*compare)(const Attribute& left, const Attribute& right);

  /// Ordered as `compare` does, where they differ.
  Beginning (*beginning)(const Attribute& attribute);

  std::string (*text)(const Attribute& attribute);

  /// The kind of a number, null when there is none.
  static const Kind* of(unsigned int type);

  // Signed numbers
  static void readNumber(Attribute& attribute, const std::uint8_t* record, unsigned int) {
    attribute.value_.number = loadRecord<hosti64>(record + kHead);
  }
  static void writeNumber(const Attribute& attribute, std::uint8_t* record) {
    storeRecord(record + kHead, hosti64(attribute.value_.number));
  }
  static std::strong_ordering compareNumber(const Attribute& left, const Attribute& right) {
    return left.value_.number <=> right.value_.number;
  }
  static Beginning numberBeginning(const Attribute& attribute) {
    // The sign's bit turned over puts the negative numbers first.
    return {static_cast<std::uint64_t>(attribute.value_.number) ^ std::uint64_t{1} << 63, 0};
  }
  static std::string numberText(const Attribute& attribute) {
    return std::to_string(attribute.value_.number);
  }

  // Unsigned numbers
  static void readUnsigned(Attribute& attribute, const std::uint8_t* record, unsigned int) {
    attribute.value_.unsignedNumber = loadRecord<host64>(record + kHead);
  }
  static void writeUnsigned(const Attribute& attribute, std::uint8_t* record) {
    storeRecord(record + kHead, host64(attribute.value_.unsignedNumber));
  }
  static std::strong_ordering compareUnsigned(const Attribute& left, const Attribute& right) {
    return left.value_.unsignedNumber <=> right.value_.unsignedNumber;
  }
  static Beginning unsignedBeginning(const Attribute& attribute) {
    return {attribute.value_.unsignedNumber, 0};
  }
  static std::string unsignedText(const Attribute& attribute) {
    return std::to_string(attribute.value_.unsignedNumber);
  }

  // Numbers with a name
  static bool parseName(Attribute& attribute, const std::string& text) {
    long number = 0;
    if (!str2eint(attribute.key_, text, &number)) return false;
    attribute.value_.number = number;
    return true;
  }
  static void readNamed(Attribute& attribute, const std::uint8_t* record, unsigned int size) {
    readNumber(attribute, record, size);
    if (!eint2str(attribute.key_, attribute.value_.number, &attribute.text_)) {
      throw CInvalidAttrValue("invalid encoded int value " + numberText(attribute) + " for key " +
                              keyName(attribute.key_));
    }
  }

  // Identifiers
  static void readUuid(Attribute& attribute, const std::uint8_t* record, unsigned int size);
  static void writeUuid(const Attribute& attribute, std::uint8_t* record) {
    const Uuid& uuid = attribute.value_.uuid;
    const unsigned int length = attribute.getTlvLength() - kTextAt;
    std::memcpy(record + kHead, uuid.data(), uuid.size());
    storeRecord(record + kTextLengthAt, host16(static_cast<std::uint16_t>(length)));
    std::memcpy(record + kTextAt, attribute.text_.c_str(), length);
  }
  static std::strong_ordering compareUuid(const Attribute& left, const Attribute& right) {
    return left.value_.uuid <=> right.value_.uuid;
  }
  static Beginning uuidBeginning(const Attribute& attribute) {
    return beginningOf(attribute.value_.uuid);
  }

  // Security identifiers
  static bool parseSid(Attribute& attribute, const std::string& text) {
    return sid_str2bin(text.c_str(), &attribute.value_.sid);
  }
  static void readSid(Attribute& attribute, const std::uint8_t* record, unsigned int size);
  static void writeSid(const Attribute& attribute, std::uint8_t* record) {
    storeRecord(record + kHead, attribute.value_.sid);
  }

  // The text
  static std::strong_ordering compareText(const Attribute& left, const Attribute& right) {
    return left.text_ <=> right.text_;
  }
  static Beginning textBeginning(const Attribute& attribute) {
    std::array<unsigned char, 16> first{};
    std::memcpy(first.data(), attribute.text_.data(),
                std::min(attribute.text_.size(), first.size()));
    return beginningOf(first);
  }
  static std::string ownText(const Attribute& attribute) { return attribute.text_; }
};

void CTarnFWL7Attribute::Kind::readUuid(Attribute& attribute, const std::uint8_t* record,
                                        unsigned int size) {
  Uuid& uuid = attribute.value_.uuid;
  std::memcpy(uuid.data(), record + kHead, uuid.size());
  const std::uint16_t length = loadRecord<host16>(record + kTextLengthAt);
  if (length == 0) {
    attribute.text_ = uuidText(uuid);
    return;
  }
  if (length > size - kTextAt) {
    throw CInvalidAttrValue(
        formatText("buffer size %u is less than string length %u", size - kHead, length));
  }
  const auto* const text = reinterpret_cast<const char*>(record) + kTextAt;
  std::size_t characters = fieldLength(text, length);
  if (characters + kUuidText + 2 > kMaxText) {
    // The composed text must fit the record again.
    characters = kMaxText - kUuidText - 2;
    TARNFW_WARNING("text of attribute %s cut off at %zu characters\n",
                   keyName(attribute.key_).c_str(), characters);
  }
  attribute.text_.reserve(characters + kUuidText + 2);
  attribute.text_.assign(text, characters);
  attribute.text_ += '(';
  appendUuid(&attribute.text_, uuid);
  attribute.text_ += ')';
}

void CTarnFWL7Attribute::Kind::readSid(Attribute& attribute, const std::uint8_t* record,
                                       unsigned int) {
  attribute.value_.sid = loadRecord<fwattr_sid>(record + kHead);
  char text[kSidTextSize];
  if (!sid_bin2str(&attribute.value_.sid, text, sizeof text)) {
    // The raw bytes from the revision to the record's end, which is where they stop.
    constexpr std::size_t kRevisionAt = offsetof(fwattr_sid, revision);
    throw CInvalidAttrValue("invalid sid value " + keyName(attribute.key_) + " : " +
                            std::string(reinterpret_cast<const char*>(record) + kHead + kRevisionAt,
                                        sizeof(fwattr_sid) - kRevisionAt));
  }
  attribute.text_ = text;
}

const CTarnFWL7Attribute::Kind* CTarnFWL7Attribute::Kind::of(unsigned int type) {
  static constexpr Kind kKinds[] = {
      // FW_ATTR_VALUE_INT
      {"int", kNumberLength, 0, nullptr, readNumber, writeNumber, compareNumber, numberBeginning,
       numberText},
      // FW_ATTR_VALUE_UINT
      {"uint", kNumberLength, 0, nullptr, readUnsigned, writeUnsigned, compareUnsigned,
       unsignedBeginning, unsignedText},
      // FW_ATTR_VALUE_EINT
      {"int", kNumberLength, 0, parseName, readNamed, writeNumber, compareNumber, numberBeginning,
       ownText},
      // FW_ATTR_VALUE_UUID
      {"uuid", 0, kNumberLength, nullptr, readUuid, writeUuid, compareUuid, uuidBeginning, ownText},
      // FW_ATTR_VALUE_SID
      {"sid", kSidLength, 0, parseSid, readSid, writeSid, compareText, textBeginning, ownText},
  };
  static_assert(FW_ATTR_VALUE_INT == 0 && FW_ATTR_VALUE_UINT == 1 && FW_ATTR_VALUE_EINT == 2 &&
                FW_ATTR_VALUE_UUID == 3 && FW_ATTR_VALUE_SID + 1 == std::size(kKinds));
  return type < std::size(kKinds) ? kKinds + type : nullptr;
}

const CTarnFWL7Attribute::Kind& CTarnFWL7Attribute::kind() const { return *Kind::of(type_); }

void CTarnFWL7Attribute::init(FWAttrKeyID key) {
  const _FWAttrKey* const row = dpID2attrkey(key);
  if (row == nullptr) throw CInvalidAttrKey(std::to_string(static_cast<int>(key)));
  key_ = key;
  type_ = row->valueType;
  std::memset(&value_, 0, sizeof value_);
}

CTarnFWL7Attribute::CTarnFWL7Attribute(FWAttrKeyID key, const std::string& text)
    : CTarnFWContainerElement(FW_CONTAINER_ELEMENT_ATTRIBUTE) {
  init(key);
  if (kind().parse == nullptr) {
    throw CInvalidAttrValue("invalid type for key: " + keyName(key) + " value: " + text);
  }
  if (!kind().parse(*this, text)) refuse(key, text);
  text_ = text;
}

CTarnFWL7Attribute::CTarnFWL7Attribute(FWAttrKeyID key, long value)
    : CTarnFWContainerElement(FW_CONTAINER_ELEMENT_ATTRIBUTE) {
  init(key);
  if (type_ != FW_ATTR_VALUE_INT && type_ != FW_ATTR_VALUE_EINT) {
    throw CInvalidAttrValue("invalid type for " + keyName(key) + " : " + std::to_string(value));
  }
  value_.number = value;
  if (type_ == FW_ATTR_VALUE_EINT && !eint2str(key, value, &text_)) {
    refuse(key, std::to_string(value));
  }
}

CTarnFWL7Attribute::CTarnFWL7Attribute(FWAttrKeyID key, unsigned long value)
    : CTarnFWContainerElement(FW_CONTAINER_ELEMENT_ATTRIBUTE) {
  init(key);
  if (type_ != FW_ATTR_VALUE_UINT) refuse(key, std::to_string(value));
  value_.unsignedNumber = value;
}

CTarnFWL7Attribute::CTarnFWL7Attribute(FWAttrKeyID key, const Uuid& uuid, const std::string& text)
    : CTarnFWContainerElement(FW_CONTAINER_ELEMENT_ATTRIBUTE) {
  init(key);
  initUuid(uuid, text);
}

CTarnFWL7Attribute::CTarnFWL7Attribute(FWAttrKeyID key, unsigned long high, unsigned long low,
                                       const std::string& text)
    : CTarnFWContainerElement(FW_CONTAINER_ELEMENT_ATTRIBUTE) {
  init(key);
  Uuid uuid;
  storeRecord(uuid.data(), net64(high));
  storeRecord(uuid.data() + 8, net64(low));
  initUuid(uuid, text);
}

void CTarnFWL7Attribute::initUuid(const Uuid& uuid, const std::string& text) {
  if (type_ != FW_ATTR_VALUE_UUID) refuse(key_, uuidText(uuid));
  if (text.size() > kMaxText) refuse(key_, text);
  value_.uuid = uuid;
  text_ = text;
}

CTarnFWL7Attribute::CTarnFWL7Attribute(const _FWAttrValue* value, unsigned int size)
    : CTarnFWContainerElement(FW_CONTAINER_ELEMENT_ATTRIBUTE) {
  if (value == nullptr) throw CInvalidAttrValue("null value pointer");
  if (size < kHead) {
    throw CInvalidAttrValue(
        formatText("size of value pointer %u is less than minsize %u", size, kHead));
  }
  if (!checkFWAttrValue(value, size)) throw CInvalidAttrValue("invalid FWAttr Value");
  const auto head = loadRecord<_FWAttrValue>(value);
  const auto key = static_cast<FWAttrKeyID>(std::uint16_t{head.key});
  const _FWAttrKey* const row = dpID2attrkey(key);
  if (row == nullptr) {
    throw CInvalidAttrKey("invalid key id " + std::to_string(static_cast<int>(key)));
  }
  if (row->valueType != head.type) throw CInvalidAttrKey("invalid type for key " + keyName(key));
  init(key);
  kind().read(*this, reinterpret_cast<const std::uint8_t*>(value), size);
}

bool CTarnFWL7Attribute::checkFWAttrValue(const _FWAttrValue* value, unsigned int size) {
  if (value == nullptr || size < kHead) {
    TARNFW_ERROR("size of buffer less than sizeof FWAttrValue\n");
    return false;
  }
  const auto head = loadRecord<_FWAttrValue>(value);
  const std::uint32_t length = head.length;
  if (length != size) {
    TARNFW_ERROR("size of buffer (%u) != length of fwattrvalue (%u)\n", size, length);
    return false;
  }
  const Kind* const kind = Kind::of(head.type);
  if (kind == nullptr) {
    TARNFW_ERROR("unknown attribute value\n\n");
    return false;
  }
  if (length < kind->minimum) {
    TARNFW_ERROR("invalid minimum size for %s attribute\n", kind->word);
    return false;
  }
  if (length != kind->recordLength(value, length)) {
    TARNFW_ERROR("invalid size for %s attribute\n", kind->word);
    return false;
  }
  return true;
}

FWContElementType CTarnFWL7Attribute::getTlvType() const { return elementType(); }

unsigned int CTarnFWL7Attribute::getTlvLength() const {
  if (kind().length != 0) return kind().length;
  return kTextAt + (text_.empty() ? 0 : static_cast<unsigned int>(text_.size()) + 1);
}

bool CTarnFWL7Attribute::serializeValue(void* buffer, unsigned int size,
                                        unsigned int* written) const {
  if (buffer == nullptr) return false;
  const unsigned int length = getTlvLength();
  if (length > size) {
    TARNFW_ERROR("failed to serialize insufficient buffer space: %u, need : %u\n\n", size, length);
    return false;
  }
  auto* const record = static_cast<std::uint8_t*>(buffer);
  _FWAttrValue head;
  head.key = static_cast<std::uint16_t>(key_);
  head.type = type_;
  head.length = length;
  head.zero = 0;
  storeRecord(record, head);
  kind().write(*this, record);
  if (written != nullptr) *written = length;
  return true;
}

bool CTarnFWL7Attribute::operator==(const CTarnFWContainerElement& other) const {
  if (typeid(other) != typeid(CTarnFWL7Attribute)) return false;
  return *this == static_cast<const CTarnFWL7Attribute&>(other);
}

bool CTarnFWL7Attribute::operator==(const CTarnFWL7Attribute& that) const {
  return key_ == that.key_ && type_ == that.type_ && kind().compare(*this, that) == 0;
}

bool CTarnFWL7Attribute::operator<(const CTarnFWContainerElement& other) const {
  if (typeid(other) != typeid(CTarnFWL7Attribute)) return false;
  const auto& that = static_cast<const CTarnFWL7Attribute&>(other);
  if (key_ != that.key_) return key_ < that.key_;
  if (type_ != that.type_) return type_ < that.type_;
  return kind().compare(*this, that) < 0;
}

CTarnFWContainerElement::SortKey CTarnFWL7Attribute::sortKey() const {
  const auto value = kind().beginning(*this);
  return {static_cast<std::uint64_t>(key_) << 32 | type_, value[0], value[1]};
}

std::string CTarnFWL7Attribute::toStringValue() const { return kind().text(*this); }

std::string CTarnFWL7Attribute::toString() const { return keyName(key_) + " : " + toStringValue(); }

}  // namespace TarnFirewall
