#pragma once

/// Bounded copies and words of a text.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

/// `strncpy` that always ends the text: the last byte of the destination is cleared. True, unless
/// there is no byte to clear.
bool Strncpy(char* destination, const char* source, std::size_t size);

namespace TarnFirewall {

/// Value of a hexadecimal digit by its character, -1 for another character.
inline constexpr std::array<std::int8_t, 256> kHexDigits = [] {
  std::array<std::int8_t, 256> values{};
  for (std::int8_t& value : values) value = -1;
  for (std::size_t i = 0; i < 10; ++i) values['0' + i] = static_cast<std::int8_t>(i);
  for (std::size_t i = 0; i < 6; ++i) {
    values['a' + i] = static_cast<std::int8_t>(10 + i);
    values['A' + i] = static_cast<std::int8_t>(10 + i);
  }
  return values;
}();

/// Value of the two hexadecimal digits that a text begins with, negative when it does not.
inline int hexPair(const char* text) {
  const int high = kHexDigits[static_cast<unsigned char>(text[0])];
  return high < 0 ? high : high * 16 | kHexDigits[static_cast<unsigned char>(text[1])];
}

/// Characters that stand between words.
class Separators {
 public:
  /// A character that is not below 64 does not compile.
  consteval explicit Separators(const char* characters) {
    for (; *characters != '\0'; ++characters) set_ |= std::uint64_t{1} << *characters;
  }
  constexpr bool contains(char c) const {
    return static_cast<unsigned char>(c) < 64 && (set_ >> c & 1) != 0;
  }

 private:
  std::uint64_t set_ = 0;
};

/// Words of a text, in a copy of its own, since cutting writes into it.
class TextWords {
 public:
  TextWords(const char* text, Separators separators)
      : copy_(strdup(text)), separators_(separators), rest_(copy_.get()) {}

  /// False when the copy could not be made.
  explicit operator bool() const { return copy_ != nullptr; }

  /// Null after the last.
  const char* next() {
    while (separators_.contains(*rest_)) ++rest_;
    if (*rest_ == '\0') return nullptr;
    const char* const word = rest_;
    while (*rest_ != '\0' && !separators_.contains(*rest_)) ++rest_;
    if (*rest_ != '\0') *rest_++ = '\0';
    return word;
  }

 private:
  struct Free {
    void operator()(char* text) const { std::free(text); }
  };
  std::unique_ptr<char, Free> copy_;
  Separators separators_;
  char* rest_;
};

}  // namespace TarnFirewall
