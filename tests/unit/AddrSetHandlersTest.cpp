// getaddrsets and getcontainers: options, all sets and one, statistics of the table.

#include <gtest/gtest.h>

#include "AddrSetDisplay.h"
#include "DeviceShim.h"
#include "SetCommands.h"

using namespace SetCommands;

INSTANTIATE_TEST_SUITE_P(Both, SetCommand, testing::ValuesIn(kSetCommands), nameOf);

// --- Options

TEST_P(SetCommand, RefusesANameOf38Characters) {
  const std::string name(38, 'n');
  EXPECT_EQ(run({"-a", name}),
            (CommandResult{1, "", "ERROR: invalid " + word + " name " + name + "\n"}));
  kernel.own = {command.empty(name.substr(1))};
  EXPECT_EQ(run({"-a", name.substr(1)}), (CommandResult{0, command.shown(name.substr(1)), ""}));
}

TEST_P(SetCommand, TakesStatisticsOrInfoOnly) {
  for (const char* value : {"table", "entry", "all", "clear", "else"})
    EXPECT_EQ(run({"-i", "-s", value}),
              (CommandResult{1, "", "ERROR: only one of -s and -i can be specified.\n"}));
  EXPECT_TRUE(kernel.asked().empty());
}

// --- All sets

TEST_P(SetCommand, AFilterWithoutSetsHasNone) {
  EXPECT_EQ(run(), (CommandResult{0, command.none, ""}));
  EXPECT_EQ(run({"-i"}), (CommandResult{0, command.none, ""}));
  EXPECT_EQ(run({"-s", "all"}), (CommandResult{0, command.none, ""}));
}

TEST_P(SetCommand, SaysThatTheCountFailed) {
  kernel.fail(kCount, 21);
  EXPECT_EQ(
      run(),
      (CommandResult{1, "", "ERROR: failed to get " + word + " count: " + statusText(21) + "\n"}));
}

TEST_P(SetCommand, SaysThatTheListFailed) {
  kernel.own = {command.empty("a"), command.empty("b")};
  kernel.fail(kList, 7);
  EXPECT_EQ(run(), (CommandResult{1, "",
                                  std::string("ERROR: failed to get 2 address sets: ") +
                                      statusText(7) + "\n"}));
}

TEST_P(SetCommand, SaysThatThereIsNoMemoryForTheNames) {
  kernel.on(kCount, [](Body& body) {
    body.put32(4, 9);
    DeviceShim::failNextCalloc();
    return 0;
  });
  EXPECT_EQ(run(), (CommandResult{1, "", "ERROR: no memory for getting 9 " + word + "s\n"}));
}

TEST_P(SetCommand, AnEmptyListHasNone) {
  kernel.own = {command.empty("a")};
  kernel.on(kList, [](Body&) { return 0; });
  EXPECT_EQ(run(), (CommandResult{0, command.none, ""}));
}

TEST_P(SetCommand, MoreNamesThanWereAskedForAreCutOff) {
  kernel.own = {command.empty("a")};
  const auto list = kernel.answerTo(kList);
  kernel.on(kList, [list](Body& body) {
    const auto status = list(body);
    body.put32(12, 0xffffffff);
    return status;
  });
  EXPECT_EQ(run(), (CommandResult{0, command.shown("a"), ""}));
}

TEST_P(SetCommand, ANameThatFillsItsFieldIsCutByOne) {
  const std::string full(38, 'n');
  kernel.own = {command.empty(full.substr(0, 37))};
  kernel.on(kList, [full](Body& body) {
    body.put32(12, 1);
    body.putText(16, full);
    return 0;
  });
  EXPECT_EQ(run(), (CommandResult{0, command.shown(full.substr(0, 37)), ""}));
}

TEST_P(SetCommand, SkipsSetsOfTheOtherType) {
  kernel.own = {{"x", command.otherType()}, command.empty("a"), {"y", 5}, command.empty("b")};
  EXPECT_EQ(run(), (CommandResult{0, command.shown("a") + command.shown("b"), ""}));
}

TEST_P(SetCommand, OnlySetsOfTheOtherTypeAreNone) {
  kernel.own = {{"x", command.otherType()}, {"y", command.otherType()}};
  EXPECT_EQ(run(), (CommandResult{0, command.none, ""}));
  EXPECT_EQ(run({"-s", "table"}), (CommandResult{0, command.none, ""}));
}

TEST_P(SetCommand, ASetWithoutASizeIsSkippedAndIsNoOther) {
  kernel.own = {command.empty("a"), {"x", command.otherType()}};
  kernel.fail(kSize, 29, 1);
  EXPECT_EQ(run(),
            (CommandResult{0, "",
                           std::string("ERROR: failed to get size of addrset a: ") +
                               statusText(29) + "\nERROR: failed to find type and size of a\n"}));
}

TEST_P(SetCommand, ASetWithoutASizeDoesNotEndTheCommand) {
  kernel.own = {command.empty("a"), command.empty("b")};
  kernel.fail(kSize, 29, 1);
  EXPECT_EQ(run(),
            (CommandResult{0, command.shown("b"),
                           std::string("ERROR: failed to get size of addrset a: ") +
                               statusText(29) + "\nERROR: failed to find type and size of a\n"}));
}

TEST_P(SetCommand, AFailedSetDoesNotEndTheCommand) {
  kernel.own = {command.empty("a"), command.empty("b")};
  kernel.fail(kSize, 29, 2);
  EXPECT_EQ(run(), (CommandResult{
                       0, command.shown("b"),
                       "ERROR: failed to get size of " + word + " a: " + statusText(29) + "\n"}));
}

// --- Info

TEST_P(SetCommand, InfoStandsInAFrame) {
  kernel.own = {command.filled("a")};
  const CommandResult expected{0,
                               word +
                                   " a {\n"
                                   "address count    : 3\n"
                                   "generation number: 42\n"
                                   "realization time : TIME\n"
                                   "}\n",
                               ""};
  for (const std::vector<std::string>& options :
       {std::vector<std::string>{"-i"}, std::vector<std::string>{"-i", "-a", "a"}}) {
    CommandResult result = run(options);
    if (options.size() > 1) {
      // Asked for twice, printed once.
      EXPECT_EQ(kernel.timesAsked(kInfo), 3u);
    }
    result.out = maskTime(result.out, 1000);
    EXPECT_EQ(result, expected);
  }
}

TEST_P(SetCommand, FailedInfoIsThatOfAnAddrsetWhateverItIs) {
  kernel.own = {command.filled("a")};
  kernel.fail(kInfo, 29);
  EXPECT_EQ(run({"-i"}), (CommandResult{0, word + " a {\n}\n",
                                        std::string("ERROR: failed to get info of addrset a: ") +
                                            statusText(29) + "\n"}));
}

// --- One set

TEST_P(SetCommand, ANamedSetIsShownWithoutAskingForTheOthers) {
  kernel.own = {command.empty("a"), command.filled("b")};
  EXPECT_EQ(
      masked(command, run({"-a", "b"})),
      (CommandResult{0, word + " b {\n" + infoText(command) + memberText(command) + ",\n}\n", ""}));
  EXPECT_EQ(kernel.timesAsked(kCount), 0u);
}

TEST_P(SetCommand, ANamedSetThatIsNotThere) {
  EXPECT_EQ(run({"-a", "nowhere"}), (CommandResult{0, command.noSet, ""}));
  EXPECT_EQ(kernel.timesAsked(kSize), 0u);
}

TEST_P(SetCommand, ANamedSetOfTheOtherTypeIsNotFound) {
  kernel.own = {{"x", command.otherType()}};
  EXPECT_EQ(run({"-a", "x"}), (CommandResult{0, "no " + word + " found\n", ""}));
}

TEST_P(SetCommand, ANamedSetWithoutASizeIsNotFound) {
  kernel.own = {command.empty("a")};
  kernel.fail(kSize, 7);
  EXPECT_EQ(run({"-a", "a"}),
            (CommandResult{0, "no " + word + " found\n",
                           std::string("ERROR: failed to get size of addrset a: ") + statusText(7) +
                               "\nERROR: failed to find type and size of a\n"}));
}

// --- Statistics of the table

TEST_P(SetCommand, TableStatisticsStandInFrontOfEachSet) {
  kernel.own = {command.empty("a"), {"x", command.otherType()}, command.empty("b")};
  EXPECT_EQ(
      run({"-s", "table"}),
      (CommandResult{
          0, tableText("a", 0) + command.shown("a") + tableText("b", 2) + command.shown("b"), ""}));
  EXPECT_EQ(kernel.timesAsked(kList), 0u) << "the names come with the statistics";
  EXPECT_EQ(kernel.timesAsked(kEntryStats), 0u);
}

TEST_P(SetCommand, TableStatisticsOfANamedSet) {
  kernel.own = {command.empty("a"), command.empty("b")};
  EXPECT_EQ(run({"-s", "table", "-a", "b"}),
            (CommandResult{0, tableText("b", 1) + command.shown("b"), ""}));
}

TEST_P(SetCommand, TableStatisticsOfANamedSetOfTheOtherTypeAreShownThoughItIsNotFound) {
  kernel.own = {{"x", command.otherType()}};
  EXPECT_EQ(run({"-s", "table", "-a", "x"}),
            (CommandResult{0, tableText("x", 0) + "no " + word + " found\n", ""}));
}

TEST_P(SetCommand, TheNameOfStatisticsIsComparedInAllItsBytes) {
  kernel.own = {command.empty("a")};
  const auto stats = kernel.answerTo(kTableStats);
  kernel.on(kTableStats, [stats](Body& body) {
    const auto status = stats(body);
    body.at[16 + 5] = 'z';  // after the NUL
    return status;
  });
  EXPECT_EQ(
      run({"-s", "table", "-a", "a"}),
      (CommandResult{0, word + " a {\nfailed to get stats\n}\n",
                     std::string("ERROR: failed to find stats for ") + command.statsOf + " a\n"}));
}

TEST_P(SetCommand, ANamedSetThatIsNotThereHasNoStatistics) {
  kernel.own = {command.empty("a")};
  EXPECT_EQ(run({"-s", "table", "-a", "nowhere"}), (CommandResult{0, command.noSet, ""}));
}

TEST_P(SetCommand, WithoutAnySetANamedOneIsNotLookedFor) {
  EXPECT_EQ(run({"-s", "table", "-a", "a"}), (CommandResult{0, command.none, ""}));
  EXPECT_EQ(kernel.timesAsked(kInfo), 0u);
}

TEST_P(SetCommand, SaysThatTheTableStatisticsFailed) {
  kernel.own = {command.empty("a"), command.empty("b")};
  kernel.fail(kTableStats, 7);
  EXPECT_EQ(run({"-s", "table"}),
            (CommandResult{1, "",
                           std::string("ERROR: failed to get 2 address sets stats: ") +
                               statusText(7) + "\n"}));
}

TEST_P(SetCommand, SaysThatThereIsNoMemoryForTheTableStatistics) {
  kernel.on(kCount, [](Body& body) {
    body.put32(4, 9);
    DeviceShim::failNextCalloc();
    return 0;
  });
  EXPECT_EQ(run({"-s", "table"}),
            (CommandResult{1, "", "ERROR: no memory for getting 9 " + word + " stats\n"}));
}

TEST_P(SetCommand, MoreTableStatisticsThanWereAskedForAreCutOff) {
  kernel.own = {command.empty("a")};
  const auto stats = kernel.answerTo(kTableStats);
  kernel.on(kTableStats, [stats](Body& body) {
    const auto status = stats(body);
    body.put32(12, 0xffffffff);
    return status;
  });
  EXPECT_EQ(run({"-s", "table"}), (CommandResult{0, tableText("a", 0) + command.shown("a"), ""}));
}

TEST(PrintSingleAddrSetStat, RefusesNull) { EXPECT_EQ(PrintSingleAddrSetStat(nullptr), 1); }

TEST(PrintSingleAddrSetStat, EndsANameAtItsField) {
  FWAddrSetStat_ stat{};
  std::fill(std::begin(stat.name.text), std::end(stat.name.text), 'n');
  const CommandResult result = captured([&] { return PrintSingleAddrSetStat(&stat); });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out.substr(0, 40), std::string(38, 'n') + ":\n");
}
