#include "CheckTokens.h"

#include <cstdio>
#include <new>
#include <utility>

#include "TarnFWScanner.h"
#include "tarnfw_parser.h"

// Parts of the generated scanner that the library itself has no use for.
yy_buffer_state* yy_scan_buffer(char* base, std::size_t size, void* scanner);
char* yyget_text(void* scanner);
int yyget_leng(void* scanner);

namespace {

using TarnFirewall::FW_STATUS_OK;

/// After so many mistakes in literals a text that is not closed somewhere is not read to its end:
/// each time the rest is copied.
constexpr std::size_t kMostCopies = 100;

inline bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

}  // namespace

class TokenReader::QuietErrors {
 public:
  QuietErrors() : former_(stderr) {
    cookie_io_functions_t functions{};
    functions.write = [](void*, const char*, std::size_t size) {
      return static_cast<ssize_t>(size);
    };
    if (std::FILE* quiet = fopencookie(nullptr, "w", functions)) stderr = quiet;
  }
  ~QuietErrors() {
    std::FILE* quiet = std::exchange(stderr, former_);
    if (quiet != former_) std::fclose(quiet);
  }
  QuietErrors(const QuietErrors&) = delete;
  QuietErrors& operator=(const QuietErrors&) = delete;

 private:
  std::FILE* former_;
};

TokenReader::TokenReader(const SourceText& source, TarnFirewall::fw_lex_extra_& extra,
                         StrayFunction stray)
    : source_(source),
      extra_(extra),
      stray_(std::move(stray)),
      quiet_(std::make_unique<QuietErrors>()) {
  try {
    start(0);
  } catch (...) {
    stop();
    throw;
  }
}

TokenReader::~TokenReader() { stop(); }

/// Begins at a place of the text, whose copy is made anew where the scanner has changed it.
void TokenReader::start(std::uint32_t offset) {
  if (yylex_init_extra(&extra_, &scanner_) != 0) throw std::bad_alloc();
  if (scanned_.empty() || wasReadAgain()) {
    // The scanner writes into its buffer, and wants two NULs at its end.
    scanned_.assign(source_.text().substr(offset));
    scanned_.append(2, '\0');
    copied_ = offset;
  }
  const std::size_t skipped = offset - copied_;
  buffer_ = yy_scan_buffer(scanned_.data() + skipped, scanned_.size() - skipped, scanner_);
  base_ = yyget_text(scanner_);
  yyset_lineno(1, scanner_);
  offset_ = place_ = offset;
}

void TokenReader::stop() {
  if (scanner_ == nullptr) return;
  if (buffer_ != nullptr) yy_delete_buffer(buffer_, scanner_);
  buffer_ = nullptr;
  yylex_destroy(std::exchange(scanner_, nullptr));
}

/// Where the comment that begins at a place is closed; `npos` where none begins, and for one that
/// is not closed.
std::size_t TokenReader::closeOfComment(std::uint32_t at) {
  const std::string_view text = source_.text();
  if (!text.substr(at).starts_with("/*")) return text.npos;
  // Looking for a close that is not there, from each place anew, would take time by the square.
  if (!lastClose_) lastClose_ = text.rfind("*/");
  if (*lastClose_ == text.npos || *lastClose_ < at + std::size_t{2}) return text.npos;
  return text.find("*/", at + std::size_t{2});
}

/// Skips blanks and comments, and reports the other bytes before `to`. Without `to`, which is 0
/// then, it stops at the first byte that may begin a word; returns the place.
std::uint32_t TokenReader::skipGap(std::uint32_t from, std::uint32_t to) {
  const std::string_view text = source_.text();
  const std::uint32_t end = to != 0 ? to : static_cast<std::uint32_t>(text.size());
  std::uint32_t at = from;
  std::uint32_t strayBegin = 0, strayEnd = 0;
  const auto flush = [&] {
    if (strayEnd > strayBegin) stray_(strayBegin, strayEnd);
    strayBegin = strayEnd = 0;
  };
  for (;;) {
    while (at < end && isBlank(text[at])) ++at;
    if (at >= end) break;
    if (text[at] == '#') {
      const std::size_t line = text.find('\n', at);
      at = static_cast<std::uint32_t>(line < end ? line : end);
    } else if (const std::size_t close = closeOfComment(at); close < end) {
      at = static_cast<std::uint32_t>(close + 2);
    } else if (to == 0) {
      break;
    } else {
      if (at != strayEnd) {
        flush();
        strayBegin = at;
      }
      strayEnd = ++at;
    }
  }
  flush();
  return at;
}

/// The place of a word that is none of the usual ones.
Token TokenReader::placed(int code) {
  const auto size = static_cast<std::uint32_t>(source_.text().size());
  if (extra_.status != FW_STATUS_OK) {
    const std::uint32_t begin = skipGap(place_, 0);
    return {begin, failedEnd(begin), code};
  }
  if (code == 0) return {skipGap(place_, size), size, code};
  // What is read again lies elsewhere in memory: the words are looked for in the text. The word
  // that an unclosed comment begins with is made of its slash alone.
  std::string_view word(yyget_text(scanner_), static_cast<std::size_t>(yyget_leng(scanner_)));
  if (code == TK_STRING && source_.text().substr(skipGap(place_, 0)).starts_with("/*")) word = "/";
  std::uint32_t begin = skipGap(place_, 0);
  while (begin < size && !source_.text().substr(begin).starts_with(word)) {
    stray_(begin, begin + 1);
    begin = skipGap(begin + 1, 0);
  }
  const auto end = static_cast<std::uint32_t>(begin + word.size());
  return {begin, end < size ? end : size, code};
}

void TokenReader::read(YYSTYPE* value, Token& token) {
  token.code = yylex(value, nullptr, scanner_);
  if (extra_.status == TarnFirewall::FW_STATUS_OUT_OF_MEMORY) throw std::bad_alloc();
  if (token.code == 0 || extra_.status != FW_STATUS_OK || wasReadAgain()) {
    token = placed(token.code);
  } else {
    const char* const word = yyget_text(scanner_);
    token.begin = offset_ + static_cast<std::uint32_t>(word - base_);
    token.end = token.begin + static_cast<std::uint32_t>(yyget_leng(scanner_));
    // One blank is what mostly stands between two words.
    if (token.begin > place_ && (token.begin > place_ + 1 || !isBlank(word[-1]))) {
      skipGap(place_, token.begin);
    }
  }
  place_ = token.end;
}

/// The end of the literal at which the scanner failed.
std::uint32_t TokenReader::failedEnd(std::uint32_t begin) const {
  const std::string_view text = source_.text();
  std::size_t next = begin;
  const char first = next < text.size() ? text[next] : '\0';
  if (first == '"' || first == '\'') {
    next = text.find(first, next + 1);
    next = next == text.npos ? text.size() : next + 1;
  } else {
    while (next < text.size() && !isBlank(text[next]) && text[next] != ';' && text[next] != ',') {
      ++next;
    }
  }
  return static_cast<std::uint32_t>(next);
}

void TokenReader::skipFailed(const Token& token) {
  const std::string_view text = source_.text();
  const auto end = static_cast<std::uint32_t>(text.size());
  std::uint32_t next = token.end;
  if (!wasReadAgain()) {
    // The scanner ends a word in its buffer with a NUL.
    const auto nul =
        static_cast<std::size_t>(yyget_text(scanner_) + yyget_leng(scanner_) - scanned_.data());
    if (copied_ + nul < text.size()) scanned_[nul] = text[copied_ + nul];
  } else if (++copies_ > kMostCopies || (extra_.unclosed && extra_.input.isLost())) {
    // A comment that is not closed may be too long to be read as words.
    next = end;
  }
  stop();
  extra_.status = FW_STATUS_OK;
  extra_.message[0] = '\0';
  start(next);
}
