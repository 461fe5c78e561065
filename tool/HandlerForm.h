#pragma once

/// The skeleton of a handler. It does these steps, in this order, and the first that fails ends the
/// command; what is a handler's own stands in its `HandlerForm`:
///
///     1. options                  letters, words, own, badOption
///     2. `parsed`
///     3. library, for few         opensLibraryFirst
///     4. is a filter missing?     needsFilter, missing
///     5. `check`                  what else is missing
///     6. agent and verbosity      alwaysTakesAgent, announces, raisesLibraryLevel
///     7. printer                  prints
///     8. library                  opensLibrary, libraryFailure
///     9. the handler's body, which calls and prints
///    10. printer                  removesPrinter
///
/// A thin handler is a usage text and one call:
///
///     int GetFailPolicy(const char* cmd, int argc, char** argv) {
///       return onFilter(
///           cmd, argc, argv,
///           {.usage = kUsage, .letters = "hv:f:", .raisesLibraryLevel = false, .prints = true},
///           [](const Target& target) {
///             FWFailPolicy_t policy;
///             return outcome(FW_GetFailPolicy(target.handle, target.port, nullptr, &policy),
///                            "ERROR: failed to get fail policy: %s\n");
///           });
///     }
///
/// With an option of its own, which must be given:
///
///           {.usage = kUsage,
///            .letters = "hv:f:p:",
///            .own = {{'p', &policy}},
///            .check = given(policy, "ERROR: fail policy is missing.\n")},

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>

#include "Callback.h"
#include "HandlerCommon.h"

/// What the steps have found out so far; the body gets all of it. Options and texts may be asked
/// for at any step, the selector after the options, the handle in the body.
struct Target {
  Target(const Usage& ownUsage, const Options& walk) : usage(ownUsage), options(walk) {}
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;

  const Usage& usage;
  const Options& options;  // for the operands
  FilterTarget filter{};
  dvs_port_* port = &filter.port;  // all zero when no filter was given
  Verbosity verbosity{};
  fwlibhandle_* handle = nullptr;  // null when the handler does not open the library

  /// True when `-v` has raised the level.
  bool verbose() const { return verbosity.level != 0; }
};

/// What a step returns instead of a status to let the next one follow.
inline constexpr int kGoOn = -1;

/// What an option's function returns to show the usage text, as for an option that is unknown.
inline constexpr int kNotTaken = -2;

/// An option of the handler's own. One with a letter that handlers share (-f, -v, -m, -h) replaces
/// the shared one.
struct OwnOption {
  /// Gets the value (null when the option has none); returns `kGoOn`, `kNotTaken` or a status.
  using Take = Callback<int(const char* value, const Target& target)>;

  OwnOption(char which, Take function) : letter(which), take(function) {}

  /// Sets a flag.
  OwnOption(char which, bool* flag);

  /// Keeps the value; the last one counts.
  OwnOption(char which, const char** text);

  /// The same for a text of at most `most` characters. A longer one ends the handler with
  /// `tooLong`, which has the text in the place of its one "%s", and status 1.
  OwnOption(char which, const char** text, std::size_t most, const char* tooLong);

  /// Keeps a decimal number of 32 bits. The usage text is shown for anything else.
  OwnOption(char which, std::optional<std::uint32_t>* number);

  /// Keeps a choice: 0 or 1. Another value ends the handler with `bad`, which has the text in the
  /// place of its "%s", the usage text and status 1.
  OwnOption(char which, std::optional<bool>* choice, const char* bad);

  OwnOption() = default;

  char letter = '\0';
  Take take = nullptr;
};

/// The options of a handler's own, without an allocation.
class OwnOptions {
 public:
  OwnOptions() = default;
  OwnOptions(std::initializer_list<OwnOption> options);

  /// The option with this letter, null when there is none.
  const OwnOption* find(int letter) const;

 private:
  static constexpr std::size_t kMost = 24;
  std::array<OwnOption, kMost> options_{};
  std::size_t count_ = 0;
};

/// What a handler does when `-f` is missing.
struct MissingFilter {
  const char* text = "ERROR: filter is missing.\n";
  bool usage = true;  // the usage text follows
  int status = 1;
};

/// The same line as some handlers have it, without a full stop.
inline constexpr char kFilterMissingPlain[] = "ERROR: filter is missing\n";

/// What a handler does when the library cannot be opened, after the line that all have.
struct LibraryFailure {
  const char* text = "";
  int status = 1;
};

/// The ways in which one handler differs from another.
struct HandlerForm {
  using Step = Callback<int(const Target& target)>;

  const char* usage;              // with "%s" in the place of the command word
  const char* letters;            // for getopt
  const option* words = nullptr;  // long options, if any
  OwnOptions own = {};            // options besides -f, -v, -m and -h
  int badOption = 1;              // status after the usage text for an unknown option

  Step parsed = nullptr;  // runs after the options
  bool needsFilter = true;
  MissingFilter missing = {};
  Step check = nullptr;  // runs after the filter was found to be given

  bool alwaysTakesAgent = false;   // the agent goes into the selector whatever the name says
  bool announces = true;           // the level and the agent are printed
  bool raisesLibraryLevel = true;  // the library's level is set
  bool prints = false;             // the library prints to standard output
  bool removesPrinter = false;     // and no longer after the body

  bool opensLibrary = true;
  bool opensLibraryFirst = false;  // before the filter is looked for
  LibraryFailure libraryFailure = {};
};

/// What a handler is for. Returns the exit status.
using HandlerBody = Callback<int(Target& target)>;

/// Runs a handler that works on a filter.
int onFilter(const char* cmd, int argc, char** argv, const HandlerForm& form,
             const HandlerBody& body);

/// Runs a handler that needs neither a filter nor the library.
int onHost(const char* cmd, int argc, char** argv, HandlerForm form, const HandlerBody& body);

/// A check that an option's value was given. Without it the step prints `missing` and the usage
/// text and ends the handler with status 1. `value` must outlive the step: it is looked at then.
HandlerForm::Step given(const char* const& value, const char* missing);

/// 0 for `FW_STATUS_OK`. Otherwise prints `text` to standard error, with the status's text in the
/// place of its "%s" if it has one, and returns 1:
///
///     return outcome(status, "ERROR: failed to get fail policy: %s\n");
int outcome(FWStatus_t status, const char* text);
