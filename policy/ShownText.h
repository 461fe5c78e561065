#pragma once

/// Text that comes from outside, as messages show it.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

/// The text in grave accents, cut when it is long, and without what a terminal would obey.
std::string quotedWord(std::string_view text);

/// The same without the accents and uncut. What is no UTF-8 becomes a question mark; tabs stay.
std::string printableText(std::string_view text);

/// A line of a message: what a terminal would obey is a question mark, and one that is longer than
/// `most` bytes lacks its middle.
std::string shownLine(std::string_view text, std::size_t most);

/// Bytes of a message that has a path in it: the longest path fits.
inline constexpr std::size_t kLongestMessage = 4500;

/// Length of the UTF-8 character at the beginning of the text, 0 for bytes that are none.
std::size_t characterSize(std::string_view text);

/// "A, B or C".
std::string joinedWords(std::span<const std::string> words);
