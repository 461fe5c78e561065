#pragma once

/// The language's grammar, with the actions of the library, in an instance of its own that keeps
/// every place and knows what would have been accepted.

#include <cstddef>
#include <exception>
#include <vector>

#include "TarnFWParserValues.h"

namespace TarnFirewall {
class CTarnFWCmdConfig;
class CTarnFWCmdList;
}  // namespace TarnFirewall

/// What a run of the grammar asks, and what it reports to. It is attached to the scanner as its
/// extra record.
struct GrammarClient : TarnFirewall::fw_lex_extra_ {
  /// Stores the next token's value and returns its code as the scanner does.
  virtual int nextToken(void* value) = 0;

  /// The token that was given last has no place. `expected`: the codes that have one.
  virtual void unexpected(const std::vector<int>& expected) = 0;

  /// An action failed; called while its exception is handled. `lookedAhead`: the token that was
  /// given last is not part of what failed.
  virtual void refused(bool lookedAhead) = 0;

  /// What one of these has thrown, until the parse is at its end.
  std::exception_ptr failure;

 protected:
  ~GrammarClient() = default;
};

/// The grammar's name of a token by its code: "keyword rule", ";", "decimal" and so on.
const char* grammarName(int code);

/// Parses the tokens of the client that is attached to the scanner, up to their end or to the first
/// mistake, which has been reported then: false, and the results are empty. `valueSize`: what the
/// client stores as a token's value. Throws `std::bad_alloc`.
bool runGrammar(std::size_t valueSize, void* scanner, TarnFirewall::CTarnFWCmdList** list,
                TarnFirewall::CTarnFWCmdConfig** config);
