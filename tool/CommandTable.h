#pragma once

/// The table of command words and the way from the process's arguments to a handler.

#include <cstddef>

/// Runs one command. `cmd` is the word as typed; `argv[0]` is the word in front of the first
/// option, so that `getopt` starts at it as at a program's name. Returns the process's exit status.
using FWHandler_t = int (*)(const char* cmd, int argc, char** argv);

/// Flag of a row whose command needs "-Override" as its first option. Bit 0 is kept with the table;
/// nothing reads it.
inline constexpr unsigned long kCommandDangerous = 2;

struct FWCommand_ {
  unsigned long flags;
  FWHandler_t handler;
  const char* name;
  const char* description;  // kept with the table; the usage text is another one
};

inline constexpr std::size_t kCommands = 87;
extern const FWCommand_ g_cmd_table[kCommands];

/// The first row with this name, ignoring case; null when there is none.
const FWCommand_* findCommand(const char* word);

/// What follows the last "/" of the path that the program was started by.
const char* programName(const char* path);

/// Finds the command, applies the guard of dangerous ones and runs the handler. Returns the
/// process's exit status.
int runCommand(int argc, char** argv);
