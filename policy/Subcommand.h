#pragma once

/// A subcommand of `tarnpolicy`: a row of the table in Subcommands.cpp.

#include <span>
#include <string_view>

struct Subcommand {
  const char* name;
  const char* summary;  // what it is for, in the list of subcommands
  const char* usage;    // the text of its --help, from "Usage:" to the last line's end

  /// Runs it; `argv[0]` is its name. Returns the exit status. May throw: a `CallError` and whatever
  /// the library throws are reported by the frame, with status 2. Null for one that this version
  /// does not have.
  int (*run)(int argc, char** argv);
};

/// All of them, in the order of the help text.
std::span<const Subcommand> subcommands();

/// The one with this name, or null.
const Subcommand* findSubcommand(std::string_view name);
