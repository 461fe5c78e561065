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

/// "A, B or C".
std::string joinedWords(std::span<const std::string> words);

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

bool isKeyword(int code);

/// The text in grave accents, cut when it is long, and without what a terminal would obey.
std::string quotedWord(std::string_view text);

/// The same without the accents and uncut. What is no UTF-8 becomes a question mark; tabs stay.
std::string printableText(std::string_view text);

/// Length of the UTF-8 character at the beginning of the text, 0 for bytes that are none.
std::size_t characterSize(std::string_view text);
