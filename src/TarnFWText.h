#pragma once

#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace TarnFirewall {

/// A printf format and its arguments as a string. Texts of any length come out whole.
std::string formatText(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Appends a printf format and its arguments to `text`.
void appendText(std::string& text, const char* format, ...) __attribute__((format(printf, 2, 3)));

/// Appends an integer in decimal, without the cost of a printf.
template <std::integral T>
void appendDecimal(std::string& text, T value) {
  char digits[24];
  const char* const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  text.append(digits, static_cast<std::size_t>(end - digits));
}

/// Appends an integer in lower-case hexadecimal, filled with zeros up to `width` digits (16 at
/// most).
template <std::unsigned_integral T>
void appendHex(std::string& text, T value, unsigned int width = 1) {
  char digits[16];
  const char* const end = std::to_chars(digits, digits + sizeof digits, value, 16).ptr;
  const auto length = static_cast<std::size_t>(end - digits);
  if (length < width) text.append(width - length, '0');
  text.append(digits, length);
}

/// A short text while it is put together in place, so that a string takes it in one piece. Whoever
/// uses it knows the longest forms of its pieces: together they have `Room` characters at most.
template <std::size_t Room>
class CTarnFWShortText {
 public:
  void add(char mark) { *end_++ = mark; }
  void add(std::string_view word) {
    std::memcpy(end_, word.data(), word.size());
    end_ += word.size();
  }
  template <std::integral T>
  void addDecimal(T value) {
    end_ = std::to_chars(end_, text_ + Room, value).ptr;
  }
  /// What `write` writes at the place that it is given; its result is the place after it.
  template <std::invocable<char*> Write>
  void addBy(Write write) {
    end_ = write(end_);
  }
  void appendTo(std::string& text) const {
    text.append(text_, static_cast<std::size_t>(end_ - text_));
  }

 private:
  char text_[Room];
  char* end_ = text_;
};

}  // namespace TarnFirewall
