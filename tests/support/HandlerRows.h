#pragma once

/// What every handler has, as one row: `HandlerRowsTest` runs each row through `-h`, an unknown
/// option, a missing value, a missing filter, a filter's name of 99 and of 100 characters,
/// verbosity and a library that cannot be opened.
///
/// A handler's row stands in the file of its family, `tests/unit/HandlerRows<Family>.cpp`. A
/// command without a row fails a test.

#include <utility>
#include <vector>

/// The exact texts and statuses of one handler. Texts go to standard error, usage texts to standard
/// output.
struct HandlerRow {
  std::vector<const char*> words;  // the command and its aliases
  const char* usage;               // "%s" stands for the word; null for a handler without options

  const char* valueOption = "-f";  // an option that needs a value; null when there is none
  int badOption = 1;               // status after the usage text
  bool getoptIsSilent = false;     // no line of getopt's for a bad option

  // Without a filter. `missing` is null where it is not needed, `missingUsage` is null for the
  // handler's own usage text and empty for none.
  bool takesFilter = true;
  const char* missing = "ERROR: filter is missing.\n";
  const char* missingUsage = nullptr;
  int missingStatus = 1;

  // Options besides -f without which the handler does not come as far as the library.
  std::vector<const char*> needed = {};

  // An operand at the end of the command line without which it does not come that far.
  const char* operand = nullptr;

  // With -v2; null for a handler whose -v is another option, or that has none.
  const char* verbose = "verbose level : 2\nweirgate agent: kelpco-sfw\n";
  bool raisesLibraryLevel = true;

  bool opensLibrary = true;
  const char* libraryFailed = "ERROR: unable to open firewall library\n";
  int libraryStatus = 1;
};

/// A handler that takes no filter and has no verbosity, and that does not open the library.
inline HandlerRow plainRow(std::vector<const char*> words, const char* usage,
                           const char* valueOption = nullptr) {
  return {.words = std::move(words),
          .usage = usage,
          .valueOption = valueOption,
          .takesFilter = false,
          .verbose = nullptr,
          .opensLibrary = false};
}

/// A handler that makes direct requests for a filter, without verbosity and without the library.
inline HandlerRow directRow(const char* word, const char* usage, int badOption = 1) {
  return {.words = {word},
          .usage = usage,
          .badOption = badOption,
          .verbose = nullptr,
          .opensLibrary = false};
}

// Rows by family, each in a file of its own.
std::vector<HandlerRow> displayRows();
std::vector<HandlerRow> exclusionRows();
std::vector<HandlerRow> featureRows();
std::vector<HandlerRow> flowRows();
std::vector<HandlerRow> identityRows();
std::vector<HandlerRow> insertionRows();
std::vector<HandlerRow> lifecycleRows();
std::vector<HandlerRow> settingsRows();
std::vector<HandlerRow> statisticsRows();
std::vector<HandlerRow> traceRows();

/// All of them.
std::vector<HandlerRow> handlerRows();
