#pragma once

/// What the scanner's rules do with a literal: each function converts the matched text into the
/// value and returns the token, or records a failure and returns 0, the end of the input.

#include <cstddef>

#include "TarnFWParserValues.h"
#include "tarnfw_parser.h"

namespace TarnFirewall {

/// The matched text: `length` characters with a NUL after them.
struct ScannedText {
  const char* data;
  std::size_t length;
};

int scanText(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text, int token);
int scanQuoted(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);
int scanIdentifier(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);
int scanDecimal(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);

/// Does not clear errno first, as decimal numbers do: an error that earlier work left there fails a
/// good number. Programs on the host have met this since the language began.
int scanHexadecimal(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);

/// Both bounds are cut to 32 bits and not compared.
int scanRange(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);

/// "10.0.0.5-9" and "10.0.0.5-10.0.0.9".
int scanIPv4ShortRange(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);
int scanIPv4Range(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);
int scanIPv6Range(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);

/// `separator` is ':' or '.'.
int scanIdPort(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text, char separator);

/// Refuses the quoted text that is held: with the status and message of any name that is too long.
int refuseLongQuoted(fw_lex_extra_* extra);

/// Refuses a text whose comment is not closed and too long to be scanned as words.
int refuseLostComment(fw_lex_extra_* extra);

/// Refuses the input for the exception that is being handled. The result is a token that the parser
/// refuses wherever it stands, so that no load passes for a good one between two statements.
int refuseInput(fw_lex_extra_* extra);

/// Throws what the generated scanner cannot go on after: `std::bad_alloc` for want of memory, else
/// `CTarnFWException` with status 6.
[[noreturn]] void throwScannerError(const char* message);

int scanEther(YYSTYPE* value, ScannedText text);
int scanEtherRange(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);
int scanEtherMask(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);

}  // namespace TarnFirewall
