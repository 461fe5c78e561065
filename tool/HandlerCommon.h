#pragma once

/// The pieces of a handler: usage and error lines, options, the filter that a command works on,
/// verbosity, the library. `HandlerForm.h` puts them together; a handler that does not fit there
/// takes the pieces that it needs, in the same order.

#include <getopt.h>

#include <cstddef>
#include <cstdio>
#include <string>

#include "TarnFWUtilFilter.h"
#include "tarnfw.h"

// --- Texts

// Lines that usage texts share. They are macros, so that they stand between the other lines of a
// text as literals do. A text whose line differs, be it by a blank, has its own.
#define USAGE_OPTIONS "Usage: tarnioctl %s <options>\n"
#define USAGE_FILTER "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
#define USAGE_VERBOSE "    -v<number>  : enable verbose log\n"
#define USAGE_COMPONENT "    -m <string> : verbose log component name or id\n"
#define USAGE_HELP "    -h          : this help message\n"

/// Prints the usage text that `tarnioctl`, `-h` and `help` show, with `word` in its first line.
void printHelp(const char* word);

/// Prints a text with `word` in the place of its first "%s"; the text as it is when it has none.
void printWith(FILE* stream, const char* text, const char* word);

/// A handler's usage text, with the command word as typed in the place of its one "%s".
class Usage {
 public:
  Usage(const char* text, const char* cmd) : text_(text), cmd_(cmd) {}

  /// Prints it to standard output and returns `status`: `return usage(0);`.
  int operator()(int status) const;

  /// Prints an error line to standard error, then the text, and returns 1.
  int error(const char* format, ...) const __attribute__((format(printf, 2, 3)));

 private:
  const char* text_;
  const char* cmd_;
};

/// Prints an error line to standard error and returns 1:
///
///     return error("ERROR: failed to get fail policy: %s\n", FW_StatusToString(status));
int error(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The printer that handlers register with `FW_SetLibPrettyPrinting(pretty_printing, stdout)`:
/// formats onto the stream and returns what the formatting returns.
int pretty_printing(void* stream, const char* format, ...) __attribute__((format(printf, 2, 3)));

/// Text of a fixed field of a kernel record, which may fill its field without a NUL.
template <std::size_t N>
std::string fieldText(const char (&field)[N], std::size_t limit = N) {
  return std::string(field, TarnFirewall::fieldLength(field, limit < N ? limit : N));
}

// --- Options

/// Walks a handler's options with `getopt`, or `getopt_long` when there are long ones. Each walk
/// begins anew, so that a handler may run another one. Lines about unknown options and missing
/// values are getopt's own, on standard error.
class Options {
 public:
  Options(int argc, char** argv, const char* letters, const option* words = nullptr);

  /// Letter of the next option, '?' for one that is unknown or lacks its value, -1 at the end.
  int next();

  /// Value of the option that `next` returned, null when it has none.
  const char* value() const { return optarg; }

  /// Operands, after `next` has returned -1: `argv` from the first that is not an option.
  char** operands() const { return argv_ + optind; }
  int operandCount() const { return argc_ - optind; }

 private:
  int argc_;
  char** argv_;
  const char* letters_;
  const option* words_;
};

/// Reads a whole decimal number that an int can hold; false leaves `value` alone.
bool decimalOption(const char* text, int* value);

/// The number that a text begins with, 0 when there is none, moved into the bounds: one with more
/// bits than its field must not turn into another one.
long boundedOption(const char* text, long least, long most);

// Long options that handlers share; `kLastWord` ends a list of them.
inline constexpr option kFilterWord{"filter", required_argument, nullptr, 'f'};
inline constexpr option kHelpWord{"help", no_argument, nullptr, 'h'};
inline constexpr option kVerboseWord{"verbose", optional_argument, nullptr, 'v'};
inline constexpr option kLastWord{nullptr, 0, nullptr, 0};

// --- The filter

/// The filter that a command works on, as `-f` names it.
struct FilterTarget {
  dvs_port_ port{};
  char name[kMaxName + 1]{};
  char agent[kMaxName + 1]{};
  bool given = false;

  FilterTarget();

  /// Takes the value of `-f`. Returns 0; or 1 after the error line for a name that is too long.
  int take(const char* text);

  /// Runs after the options: a selector without an agent of its own gets the agent buffer, with
  /// `always` any selector.
  void settleAgent(bool always = false);
};

// --- Verbosity

/// The options `-v` and `-m`.
struct Verbosity {
  int level = 0;
  unsigned int component = 255;

  /// Takes `-v`: one step without a value, otherwise the value, of which a negative one counts as
  /// 0. Repeated options add up.
  void raise(const char* text);

  /// Takes `-m`. Returns 0; or 1 after the error line for a component that is not there.
  int takeComponent(const char* text);

  /// Prints the level and the selector's agent, when the level is not zero.
  void announce(const FilterTarget& target) const;

  /// Sets the level of the library's component, when the level is not zero.
  void raiseLibrary() const;
};

// --- Library

/// Opens the default library handle. Returns 0; or 1 after the error line.
int initFWLibrary(fwlibhandle_** handle);
