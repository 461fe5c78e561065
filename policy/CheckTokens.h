#pragma once

/// The words of a text with their places, by the library's scanner. What lies between two words and
/// belongs to nothing is found too.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "SourceText.h"
#include "TarnFWParserValues.h"

union YYSTYPE;
struct yy_buffer_state;

/// A word of the text: bytes `begin` to `end`, and its code in the grammar. Code 0 is the end of
/// the text, or a place where the scanner failed.
struct Token {
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
  int code = 0;
};

/// Bytes that belong to nothing, in one run.
using StrayFunction = std::function<void(std::uint32_t begin, std::uint32_t end)>;

/// Reads a text from its beginning, or from after a word that the scanner failed at.
class TokenReader {
 public:
  /// `extra` is what the scanner's actions use; both it and the source must outlive the reader.
  /// Throws `std::bad_alloc`.
  TokenReader(const SourceText& source, TarnFirewall::fw_lex_extra_& extra, StrayFunction stray);
  ~TokenReader();
  TokenReader(const TokenReader&) = delete;
  TokenReader& operator=(const TokenReader&) = delete;

  /// Reads the next word. At a failure of the scanner the extra record has its status.
  void read(YYSTYPE* value, Token& token);

  /// After a failure: clears it and goes on after the literal that failed, at `token`. At the end
  /// of the text after a comment that is not closed and too long to be read as words.
  void skipFailed(const Token& token);

  void* scanner() const { return scanner_; }

 private:
  void start(std::uint32_t offset);
  /// Whether the scanner's buffer has held something else than its copy of the text.
  bool wasReadAgain() const { return extra_.unclosed || extra_.input.againSize() != 0; }
  void stop();
  std::size_t closeOfComment(std::uint32_t at);
  std::uint32_t skipGap(std::uint32_t from, std::uint32_t to);
  Token placed(int code);
  std::uint32_t failedEnd(std::uint32_t begin) const;

  /// Keeps standard error quiet while it lives: the scanner names there what the reader reports
  /// with its place.
  class QuietErrors;

  const SourceText& source_;
  TarnFirewall::fw_lex_extra_& extra_;
  StrayFunction stray_;
  std::unique_ptr<QuietErrors> quiet_;
  void* scanner_ = nullptr;
  yy_buffer_state* buffer_ = nullptr;
  std::string scanned_;                   // the scanner's copy of the text, with its two NULs
  std::size_t copied_ = 0;                // where that copy begins in the text
  std::size_t copies_ = 0;                // copies that were made after a failure
  const char* base_ = nullptr;            // where the scanner has begun in the copy
  std::uint32_t offset_ = 0;              // the same in the text
  std::uint32_t place_ = 0;               // after the word that was read last
  std::optional<std::size_t> lastClose_;  // the last close of a comment, once it was looked for
};
