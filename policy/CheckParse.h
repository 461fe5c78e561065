#pragma once

/// Reads a whole text: each statement that is right becomes its commands, each mistake a
/// diagnostic, and after a mistake the next statement is read, or the next rule of its rule set.

#include "CheckTokens.h"
#include "Diagnostic.h"

namespace TarnFirewall {
class CTarnFWCmdList;
}

/// Gets what is read of a text, in its order.
class TextListener {
 public:
  /// Each word of a statement, once.
  virtual void word(const Token& token) = 0;

  /// The statement whose words these were is at its end. `commands` is null for one with a mistake.
  /// Otherwise it holds the statement's own command, if it makes one, as the last, and before it
  /// those of the sets that its rules need.
  virtual void statement(TarnFirewall::CTarnFWCmdList* commands) = 0;

 protected:
  ~TextListener() = default;
};

/// Reads the text with the number `file`. There is an error among the diagnostics if and only if
/// the library refuses to load the text. The process-wide default selector is changed as a load
/// changes it.
void readText(const SourceText& source, std::uint32_t file, TextListener& listener,
              Diagnostics& diagnostics);
