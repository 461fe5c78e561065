#include "DiagnosticPrinter.h"

#include <algorithm>
#include <string_view>

#include "ShownText.h"

namespace {

/// Bytes of a line that are shown before and after the place.
constexpr std::size_t kShownBefore = 60;
constexpr std::size_t kShownAfter = 100;
constexpr std::size_t kLongestCharacter = 4;

struct Colours {
  const char* bold;
  const char* error;
  const char* warning;
  const char* mark;
  const char* off;
};
constexpr Colours kPlain = {"", "", "", "", ""};
constexpr Colours kColours = {"\x1b[1m", "\x1b[1;31m", "\x1b[1;35m", "\x1b[1;32m", "\x1b[0m"};

/// Moves a place to the beginning of the character that holds it.
std::size_t characterStart(std::string_view text, std::size_t at) {
  for (std::size_t back = 0; back < 4 && back <= at; ++back) {
    if (characterSize(text.substr(at - back)) > back) return at - back;
  }
  return at;
}

/// Number of columns on a terminal: one for each character.
std::size_t width(std::string_view text) {
  std::size_t count = 0;
  while (!text.empty()) {
    text.remove_prefix(std::max<std::size_t>(characterSize(text), 1));
    ++count;
  }
  return count;
}

/// The blanks under a text: its tabs stay, so that what follows stands under what follows it.
std::string blanksUnder(std::string_view text) {
  std::string blanks;
  while (!text.empty()) {
    blanks += text[0] == '\t' ? '\t' : ' ';
    text.remove_prefix(std::max<std::size_t>(characterSize(text), 1));
  }
  return blanks;
}

void printLine(std::FILE* stream, const SourceText& source, const TextRange& range,
               const Colours& colours) {
  const std::string_view line = source.lineAt(range.begin, kShownAfter + kLongestCharacter);
  const std::size_t at = std::min<std::size_t>(source.place(range.begin).column - 1, line.size());
  const std::size_t begin =
      at > kShownBefore ? characterStart(line, at - kShownBefore) : std::size_t{0};
  const std::size_t end =
      line.size() > at + kShownAfter ? characterStart(line, at + kShownAfter) : line.size();
  const std::string_view shown = line.substr(begin, end - begin);
  const std::string_view before = shown.substr(0, at - begin);
  const char* const cut = begin > 0 ? "..." : "";
  const std::size_t length = range.end - range.begin;
  const std::size_t marked = width(shown.substr(before.size(), length));
  std::fprintf(stream, "    %s%s\n    %s%s%s%s%s\n", cut, printableText(shown).c_str(),
               begin > 0 ? "   " : "", blanksUnder(before).c_str(), colours.mark,
               ("^" + std::string(marked > 1 ? marked - 1 : 0, '~')).c_str(), colours.off);
}

void printPlace(std::FILE* stream, const SourceTexts& sources, const TextRange& range) {
  const SourceText& source = sources[range.file];
  const auto [line, column] = source.place(range.begin);
  std::fprintf(stream, "%s:%u:%u: ", printableText(source.name()).c_str(), line, column);
}

void printOne(std::FILE* stream, const SourceTexts& sources, const Diagnostic& diagnostic,
              const Colours& colours) {
  const bool error = diagnostic.severity == Severity::error;
  std::fputs(colours.bold, stream);
  printPlace(stream, sources, diagnostic.range);
  std::fprintf(stream, "%s%s%s:%s %s [%s]\n", colours.off, error ? colours.error : colours.warning,
               error ? "error" : "warning", colours.off, diagnostic.message.c_str(),
               rowOf(diagnostic.check).name);
  printLine(stream, sources[diagnostic.range.file], diagnostic.range, colours);
  if (diagnostic.expected.size() > 1 ||
      (diagnostic.expected.size() == 1 &&
       diagnostic.message.find(diagnostic.expected[0]) == std::string::npos)) {
    std::fprintf(stream, "    expected: %s\n", joinedWords(diagnostic.expected).c_str());
  }
  if (!diagnostic.help.empty()) std::fprintf(stream, "    help: %s\n", diagnostic.help.c_str());
  if (diagnostic.relatedMessage.empty()) return;
  std::fputs("    ", stream);
  printPlace(stream, sources, diagnostic.related);
  std::fprintf(stream, "%s\n", diagnostic.relatedMessage.c_str());
}

}  // namespace

void printForPeople(std::FILE* stream, const SourceTexts& sources, const Diagnostics& diagnostics,
                    bool colours) {
  for (const Diagnostic& diagnostic : diagnostics.all()) {
    printOne(stream, sources, diagnostic, colours ? kColours : kPlain);
  }
  if (diagnostics.all().empty()) return;
  const auto count = [&](std::size_t number, const char* word) {
    std::fprintf(stream, "%zu %s%s", number, word, number == 1 ? "" : "s");
  };
  count(diagnostics.errors(), "error");
  std::fputs(", ", stream);
  count(diagnostics.warnings(), "warning");
  std::fputs("\n", stream);
}
