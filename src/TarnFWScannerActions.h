#pragma once

/// What the scanner's rules do with a literal: each function converts the matched text into the
/// value and returns the token, or records a failure and returns 0, the end of the input.

#include <cstddef>

#include "TarnFWParserValues.h"
#include "tarnfw_parser.h"

namespace TarnFirewall {

/// The matched text: `length` characters with a NUL behind them.
struct ScannedText {
  const char* data;
  std::size_t length;
};

int scanText(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text, int token);
int scanQuoted(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);
int scanIdentifier(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);
int scanDecimal(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);

/// Does not clear errno first: an error that earlier work left there fails a good number. Decimal
/// numbers do clear it. The asymmetry is meant.
int scanHexadecimal(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);

/// Both bounds are cut to 32 bits and not compared: `separator` is '-' or ':'.
int scanRange(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text, char separator);

/// "10.0.0.5-9" and "10.0.0.5-10.0.0.9".
int scanIPv4ShortRange(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);
int scanIPv4Range(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);
int scanIPv6Range(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text);

/// `separator` is ':' or '.'.
int scanIdPort(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text, char separator);

int scanEther(YYSTYPE* value, ScannedText text);
int scanEtherRange(YYSTYPE* value, ScannedText text);
int scanEtherMask(YYSTYPE* value, ScannedText text);

}  // namespace TarnFirewall
