#include "LabText.h"

#include <strings.h>

#include <cstdarg>
#include <cstdio>

namespace TarnLab {

std::string format(const char* text, ...) {
  va_list arguments;
  va_start(arguments, text);
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, text, arguments);
  va_end(arguments);
  std::string result;
  if (length > 0) {
    result.resize(static_cast<std::size_t>(length) + 1);
    std::vsnprintf(result.data(), result.size(), text, again);
    result.pop_back();
  }
  va_end(again);
  return result;
}

std::string printable(std::string_view text) {
  std::string result;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte > 0x7e || c == '"' || c == '\\') {
      result += format("\\x%02x", byte);
    } else {
      result += c;
    }
  }
  return result;
}

std::optional<unsigned long long> parseNumber(std::string_view text, unsigned long long limit) {
  unsigned base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    base = 16;
    text.remove_prefix(2);
  }
  if (text.empty()) return std::nullopt;
  unsigned long long value = 0;
  for (const char c : text) {
    unsigned digit = 16;
    if (c >= '0' && c <= '9') digit = static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f') digit = static_cast<unsigned>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F') digit = static_cast<unsigned>(c - 'A' + 10);
    if (digit >= base || value > (limit - digit % base) / base) return std::nullopt;
    value = value * base + digit;
  }
  if (value > limit) return std::nullopt;
  return value;
}

bool equalIgnoringCase(std::string_view left, std::string_view right) {
  return left.size() == right.size() && strncasecmp(left.data(), right.data(), left.size()) == 0;
}

}  // namespace TarnLab
