#pragma once

/// The words of the language as messages show them.

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What a message calls a token that would have a place: "`rule`", "a name", "an IP address".
std::string expectedWord(int code);

/// The words of several tokens, each once, at most `limit` of them and then "...".
std::vector<std::string> expectedWords(std::span<const int> codes, std::size_t limit);

/// The keyword among these tokens that differs least from the word, or nothing when none is near.
std::string nearestKeyword(std::string_view word, std::span<const int> codes);

/// Looks for the text that differs least from a word, among those that differ little.
class Nearest {
 public:
  explicit Nearest(std::string_view word);

  /// The text must outlive this object. Of two that differ alike the first in order counts.
  void compare(std::string_view text);

  /// Nothing when none is near.
  std::string_view text() const { return nearest_; }

 private:
  std::string_view word_;
  std::size_t limit_;
  std::size_t least_;
  std::string_view nearest_;
};

/// Whether the token is one of the language's keywords.
bool isKeyword(int code);
