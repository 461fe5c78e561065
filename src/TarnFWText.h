#pragma once

#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <memory>
#include <span>
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
template <typename Text, std::unsigned_integral T>
void appendHex(Text& text, T value, unsigned int width = 1) {
  char digits[16];
  const char* const end = std::to_chars(digits, digits + sizeof digits, value, 16).ptr;
  const auto length = static_cast<std::size_t>(end - digits);
  for (; length < width; --width) text += '0';
  text += std::string_view(digits, length);
}

/// A text while it is made of pieces: an object's text stands in the one that its owner makes.
/// Texts of usual length need no allocation, and a piece whose length the compiler knows costs a
/// few instructions; appended to a string, each was a call.
class CTarnFWText {
 public:
  CTarnFWText() = default;
  /// Is made in these characters, which outlive it, as long as it fits.
  explicit CTarnFWText(std::span<char> room)
      : begin_(room.data()), end_(room.data()), limit_(room.data() + room.size()) {}
  CTarnFWText(const CTarnFWText&) = delete;
  CTarnFWText& operator=(const CTarnFWText&) = delete;

  std::size_t size() const { return static_cast<std::size_t>(end_ - begin_); }
  std::string_view view() const { return {begin_, size()}; }
  std::string str() const { return {begin_, size()}; }

  /// Drops what stands from `place` on, `length` characters at most.
  void erase(std::size_t place, std::size_t length);

  CTarnFWText& operator+=(char mark) { return append({&mark, 1}); }
  CTarnFWText& operator+=(std::string_view word) { return append(word); }
  CTarnFWText& append(std::string_view word) {
    std::memcpy(place(word.size()), word.data(), word.size());
    end_ += word.size();
    return *this;
  }
  template <std::integral T>
  CTarnFWText& appendDecimal(T value) {
    return appendBy(24, [value](char* to) { return std::to_chars(to, to + 24, value).ptr; });
  }
  /// What `write` writes at the place that it is given, `most` characters at most; its result is
  /// the place after it.
  template <std::invocable<char*> Write>
  CTarnFWText& appendBy(std::size_t most, Write write) {
    end_ = write(place(most));
    return *this;
  }

 private:
  /// The end, with room for as many characters after it. Throws `std::bad_alloc`.
  char* place(std::size_t length) {
    if (length > static_cast<std::size_t>(limit_ - end_)) [[unlikely]]
      grow(length);
    return end_;
  }
  void grow(std::size_t length);

  char inPlace_[512];
  std::unique_ptr<char[]> grown_;  // holds the text once it is too long for its place
  char* begin_ = inPlace_;
  char* end_ = inPlace_;
  char* limit_ = inPlace_ + sizeof inPlace_;
};

/// The same as of a string.
void appendText(CTarnFWText& text, const char* format, ...) __attribute__((format(printf, 2, 3)));

template <std::integral T>
void appendDecimal(CTarnFWText& text, T value) {
  text.appendDecimal(value);
}

}  // namespace TarnFirewall
