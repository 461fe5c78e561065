// What all handlers have in common, with a row for each of them.

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "CommandTable.h"
#include "HandlerKernel.h"
#include "HandlerRows.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "tarnfw.h"

std::vector<HandlerRow> handlerRows() {
  std::vector<HandlerRow> all;
  for (const auto family : {displayRows, exclusionRows, featureRows, flowRows, identityRows,
                            insertionRows, lifecycleRows, settingsRows, statisticsRows, traceRows})
    for (HandlerRow& row : family()) all.push_back(std::move(row));
  return all;
}

namespace {

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

std::string withWord(const char* text, const std::string& word) {
  const std::string whole(text);
  const std::size_t place = whole.find("%s");
  return place == std::string::npos ? whole
                                    : whole.substr(0, place) + word + whole.substr(place + 2);
}

bool isDangerous(const std::string& word) {
  const FWCommand_* const command = findCommand(word.c_str());
  return command != nullptr && (command->flags & kCommandDangerous) != 0;
}

/// One word of a row.
struct Case {
  HandlerRow row;
  std::string word;
};
void PrintTo(const Case& one, std::ostream* to) { *to << one.word; }

std::vector<Case> casesWithOptions() {
  std::vector<Case> cases;
  for (const HandlerRow& row : handlerRows())
    for (const char* word : row.words)
      if (row.usage != nullptr) cases.push_back({row, word});
  return cases;
}

class HandlerRows : public testing::TestWithParam<Case> {
 public:
  // A handler that ends early leaves its printer to the process.
  void TearDown() override { FW_SetLibPrettyPrinting(nullptr, nullptr); }

 protected:
  const HandlerRow& row = GetParam().row;
  const std::string& word = GetParam().word;
  const std::string usage = withWord(row.usage, word);

  CommandResult run(const std::vector<std::string>& options) const {
    std::vector<std::string> words{word};
    if (isDangerous(word)) words.emplace_back("-Override");
    words.insert(words.end(), options.begin(), options.end());
    return runCommand(words);
  }

  /// With the options that are needed in front, and the operand after them.
  CommandResult runNeeded(const std::vector<std::string>& options) const {
    std::vector<std::string> words(row.needed.begin(), row.needed.end());
    words.insert(words.end(), options.begin(), options.end());
    if (row.operand != nullptr) words.emplace_back(row.operand);
    return run(words);
  }

  /// getopt's line, which begins with the word in front of the options.
  std::string getoptLine(const std::string& text) const {
    if (row.getoptIsSilent) return "";
    return (isDangerous(word) ? "-Override" : word) + ": " + text + "\n";
  }
};

}  // namespace

TEST_P(HandlerRows, ShowsItsUsage) { EXPECT_EQ(run({"-h"}), (CommandResult{0, usage, ""})); }

TEST_P(HandlerRows, ShowsItForAnUnknownOption) {
  EXPECT_EQ(run({"-?"}),
            (CommandResult{row.badOption, usage, getoptLine("invalid option -- '?'")}));
}

TEST_P(HandlerRows, ShowsItForAMissingValue) {
  if (row.valueOption == nullptr) return;
  EXPECT_EQ(run({row.valueOption}),
            (CommandResult{row.badOption, usage,
                           getoptLine("option requires an argument -- '" +
                                      std::string(row.valueOption + 1) + "'")}));
}

TEST_P(HandlerRows, NeedsAFilter) {
  if (!row.takesFilter || row.missing == nullptr) return;
  const DefaultHandle none(nullptr);
  EXPECT_EQ(runNeeded({}),
            (CommandResult{row.missingStatus,
                           row.missingUsage != nullptr ? withWord(row.missingUsage, word) : usage,
                           row.missing}));
}

TEST_P(HandlerRows, RefusesAFilterNameOf100Characters) {
  if (!row.takesFilter) return;
  const DefaultHandle none(nullptr);
  const std::string longest(99, 'f');
  EXPECT_EQ(runNeeded({"-f", longest + "f"}),
            (CommandResult{1, "", "ERROR: invalid filter name " + longest + "f\n"}));
  if (!row.opensLibrary) return;
  EXPECT_EQ(runNeeded({"-f", longest}), (CommandResult{row.libraryStatus, "", row.libraryFailed}));
}

TEST_P(HandlerRows, NeedsTheLibrary) {
  if (!row.opensLibrary) return;
  const DefaultHandle none(nullptr);
  std::vector<std::string> options;
  if (row.takesFilter) options = {"-f", kFilter};
  EXPECT_EQ(runNeeded(options), (CommandResult{row.libraryStatus, "", row.libraryFailed}));
}

TEST_P(HandlerRows, SaysItsVerbosity) {
  if (row.verbose == nullptr || !row.opensLibrary) return;
  const LogCapture log;  // puts the levels back at its end
  const DefaultHandle none(nullptr);
  EXPECT_EQ(runNeeded({"-v2", "-f", kFilter}),
            (CommandResult{row.libraryStatus, row.verbose, row.libraryFailed}));
  unsigned int level = 99;
  FW_GetLibVerboseLevel(0, &level);
  EXPECT_EQ(level, row.raisesLibraryLevel ? 2u : 0u);
}

INSTANTIATE_TEST_SUITE_P(All, HandlerRows, testing::ValuesIn(casesWithOptions()),
                         testing::PrintToStringParamName());

TEST(RowsOfHandlers, NameCommandsOfTheTableOnce) {
  std::set<std::string> seen;
  for (const HandlerRow& row : handlerRows()) {
    for (const char* word : row.words) {
      EXPECT_NE(findCommand(word), nullptr) << word;
      EXPECT_TRUE(seen.insert(word).second) << word;
    }
  }
}

TEST(RowsOfHandlers, NameEveryCommand) {
  std::set<std::string> here;
  for (const HandlerRow& row : handlerRows()) here.insert(row.words.begin(), row.words.end());
  for (const FWCommand_& command : g_cmd_table)
    EXPECT_TRUE(here.contains(command.name)) << command.name << " has no row";
}
