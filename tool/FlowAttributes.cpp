#include "FlowAttributes.h"

#include <cstring>

#include "TarnFWAttrStaticMaps.h"
#include "TarnFWAttrValue.h"
#include "TarnFWLog.h"
#include "TarnFWSid.h"
#include "TarnFWText.h"

using namespace TarnFirewall;

namespace {

using Value = std::span<const std::byte>;

constexpr std::size_t kIdentifier = 16;

/// The name of an encoded number, null when it has none. What a number below the first one of its
/// table gives is above every row.
const char* nameOf(std::uint16_t key, std::uint64_t value) {
  const auto row = [](const FWAttrNames& names, std::uint64_t index) -> const char* {
    return index < names.size() ? names[index] : nullptr;
  };
  switch (key) {
    case FW_ATTR_KEY_APP_ID:
      return row(APP_ID_value2str, value + 1);
    case FW_ATTR_KEY_TLS_VERSION:
      return row(TLS_VERSION_value2str, value - 767);
    case FW_ATTR_KEY_TLS_CIPHER_SUITE:
      if (value < 186) return row(TLS_CIPHER_SUITE_value2str, value);
      if (value < 49153 || value > 49211) return nullptr;
      return row(TLS_CIPHER_SUITE_value2str, value - 48967);
    case FW_ATTR_KEY_CIFS_SMB_VERSION:
      return row(CIFS_SMB_VERSION_value2str, value);
    case FW_ATTR_KEY_HTTP_METHOD:
      return row(HTTP_METHOD_value2str, value);
    case FW_ATTR_KEY_FTP_COMMAND:
      return row(FTP_COMMAND_value2str, value);
    default:
      return nullptr;
  }
}

// Each of these appends a value and returns true, or appends nothing when it is none.

bool appendName(std::string& text, std::uint16_t key, Value value) {
  if (value.size() < sizeof(host64)) return false;
  const char* const name = nameOf(key, loadRecord<host64>(value.data()));
  if (name == nullptr) return false;
  text += name;
  return true;
}

template <typename Number>
bool appendNumber(std::string& text, Value value) {
  if (value.size() < sizeof(Number)) return false;
  std::int64_t plain;
  std::memcpy(&plain, value.data(), sizeof plain);
  if constexpr (std::is_same_v<Number, host64>) {
    appendDecimal(text, static_cast<std::uint64_t>(plain));
  } else {
    appendDecimal(text, plain);
  }
  return true;
}

/// The name up to its NUL or the attribute's end, and the identifier in parentheses.
bool appendIdentifier(std::string& text, Value value) {
  if (value.size() < kIdentifier + sizeof(host16)) return false;
  const bool named = loadRecord<host16>(value.data() + kIdentifier) != 0;
  if (named) {
    const Value name = value.subspan(kIdentifier + sizeof(host16));
    const auto* const characters = reinterpret_cast<const char*>(name.data());
    text.append(characters, fieldLength(characters, name.size()));
  }
  text += '(';
  for (std::size_t i = 0; i < kIdentifier; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    appendHex(text, static_cast<std::uint8_t>(value[i]), 2);
  }
  text += ')';
  return true;
}

/// Only the sub-authorities that are counted need to be there.
bool appendSid(std::string& text, Value value) {
  constexpr std::size_t head = offsetof(fwattr_sid, subAuthorities);
  fwattr_sid sid{};
  std::memcpy(&sid, value.data(), std::min(value.size(), sizeof sid));
  if (value.size() < head || (value.size() - head) / sizeof(host32) < sid.count) return false;
  char characters[kSidTextSize];
  if (!sid_bin2str(&sid, characters, sizeof characters)) return false;
  text += characters;
  return true;
}

bool appendValue(std::string& text, const _FWAttrValue& head, Value value) {
  switch (head.type) {
    case FW_ATTR_VALUE_INT:
      return appendNumber<hosti64>(text, value);
    case FW_ATTR_VALUE_UINT:
      return appendNumber<host64>(text, value);
    case FW_ATTR_VALUE_EINT:
      return appendName(text, head.key, value);
    case FW_ATTR_VALUE_UUID:
      return appendIdentifier(text, value);
    case FW_ATTR_VALUE_SID:
      return appendSid(text, value);
    default:
      return false;
  }
}

void appendAttribute(std::string& text, const _FWAttrValue& head, Value value) {
  if (appendValue(text, head, value)) return;
  appendText(text, "UNK(%u/%u/%u)", static_cast<unsigned int>(head.key),
             static_cast<unsigned int>(head.type), static_cast<unsigned int>(head.length));
}

}  // namespace

void appendAttributes(std::string& text, std::span<const std::byte> bytes, unsigned int count) {
  if (count == 0) return;
  text += " attr: ";
  for (unsigned int i = 0; i < count; ++i) {
    _FWAttrValue head{};
    std::memcpy(&head, bytes.data(), std::min(bytes.size(), sizeof head));
    const std::uint32_t length = head.length;
    if (length < sizeof head || length > bytes.size()) {
      TARNFW_WARNING("attribute %u of %u has %u bytes, of its flow %zu are left\n", i + 1, count,
                     length, bytes.size());
      return;
    }
    if (i != 0) text += ',';
    appendAttribute(text, head, bytes.subspan(sizeof head, length - sizeof head));
    bytes = bytes.subspan(length);
  }
}
