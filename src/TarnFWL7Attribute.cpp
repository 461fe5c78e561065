#include "TarnFWL7Attribute.h"

#include <cstring>
#include <limits>
#include <typeinfo>

#include "TarnFWAttributeUtils.h"
#include "TarnFWException.h"
#include "TarnFWLog.h"
#include "TarnFWText.h"
#include "TarnFWUtil.h"

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

std::string uuidText(const CTarnFWL7Attribute::Uuid& uuid) {
  char text[37];
  if (!uuid2normalstr(uuid.data(), text, sizeof text)) {
    throw CInvalidAttrValue("failed to convert uuid value to string");
  }
  return text;
}

}  // namespace

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
  switch (type_) {
    case FW_ATTR_VALUE_EINT: {
      long number = 0;
      if (!str2eint(key, text, &number)) refuse(key, text);
      value_.number = number;
      break;
    }
    case FW_ATTR_VALUE_SID:
      if (!sid_str2bin(text.c_str(), &value_.sid)) refuse(key, text);
      break;
    default:
      throw CInvalidAttrValue("invalid type for key: " + keyName(key) + " value: " + text);
  }
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
  readValue(reinterpret_cast<const std::uint8_t*>(value), size);
}

/// `size` has been checked against the type, and the type against the key.
void CTarnFWL7Attribute::readValue(const std::uint8_t* record, unsigned int size) {
  const std::uint8_t* const value = record + kHead;
  switch (type_) {
    case FW_ATTR_VALUE_INT:
      value_.number = loadRecord<hosti64>(value);
      return;
    case FW_ATTR_VALUE_UINT:
      value_.unsignedNumber = loadRecord<host64>(value);
      return;
    case FW_ATTR_VALUE_EINT:
      value_.number = loadRecord<hosti64>(value);
      if (!eint2str(key_, value_.number, &text_)) {
        throw CInvalidAttrValue("invalid encoded int value " + std::to_string(value_.number) +
                                " for key " + keyName(key_));
      }
      return;
    case FW_ATTR_VALUE_UUID: {
      std::memcpy(value_.uuid.data(), value, value_.uuid.size());
      const std::string uuid = uuidText(value_.uuid);
      const std::uint16_t length = loadRecord<host16>(record + kTextLengthAt);
      if (length == 0) {
        text_ = uuid;
        return;
      }
      if (length > size - kTextAt) {
        throw CInvalidAttrValue(
            formatText("buffer size %u is less than string length %u", size - kHead, length));
      }
      const auto* const text = reinterpret_cast<const char*>(record) + kTextAt;
      std::size_t characters = fieldLength(text, length);
      if (characters + uuid.size() + 2 > kMaxText) {
        // The composed text must fit the record again.
        characters = kMaxText - uuid.size() - 2;
        TARNFW_WARNING("text of attribute %s cut off at %zu characters\n", keyName(key_).c_str(),
                       characters);
      }
      text_.assign(text, characters);
      text_ += '(';
      text_ += uuid;
      text_ += ')';
      return;
    }
    case FW_ATTR_VALUE_SID: {
      value_.sid = loadRecord<fwattr_sid>(value);
      char text[kSidTextSize];
      if (!sid_bin2str(&value_.sid, text, sizeof text)) {
        // The raw bytes from the revision to the record's end, which is where they stop.
        constexpr std::size_t kRevisionAt = offsetof(fwattr_sid, revision);
        throw CInvalidAttrValue("invalid sid value " + keyName(key_) + " : " +
                                std::string(reinterpret_cast<const char*>(value) + kRevisionAt,
                                            sizeof(fwattr_sid) - kRevisionAt));
      }
      text_ = text;
      return;
    }
  }
  throw CInvalidAttrValue("unknown type");
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
  switch (head.type) {
    case FW_ATTR_VALUE_INT:
    case FW_ATTR_VALUE_EINT:
      if (length == kNumberLength) return true;
      TARNFW_ERROR("invalid size for int attribute\n");
      return false;
    case FW_ATTR_VALUE_UINT:
      if (length == kNumberLength) return true;
      TARNFW_ERROR("invalid size for uint attribute\n");
      return false;
    case FW_ATTR_VALUE_UUID: {
      if (length < kNumberLength) {
        TARNFW_ERROR("invalid minimum size for uuid attribute\n");
        return false;
      }
      // From the minimum up to the text's length field there is nothing to compare with.
      const auto* const record = reinterpret_cast<const std::uint8_t*>(value);
      if (length >= kTextAt &&
          length - kTextAt == std::uint16_t{loadRecord<host16>(record + kTextLengthAt)}) {
        return true;
      }
      TARNFW_ERROR("invalid size for uuid attribute\n");
      return false;
    }
    case FW_ATTR_VALUE_SID:
      if (length == kSidLength) return true;
      TARNFW_ERROR("invalid size for sid attribute\n");
      return false;
    default:
      TARNFW_ERROR("unknown attribute value\n\n");
      return false;
  }
}

FWContElementType CTarnFWL7Attribute::getTlvType() const { return elementType(); }

unsigned int CTarnFWL7Attribute::getTlvLength() const {
  switch (type_) {
    case FW_ATTR_VALUE_INT:
    case FW_ATTR_VALUE_UINT:
    case FW_ATTR_VALUE_EINT:
      return kNumberLength;
    case FW_ATTR_VALUE_UUID:
      return kTextAt + (text_.empty() ? 0 : static_cast<unsigned int>(text_.size()) + 1);
    case FW_ATTR_VALUE_SID:
      break;
  }
  return kSidLength;
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
  std::uint8_t* const value = record + kHead;
  switch (type_) {
    case FW_ATTR_VALUE_INT:
    case FW_ATTR_VALUE_EINT:
      storeRecord(value, hosti64(value_.number));
      break;
    case FW_ATTR_VALUE_UINT:
      storeRecord(value, host64(value_.unsignedNumber));
      break;
    case FW_ATTR_VALUE_UUID:
      std::memcpy(value, value_.uuid.data(), value_.uuid.size());
      storeRecord(record + kTextLengthAt, host16(static_cast<std::uint16_t>(length - kTextAt)));
      std::memcpy(record + kTextAt, text_.c_str(), length - kTextAt);
      break;
    case FW_ATTR_VALUE_SID:
      storeRecord(value, value_.sid);
      break;
  }
  if (written != nullptr) *written = length;
  return true;
}

bool CTarnFWL7Attribute::operator==(const CTarnFWContainerElement& other) const {
  if (typeid(other) != typeid(CTarnFWL7Attribute)) return false;
  return *this == static_cast<const CTarnFWL7Attribute&>(other);
}

bool CTarnFWL7Attribute::operator==(const CTarnFWL7Attribute& that) const {
  if (key_ != that.key_ || type_ != that.type_) return false;
  switch (type_) {
    case FW_ATTR_VALUE_INT:
    case FW_ATTR_VALUE_EINT:
      return value_.number == that.value_.number;
    case FW_ATTR_VALUE_UINT:
      return value_.unsignedNumber == that.value_.unsignedNumber;
    case FW_ATTR_VALUE_UUID:
      return value_.uuid == that.value_.uuid;
    case FW_ATTR_VALUE_SID:
      break;
  }
  return text_ == that.text_;
}

bool CTarnFWL7Attribute::operator<(const CTarnFWContainerElement& other) const {
  if (typeid(other) != typeid(CTarnFWL7Attribute)) return false;
  const auto& that = static_cast<const CTarnFWL7Attribute&>(other);
  if (key_ != that.key_) return key_ < that.key_;
  if (type_ != that.type_) return type_ < that.type_;
  switch (type_) {
    case FW_ATTR_VALUE_INT:
    case FW_ATTR_VALUE_EINT:
      return value_.number < that.value_.number;
    case FW_ATTR_VALUE_UINT:
      return value_.unsignedNumber < that.value_.unsignedNumber;
    case FW_ATTR_VALUE_UUID:
      return value_.uuid < that.value_.uuid;
    case FW_ATTR_VALUE_SID:
      break;
  }
  return text_ < that.text_;
}

std::string CTarnFWL7Attribute::toStringValue() const {
  switch (type_) {
    case FW_ATTR_VALUE_INT:
      return std::to_string(value_.number);
    case FW_ATTR_VALUE_UINT:
      return std::to_string(value_.unsignedNumber);
    case FW_ATTR_VALUE_EINT:
    case FW_ATTR_VALUE_UUID:
    case FW_ATTR_VALUE_SID:
      break;
  }
  return text_;
}

std::string CTarnFWL7Attribute::toString() const { return keyName(key_) + " : " + toStringValue(); }

}  // namespace TarnFirewall
