#include "TarnFWAddressAttr.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "TarnFWAttributeUtils.h"
#include "TarnFWException.h"
#include "TarnFWLog.h"
#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

constexpr std::size_t kNumberAt = 4;  // in the value of the record

// Bytes of the value that each kind writes.
constexpr std::size_t kNumberSize = kNumberAt + 8;

// Longest texts with their NUL.
constexpr std::size_t kTextLimit = 129;
constexpr std::size_t kSidLimit = sizeof(fw_sid);

/// Number at the front of the text, as `strtol` reads it.
bool readLong(const char* text, long min, long max, long* number) {
  char* end = nullptr;
  errno = 0;
  *number = std::strtol(text, &end, 10);
  return end != text && errno == 0 && *number >= min && *number <= max;
}

/// A whole text of at most 32 unsigned bits.
bool isUnsigned(const char* text) {
  char* end = nullptr;
  errno = 0;
  const unsigned long number = std::strtoul(text, &end, 10);
  return *text != '\0' && *end == '\0' && errno == 0 &&
         number <= std::numeric_limits<std::uint32_t>::max();
}

// Log lines name the constructor, which is where a reader looks for them.
constexpr const char* kPlace = "CTarnFWAttr";

[[noreturn]] void refuseNumber(const char* text) {
  TARNFW_LOG_IN(kPlace, LOG_ERR, "%s: exception in string to integer conversion of string %s.\n",
                kPlace, text);
  throw CInvalidAddressException(text);
}

std::int64_t readSigned(const char* text) {
  long number = 0;
  if (!readLong(text, std::numeric_limits<long>::min(), std::numeric_limits<long>::max(),
                &number)) {
    refuseNumber(text);
  }
  return number;
}

std::int64_t readUnsigned(const char* text) {
  if (!isUnsigned(text)) {
    TARNFW_LOG_IN(kPlace, LOG_ERR, "%s: %s is not a valid uint64\n", kPlace, text);
    refuseNumber(text);
  }
  long number = 0;
  if (!readLong(text, std::numeric_limits<std::int32_t>::min(),
                std::numeric_limits<std::int32_t>::max(), &number)) {
    refuseNumber(text);
  }
  return number;
}

void measure(const char* text, std::size_t limit) {
  if (std::strlen(text) + 1 > limit) throw CIDTooLongException(text);
}

}  // namespace

CTarnFWAddressAttr::CTarnFWAddressAttr(FWAttrIDType key, FWAttrIDValType valueType, bool negated)
    : CTarnFWAddress(negated) {
  std::memset(&record_, 0, sizeof record_);
  record_.key = key;
  record_.valueType = valueType;
}

CTarnFWAddressAttr::CTarnFWAddressAttr(const FWAddress_& record)
    : CTarnFWAddress((record.flags & kAddressNegated) != 0) {
  constexpr std::size_t kTaken = 139;
  std::memset(&record_, 0, sizeof record_);
  std::memcpy(&record_, record.value, kTaken);
}

int CTarnFWAddressAttr::getType() const { return FW_ADDRESS_ANY; }

bool CTarnFWAddressAttr::isContainer() const { return true; }

std::string CTarnFWAddressAttr::toString() const { return ""; }

bool CTarnFWAddressAttr::toMessage(void* /*buffer*/, unsigned int /*size*/,
                                   unsigned int* /*written*/) {
  return false;
}

bool CTarnFWAddressAttr::operator<(const CTarnFWAddress& /*other*/) const { return false; }

bool CTarnFWAddressAttr::storeAttr(void* buffer, unsigned int size, unsigned int* written,
                                   std::size_t valueSize) const {
  if (buffer == nullptr || getMsgSize() > size) return false;
  auto* const bytes = static_cast<std::uint8_t*>(buffer);
  storeRecord(bytes, host16(static_cast<std::uint16_t>(getType())));
  std::uint8_t& flags = bytes[offsetof(FWAddress_, flags)];
  flags = static_cast<std::uint8_t>((flags & ~kAddressNegated) | (negated_ ? kAddressNegated : 0));
  std::memcpy(bytes + offsetof(FWAddress_, value), &record_,
              offsetof(FWAttrRecord_, value) + valueSize);
  if (written != nullptr) *written = getMsgSize();
  return true;
}

std::int64_t CTarnFWAddressAttr::number() const {
  return loadRecord<hosti64>(record_.value + kNumberAt);
}

void CTarnFWAddressAttr::setNumber(std::int64_t number) {
  storeRecord(record_.value + kNumberAt, hosti64(number));
}

template <FWAttrIDValType Kind>
CTarnFWAttr<Kind>::CTarnFWAttr(FWAttrIDType key, const char* text, bool negated)
    : CTarnFWAddressAttr(key, Kind, negated) {
  if (text == nullptr) text = "";
  if constexpr (Kind == FW_ATTR_ID_VALUE_INT) {
    setNumber(readSigned(text));
  } else if constexpr (Kind == FW_ATTR_ID_VALUE_UINT) {
    setNumber(readUnsigned(text));
  } else {
    // The text is not converted and not kept: an address made from text carries the key alone.
    measure(text, Kind == FW_ATTR_ID_VALUE_STRING ? kTextLimit : kSidLimit);
  }
}

template <FWAttrIDValType Kind>
CTarnFWAttr<Kind>::CTarnFWAttr(const FWAddress_* record)
    : CTarnFWAddressAttr(loadRecord<FWAddress_>(record)) {}

template <FWAttrIDValType Kind>
int CTarnFWAttr<Kind>::getType() const {
  if constexpr (Kind == FW_ATTR_ID_VALUE_INT) return FW_ADDRESS_ATTR_INT;
  if constexpr (Kind == FW_ATTR_ID_VALUE_UINT) return FW_ADDRESS_ATTR_UINT;
  if constexpr (Kind == FW_ATTR_ID_VALUE_STRING) return FW_ADDRESS_ATTR_STRING;
  return FW_ADDRESS_ATTR_SID;
}

template <FWAttrIDValType Kind>
std::string CTarnFWAttr<Kind>::toString() const {
  std::string result = negated_ ? "not " : "";
  if constexpr (Kind == FW_ATTR_ID_VALUE_INT) {
    // The application's name follows the number of every key: scripts that read addresses expect
    // it there.
    const std::int64_t value = number();
    const auto app = static_cast<int>(std::clamp<std::int64_t>(
        value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
    appendText(result, "int attr %ld %s", static_cast<long>(value),
               FWAttribute_APP_ID_value2str(app));
  } else if constexpr (Kind == FW_ATTR_ID_VALUE_UINT) {
    appendText(result, "unsigned int attr %lu", static_cast<unsigned long>(number()));
  } else if constexpr (Kind == FW_ATTR_ID_VALUE_STRING) {
    const auto value = loadRecord<fw_str>(record_.value);
    result += "str attr ";
    result.append(value.text, fieldLength(value.text, sizeof value.text));
  } else {
    result += "sid attr ";
  }
  return result;
}

template <FWAttrIDValType Kind>
bool CTarnFWAttr<Kind>::toMessage(void* buffer, unsigned int size, unsigned int* written) {
  if constexpr (Kind == FW_ATTR_ID_VALUE_INT) {
    TARNFW_TRACE(FW_COMPONENT_ADDRESS, 0, "Attribute <int> toMessage %lu\n",
                 static_cast<unsigned long>(number()));
    return storeAttr(buffer, size, written, kNumberSize);
  } else if constexpr (Kind == FW_ATTR_ID_VALUE_UINT) {
    TARNFW_TRACE(FW_COMPONENT_ADDRESS, 0, "Attribute <unsigned int> toMessage %lu\n",
                 static_cast<unsigned long>(number()));
    return storeAttr(buffer, size, written, kNumberSize);
  } else if constexpr (Kind == FW_ATTR_ID_VALUE_STRING) {
    TARNFW_TRACE(FW_COMPONENT_ADDRESS, 0, "Attribute<fw_str> toMessage\n");
    return storeAttr(buffer, size, written, sizeof(fw_str));
  } else {
    TARNFW_TRACE(FW_COMPONENT_ADDRESS, 0, "Attribute<fw_sid> toMessage\n");
    return storeAttr(buffer, size, written, sizeof(fw_sid));
  }
}

template class CTarnFWAttr<FW_ATTR_ID_VALUE_INT>;
template class CTarnFWAttr<FW_ATTR_ID_VALUE_UINT>;
template class CTarnFWAttr<FW_ATTR_ID_VALUE_STRING>;
template class CTarnFWAttr<FW_ATTR_ID_VALUE_SID>;

}  // namespace TarnFirewall
