#include "TarnFWUtilIdentifier.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "TarnFWException.h"
#include "TarnFWText.h"
#include "TarnFWUtilText.h"

namespace {

using Uuid = std::array<std::uint8_t, kUuidSize>;

/// The hexadecimal form of the first `count` bytes with the separator of each byte's place in front
/// of it; a NUL stands for none.
class UuidText {
 public:
  UuidText(const std::uint8_t* uuid, std::string_view separators) {
    static constexpr char digits[] = "0123456789abcdef";
    for (std::size_t i = 0; i < kUuidSize; ++i) {
      if (separators[i] != '\0') text_[length_++] = separators[i];
      text_[length_++] = digits[uuid[i] >> 4];
      text_[length_++] = digits[uuid[i] & 0x0f];
    }
    text_[length_] = '\0';
  }
  const char* c_str() const { return text_.data(); }

  /// Copies the text with its NUL, as far as it fits; see `fits`.
  bool copyTo(char* buffer, std::size_t size) const {
    if (size != 0) {
      const std::size_t copied = std::min(length_, size - 1);
      std::memcpy(buffer, text_.data(), copied);
      buffer[copied] = '\0';
    }
    return length_ <= size;
  }

 private:
  std::array<char, 3 * kUuidSize + 1> text_;
  std::size_t length_ = 0;
};

constexpr std::string_view kGfy("\0       -       ", kUuidSize);
constexpr std::string_view kNormal("\0\0\0\0-\0-\0-\0-\0\0\0\0\0", kUuidSize);
constexpr std::string_view kPlain("\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", kUuidSize);

/// A text that is as long as the buffer counts as success although it was cut by one character:
/// callers pass the length of the form as the size.
bool fits(int length, std::size_t size) {
  return length >= 0 && static_cast<std::size_t>(length) <= size;
}

/// The sixteen fields of a form, as arguments of a scan.
#define UUID_FIELDS(u)                                                                      \
  &(u)[0], &(u)[1], &(u)[2], &(u)[3], &(u)[4], &(u)[5], &(u)[6], &(u)[7], &(u)[8], &(u)[9], \
      &(u)[10], &(u)[11], &(u)[12], &(u)[13], &(u)[14], &(u)[15]

#define GFY_SCAN                                    \
  "%2hhx %2hhx %2hhx %2hhx %2hhx %2hhx %2hhx %2hhx" \
  "-%2hhx %2hhx %2hhx %2hhx %2hhx %2hhx %2hhx %2hhx"
#define NORMAL_SCAN                            \
  "%2hhx%2hhx%2hhx%2hhx-%2hhx%2hhx-%2hhx%2hhx" \
  "-%2hhx%2hhx-%2hhx%2hhx%2hhx%2hhx%2hhx%2hhx"

using TarnFirewall::hexPair;

constexpr int kUuidFields = 16;

/// Reads a form that is written as it is printed, with two digits for each byte; what the text has
/// after it, null for a text that is not written so. A scan takes more (no leading zeros, further
/// blanks), but reads such a text alike, and takes ten times as long.
const char* readExact(std::uint8_t* uuid, std::string_view separators, const char* text) {
  for (std::size_t i = 0; i < kUuidSize; ++i) {
    if (separators[i] != '\0' && *text++ != separators[i]) return nullptr;
    const int value = hexPair(text);
    if (value < 0) return nullptr;
    uuid[i] = static_cast<std::uint8_t>(value);
    text += 2;
  }
  return text;
}

/// Up to three digits, as "%3d" reads them.
bool readIndex(int* index, const char* text) {
  if (*text < '0' || *text > '9') return std::sscanf(text, "%3d", index) == 1;
  int value = 0;
  for (const char* const end = text + 3; text != end && *text >= '0' && *text <= '9'; ++text)
    value = 10 * value + (*text - '0');
  *index = value;
  return true;
}

}  // namespace

bool uuid2gfystr(const std::uint8_t* uuid, char* buffer, std::size_t size) {
  if (uuid == nullptr || buffer == nullptr) return false;
  return UuidText(uuid, kGfy).copyTo(buffer, size);
}

bool uuid2normalstr(const std::uint8_t* uuid, char* buffer, std::size_t size) {
  if (uuid == nullptr || buffer == nullptr) return false;
  return UuidText(uuid, kNormal).copyTo(buffer, size);
}

bool uuid2vnicstr(const std::uint8_t* uuid, int index, char* buffer, std::size_t size) {
  if (uuid == nullptr || buffer == nullptr) return false;
  return fits(std::snprintf(buffer, size, "%s.%03d", UuidText(uuid, kNormal).c_str(), index), size);
}

bool gfystr2uuid(std::uint8_t* uuid, const char* text) {
  if (uuid == nullptr || text == nullptr) return false;
  if (readExact(uuid, kGfy, text) != nullptr) return true;
  return std::sscanf(text, GFY_SCAN, UUID_FIELDS(uuid)) == kUuidFields;
}

bool normalstr2uuid(std::uint8_t* uuid, const char* text) {
  if (uuid == nullptr || text == nullptr) return false;
  if (readExact(uuid, kNormal, text) != nullptr) return true;
  return std::sscanf(text, NORMAL_SCAN, UUID_FIELDS(uuid)) == kUuidFields;
}

bool vnicstr2uuid(std::uint8_t* uuid, int* index, const char* text) {
  if (uuid == nullptr || index == nullptr || text == nullptr) return false;
  // A text that is exactly one form is none of the others.
  if (const char* const rest = readExact(uuid, kNormal, text)) {
    return *rest == '.' && readIndex(index, rest + 1);
  }
  if (const char* const rest = readExact(uuid, kGfy, text)) {
    return (*rest == ':' || *rest == '.') && readIndex(index, rest + 1);
  }
  constexpr int fields = kUuidFields + 1;
  return std::sscanf(text, NORMAL_SCAN ".%3d", UUID_FIELDS(uuid), index) == fields ||
         std::sscanf(text, GFY_SCAN ":%3d", UUID_FIELDS(uuid), index) == fields ||
         std::sscanf(text, GFY_SCAN ".%3d", UUID_FIELDS(uuid), index) == fields;
}

bool gfystr2vnicstr(const char* gfyText, int index, char* buffer, std::size_t size) {
  Uuid uuid;
  return gfystr2uuid(uuid.data(), gfyText) && uuid2vnicstr(uuid.data(), index, buffer, size);
}

bool ParseUUIDString(const char* text, std::uint8_t* uuid, int* index, int* isVnic) {
  if (text == nullptr || uuid == nullptr || index == nullptr || isVnic == nullptr) return false;
  *index = 0;
  *isVnic = 0;
  int number = 0;
  if (vnicstr2uuid(uuid, &number, text)) {
    *index = number;
    *isVnic = 1;
    return true;
  }
  return gfystr2uuid(uuid, text) || normalstr2uuid(uuid, text);
}

namespace TarnFirewall {

bool fw_dvsport2str(const dvs_port_* port, char* buffer, std::size_t size) {
  if (port == nullptr || buffer == nullptr) return false;
  const int length = static_cast<int>(fieldLength(port->identifier, sizeof port->identifier));
  return fits(std::snprintf(buffer, size, "\"%.*s:%d\"", length, port->identifier,
                            static_cast<int>(selectorIndex(*port))),
              size);
}

bool fw_vnic2str(const dvs_port_* port, char* buffer, std::size_t size) {
  if (port == nullptr || buffer == nullptr) return false;
  const std::string name(port->identifier, fieldLength(port->identifier, sizeof port->identifier));
  Uuid uuid;
  if (!gfystr2uuid(uuid.data(), name.c_str())) {
    throw CUnsupportedException("dvs switch id format is wrong");
  }
  return uuid2vnicstr(uuid.data(), static_cast<int>(selectorIndex(*port)), buffer, size);
}

bool normalizeContainerName(const std::string& name, char* buffer) {
  if (buffer == nullptr) return false;
  constexpr std::size_t size = sizeof(FWAddrSetID_t);
  if (name.size() < size) return Strncpy(buffer, name.c_str(), size);

  char letter = 't';
  const char* text = name.c_str();
  if (strncasecmp(text, "ip-", 3) == 0) {
    letter = 'i';
    text += 3;
  } else if (strncasecmp(text, "mac-", 4) == 0) {
    letter = 'm';
    text += 4;
  }

  Uuid uuid;
  int index = 0;
  if (!vnicstr2uuid(uuid.data(), &index, text) || index >= 10) return false;
  const std::string kernelName =
      formatText("%s%c%02d", UuidText(uuid.data(), kPlain).c_str(), letter, index);
  return Strncpy(buffer, kernelName.c_str(), size);
}

}  // namespace TarnFirewall
