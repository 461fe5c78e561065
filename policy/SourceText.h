#pragma once

/// A text that is checked, with the places in it. Lines end with a line feed, as the scanner counts
/// them; columns are bytes, both from 1.

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// A file that can't be read, with the reason.
class SourceError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One file, or standard input.
class SourceText {
 public:
  /// Texts are at most this long: the scanner counts in an int.
  static constexpr std::size_t kMaxSize = 0x7fffffff - 2;

  SourceText(std::string name, std::string text);

  /// Reads a file, or standard input for "-". Throws `SourceError`.
  static SourceText read(const std::string& path);

  const std::string& name() const { return name_; }
  std::string_view text() const { return text_; }
  std::string_view text(std::uint32_t begin, std::uint32_t end) const {
    return text().substr(begin, end - begin);
  }

  struct Place {
    std::uint32_t line;
    std::uint32_t column;
  };
  Place place(std::uint32_t offset) const;

  /// The line that holds the place, without its end, and no more than `after` bytes after the
  /// place.
  std::string_view lineAt(std::uint32_t offset, std::size_t after) const;

  /// Whether nothing but blanks stands before the place in its line.
  bool isFirstInLine(std::uint32_t offset) const;

 private:
  std::string name_;
  std::string text_;
  mutable std::vector<std::uint32_t> lineStarts_;  // made when a place is asked for
};
