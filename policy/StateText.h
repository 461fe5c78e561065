#pragma once

/// States of configuration texts: what a filter would hold that held nothing before and was given
/// the text. Every statement counts, whatever filter it names, as when `tarnfwcli -f` loads the
/// text. Nothing is opened but the text: a channel that it names is passed over.

#include <cstdarg>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "State.h"
#include "TarnFWCmdList.h"
#include "TarnFWLog.h"

/// What a text makes.
struct StateText {
  State state;

  /// Statements that change something which no state holds, such as timeouts, in their order and as
  /// the library writes them. Questions, such as `describe`, are not among them.
  std::vector<std::string> others;
};

/// The statements of a text. Throws `StateError` for a text that does not parse or is read up to a
/// mistake only; `name` stands in it. The stream stays the caller's.
std::unique_ptr<TarnFirewall::CTarnFWCmdList> parseStatements(std::FILE* stream, const char* name);
std::unique_ptr<TarnFirewall::CTarnFWCmdList> parseStatements(const std::string& text,
                                                              const char* name);

/// Carries a statement out on a state, with the effects that it has in a kernel. What removes or
/// empties something that is not there changes nothing. Returns false for a statement that no state
/// shows. Throws `StateError` for one that asks something of a rule set that is not there.
bool applyStatement(State& state, TarnFirewall::CTarnFWCmd& command);

/// Carries out the statements one after the other. `StateError` names the statement.
StateText stateOfStatements(TarnFirewall::CTarnFWCmdList& statements);

/// The state of a file, of standard input for "-", or of a text.
StateText stateOfFile(const char* path);
StateText stateOfText(const std::string& text, const char* name);

/// While it lives, the library's lines for the system log are kept from it: a text that is only
/// tried leaves no traces, and what is wrong in one that is read is printed by who reads it.
class LibraryLines {
 public:
  LibraryLines();
  ~LibraryLines();
  LibraryLines(const LibraryLines&) = delete;
  LibraryLines& operator=(const LibraryLines&) = delete;

  /// The first error since then, from the place that it names: "[web.conf:3] syntax error, ...".
  /// Empty when there was none.
  const std::string& error() const { return error_; }

 private:
  static void take(int priority, const char* format, va_list arguments)
      __attribute__((format(printf, 2, 0)));

  TarnFirewall::FWLogger_ before_;
  LibraryLines* outer_;
  std::string error_;
};
