#include "ShownText.h"

#include <algorithm>

namespace {

/// Bytes of a word that a message shows.
constexpr std::size_t kShownLength = 60;

}  // namespace

std::size_t characterSize(std::string_view text) {
  if (text.empty()) return 0;
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(0);
  if (first < 0x80) return 1;
  const std::size_t size = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
  if (first < 0xc2 || first > 0xf4 || text.size() < size) return 0;
  for (std::size_t i = 1; i < size; ++i) {
    if ((byte(i) & 0xc0) != 0x80) return 0;
  }
  // Overlong forms, surrogates and what lies beyond the last character.
  if ((first == 0xe0 && byte(1) < 0xa0) || (first == 0xed && byte(1) > 0x9f) ||
      (first == 0xf0 && byte(1) < 0x90) || (first == 0xf4 && byte(1) > 0x8f)) {
    return 0;
  }
  return size;
}

std::string printableText(std::string_view text) {
  std::string printable;
  while (!text.empty()) {
    const std::size_t size = characterSize(text);
    const auto first = static_cast<unsigned char>(text[0]);
    const bool control = (first < 0x20 && first != '\t') || first == 0x7f ||
                         (size == 2 && first == 0xc2 && static_cast<unsigned char>(text[1]) < 0xa0);
    if (size == 0 || control) {
      printable += '?';
    } else {
      printable += text.substr(0, size);
    }
    text.remove_prefix(std::max<std::size_t>(size, 1));
  }
  return printable;
}

std::string quotedWord(std::string_view text) {
  std::size_t shown = std::min(text.size(), kShownLength);
  // A character is shown whole or not at all.
  for (std::size_t back = 1; back < 4 && shown < text.size() && back <= shown; ++back) {
    if (characterSize(text.substr(shown - back)) > back) shown -= back;
  }
  std::string word = printableText(text.substr(0, shown));
  std::replace(word.begin(), word.end(), '\t', ' ');
  return "`" + word + (text.size() > kShownLength ? "...`" : "`");
}

std::string shownLine(std::string_view text, std::size_t most) {
  if (text.size() <= most) return printableText(text);
  const auto continues = [&](std::size_t at) {
    return (static_cast<unsigned char>(text[at]) & 0xc0) == 0x80;
  };
  std::size_t begin = most / 2, end = text.size() - most / 2;
  for (int i = 0; i < 3 && continues(begin); ++i) --begin;
  for (int i = 0; i < 3 && continues(end); ++i) ++end;
  return printableText(text.substr(0, begin)) + "..." + printableText(text.substr(end));
}

std::string joinedWords(std::span<const std::string> words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 == words.size() && words[i] != "..." ? " or " : ", ";
    text += words[i];
  }
  return text;
}
