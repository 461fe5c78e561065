#pragma once

/// The scanner of the configuration language: text, or an open stream, into tokens.
///
/// All state lives in one scanner context, so that any number of scans may run side by side. The
/// order for one parse: `yylex_init`, `yyset_extra`, then `yyset_in`, or `yy_scan_string` and
/// `yyset_lineno(1)`, the parse, `yy_delete_buffer` for a string, `yylex_destroy`.

#include <cstdio>

#include "TarnFWParserValues.h"

struct yy_buffer_state;
union YYSTYPE;
struct YYLTYPE;

/// Makes a context. Not 0 without memory.
int yylex_init(void** scanner);
int yylex_init_extra(TarnFirewall::fw_lex_extra_* extra, void** scanner);

/// Frees the context and all of its buffers.
int yylex_destroy(void* scanner);

/// The record must be attached before the first token is asked for; it stays the caller's.
void yyset_extra(TarnFirewall::fw_lex_extra_* extra, void* scanner);
TarnFirewall::fw_lex_extra_* yyget_extra(void* scanner);

/// Selects a stream, which stays the caller's. Without one, standard input is read.
void yyset_in(std::FILE* stream, void* scanner);

/// Makes a copy of the text the input. Throws `std::bad_alloc`.
yy_buffer_state* yy_scan_string(const char* text, void* scanner);
void yy_delete_buffer(yy_buffer_state* buffer, void* scanner);

/// Line counter of the current buffer. That of a stream starts at 1, that of a string where
/// `yyset_lineno` puts it.
void yyset_lineno(int line, void* scanner);
int yyget_lineno(void* scanner);

/// The next token's code, 0 at the end of the input and after a failure of the text, which then
/// stands in the extra record. Where memory or the stream fails, the token is one that no parse
/// accepts. The location is kept for the parser's sake and never filled.
int yylex(YYSTYPE* value, YYLTYPE* location, void* scanner);
