// Handlers that clear the filter tables and have machines follow them, against scripted devices.

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <utility>
#include <vector>

#include "TableKernel.h"

using namespace TableTest;

// --- clrwgttable

namespace {

Words clear(const Words& options = {}) { return Words{"clrwgttable", "-Override"} + options; }

}  // namespace

TEST(ClearWeirgateTbl, DeletesWhatItHasRead) {
  Tables tables;
  tables.exclude = kExcludeEntry;
  tables.include = kIncludeEntry + kHostEntry;
  EXPECT_EQ(runCommand(clear()), (CommandResult{0, "", ""}));
  EXPECT_EQ(tables.numbers(), "8 9 7 3 4 2");
  EXPECT_EQ(tables.requests[2].entries, tables.include);
  EXPECT_EQ(tables.requests[5].entries, tables.exclude);
  for (const Tables::Request& request : tables.requests) EXPECT_EQ(request.agent, "kelpco-sfw");
}

TEST(ClearWeirgateTbl, ClearsOneTable) {
  for (const auto& [words, numbers] : {std::pair<Words, const char*>{{"-i"}, "8 9 7"},
                                       {{"--incl"}, "8 9 7"},
                                       {{"-e"}, "3 4 2"},
                                       {{"--excl", "--agent", "kelpco-sfw"}, "3 4 2"}}) {
    Tables tables;
    tables.exclude = kExcludeEntry;
    tables.include = kIncludeEntry;
    EXPECT_EQ(runCommand(clear(words)), (CommandResult{0, "", ""}));
    EXPECT_EQ(tables.numbers(), numbers);
  }
  Tables tables;
  EXPECT_EQ(runCommand(clear({"-i", "-e"})),
            (CommandResult{1, "", "-i and -e are mutually exclusive, clearing both is default\n"}));
  EXPECT_TRUE(tables.requests.empty());
}

TEST(ClearWeirgateTbl, SaysWhatItDoesWithVerbosity) {
  const std::string head = "weirgate agent: my%sagent\n";
  const std::string one =
      "got the include extries for my%sagent\ncleared the include extries for my%sagent\n"
      "got the include extries for my%sagent\ncleared the exclude extries for my%sagent\n";
  Tables tables;
  tables.exclude = kExcludeEntry;
  tables.include = kIncludeEntry;
  EXPECT_EQ(runCommand(clear({"-v1", "-a", "my%sagent"})),
            (CommandResult{0, "verbose level : 1\n" + head + one, ""}));
  EXPECT_EQ(runCommand(clear({"-v", "1", "--verbose=1", "-v-5", "-a", "my%sagent", "-i"})),
            (CommandResult{0,
                           "verbose level : 2\n" + head +
                               "buflen: 32\n"
                               "got the include extries for my%sagent\n"
                               "cleared the include extries for my%sagent\n",
                           ""}));
}

TEST(ClearWeirgateTbl, TheAgentIsPrintedWholeAndSentCut) {
  Tables tables;
  const std::string agent(99, 'a');
  EXPECT_EQ(
      runCommand(clear({"-a", agent, "-v1"})),
      (CommandResult{0,
                     "verbose level : 1\nweirgate agent: " + agent + "\nEntries for " + agent +
                         " already cleared\nEntries for " + agent + " already cleared\n",
                     ""}));
  EXPECT_EQ(tables.requests[0].agent, kLongAgent);
  EXPECT_EQ(runCommand(clear({"-a", agent + "b"})),
            (CommandResult{1, "", "ERROR: agent name too long"}));
}

TEST(ClearWeirgateTbl, SaysThatThereAreNoEntries) {
  Tables tables;
  EXPECT_EQ(runCommand(clear({"-e"})),
            (CommandResult{0, "Entries for kelpco-sfw already cleared\n", ""}));
  tables.errors = {{8, ENOENT}, {3, ENOENT}};
  EXPECT_EQ(runCommand(clear()), (CommandResult{0,
                                                "No include entries found for kelpco-sfw\n"
                                                "No exclude entries found for kelpco-sfw\n",
                                                ""}));
}

TEST(ClearWeirgateTbl, ReportsTheRequestThatFails) {
  struct Row {
    unsigned long number;
    int error;
    const char* line;
    const char* requests;
  };
  const Row rows[] = {
      {8, EPERM, "failed to get include size: -1, 1\n", "8"},
      {9, ENOENT, "failed to get current include entries: -1, 2\n", "8 9"},
      {7, ENOENT, "failed to delete the include entries: -1, 2\n", "8 9 7"},
      {3, EINVAL, "failed to get exclude size: -1, 22\n", "8 9 7 3"},
      {4, ENOMEM, "failed to get current exclude entries: -1, 12\n", "8 9 7 3 4"},
      {2, EBUSY, "failed to delete the exclude entries: -1, 16\n", "8 9 7 3 4 2"},
  };
  for (const Row& row : rows) {
    Tables tables;
    tables.exclude = kExcludeEntry;
    tables.include = kIncludeEntry;
    tables.errors = {{row.number, row.error}};
    EXPECT_EQ(runCommand(clear()), (CommandResult{1, row.line, ""}));
    EXPECT_EQ(tables.numbers(), row.requests);
  }
}

TEST(ClearWeirgateTbl, OneTableGivesItsOwnResult) {
  for (const auto& [option, number] : {std::pair{"-i", 9ul}, {"-e", 4ul}}) {
    Tables tables;
    tables.exclude = kExcludeEntry;
    tables.include = kIncludeEntry;
    tables.errors = {{13 - number, EPERM}};
    EXPECT_EQ(runCommand(clear({option})), (CommandResult{0, "", ""})) << "the other table's";
    tables.errors = {{number, EPERM}};
    EXPECT_EQ(runCommand(clear({option})).status, 1) << option;
  }
}

TEST(ClearWeirgateTbl, DeletesWithTheSizeOfTheReply) {
  const std::vector<std::pair<std::uint32_t, std::size_t>> rows = {
      {0, 0}, {3, 3}, {32, 32}, {33, 32}, {0xffffffff, 32}};
  for (const auto& [told, sent] : rows) {
    Tables tables;
    tables.include = kIncludeEntry;
    tables.told = told;
    EXPECT_EQ(runCommand(clear({"-i"})), (CommandResult{0, "", ""}));
    EXPECT_EQ(tables.requests[2].entries.size(), sent) << told;
  }
}

TEST(ClearWeirgateTbl, WithoutMemoryItEndsWithoutAText) {
  Tables tables;
  tables.include = kIncludeEntry;
  tables.size = 0xffffffff;
  DeviceShim::failNextCalloc();
  EXPECT_EQ(runCommand(clear()), (CommandResult{1, "", ""}));
  EXPECT_EQ(tables.numbers(), "8");
}

// --- clearallfilters

namespace {

const std::string kDestroyed =
    "Destroyed all disconnected filters (please ignore `Function not implemented' error if there "
    "is).\n";

Words clearAll(const Words& options = {}) {
  return Words{"clearallfilters", "-Override"} + options;
}

}  // namespace

TEST(ClearAllFilters, ClearsRevalidatesAndDestroys) {
  struct Row {
    Words options;
    int status;
    std::string out;
    const char* requests;
  };
  const std::string include = "Cleared weirgate include table.\n";
  const std::string exclude = "Cleared weirgate exclude table.\n";
  const std::string updated = "Updated all VMs to remove filters.\n";
  const std::string skipped = "Skip connected filters.\n";
  const Row rows[] = {
      {{}, 0, include + updated + kDestroyed, "6 10 11"},
      {{"-e"}, 0, include + exclude + updated + kDestroyed, "6 1 10 11"},
      {{"-d"}, 0, include + updated, "6 10"},
      {{"-d", "-e"}, 0, include + exclude + updated, "6 1 10"},
      {{"-o"}, 1, skipped + kDestroyed, "11"},
      {{"-e", "-o"}, 1, skipped + kDestroyed, "11"},
  };
  for (const Row& row : rows) {
    Tables tables(VM);
    EXPECT_EQ(runCommand(clearAll(row.options)),
              (CommandResult{row.status, "Removing all kelpco-sfw filters...\n" + row.out, ""}));
    EXPECT_EQ(tables.numbers(), row.requests);
    for (const Tables::Request& request : tables.requests) {
      if (request.number == 10) continue;
      EXPECT_EQ(request.agent, "kelpco-sfw");
      EXPECT_EQ(request.size, 0u);
    }
  }
}

TEST(ClearAllFilters, DelayAndOnlyExcludeEachOther) {
  Tables tables;
  EXPECT_EQ(runCommand(clearAll({"-d", "-o"})),
            (CommandResult{1, "Cannot have option -d and -o together.\n", ""}));
  EXPECT_TRUE(tables.requests.empty());
}

TEST(ClearAllFilters, DestroysAlsoWhenTheRevalidationFails) {
  Tables tables("1000:x\\n");
  EXPECT_EQ(runCommand(clearAll()), (CommandResult{1,
                                                   "Removing all kelpco-sfw filters...\n"
                                                   "Cleared weirgate include table.\n" +
                                                       kDestroyed,
                                                   ""}));
  EXPECT_EQ(tables.numbers(), "6 11");
}

TEST(ClearAllFilters, ResultsOfItsRequestsAreNotRead) {
  Tables tables(VM);
  tables.errors = {{6, EPERM}, {1, EPERM}, {11, ENOSYS}};
  EXPECT_EQ(runCommand(clearAll({"-e"})).status, 0);
  EXPECT_EQ(tables.numbers(), "6 1 10 11");
}

TEST(ClearAllFilters, TakesAnAgentOfAtMost39Characters) {
  Tables tables;
  EXPECT_EQ(runCommand(clearAll({"-a", kLongAgent, "-o"})).out,
            "Removing all " + kLongAgent + " filters...\nSkip connected filters.\n" + kDestroyed);
  EXPECT_EQ(tables.requests[0].agent, kLongAgent);
  EXPECT_EQ(runCommand(clearAll({"-a", kLongAgent + "b"})),
            (CommandResult{1, "", "ERROR: invalid agent name " + kLongAgent + "b\n"}));
}

// --- revalidatevm

namespace {

Words revalidate(const Words& options = {}) { return Words{"revalidatevm", "-Override"} + options; }

}  // namespace

TEST(RevalidateVM, RevalidatesOneOrAll) {
  Tables tables("998253:" UUID "\\n" VM);
  EXPECT_EQ(runCommand(revalidate()), (CommandResult{0, "", ""}));
  EXPECT_EQ(tables.numbers(), "10 10");
  EXPECT_EQ(tables.requests[1].entries, kVm);

  tables.requests.clear();
  EXPECT_EQ(runCommand(revalidate({"-w", "1000", "-u", UUID})), (CommandResult{0, "", ""}));
  EXPECT_EQ(tables.numbers(), "10");
  EXPECT_EQ(tables.requests[0].entries, kVm);

  tables.requests.clear();
  EXPECT_EQ(runCommand(revalidate({"-u", UUID, "-w0"})), (CommandResult{0, "", ""}));
  EXPECT_EQ(tables.requests[0].entries, Bytes(4) + kUuid);
}

TEST(RevalidateVM, NeedsBothOrNone) {
  const std::string usage = usageOf("revalidatevm");
  const std::string one = "ERROR: Please provide both vm uuid and world id to revalidate one vm\n";
  Tables tables;
  EXPECT_EQ(runCommand(revalidate({"-w", "5"})), (CommandResult{1, usage, one}));
  EXPECT_EQ(runCommand(revalidate({"-u", UUID})), (CommandResult{1, usage, one}));
  for (const char* uuid : {"", "x", "00 01 02", VNIC})
    EXPECT_EQ(runCommand(revalidate({"-w", "5", "-u", uuid})),
              (CommandResult{1, usage, "ERROR: Bad vm uuid string.\n"}));
  for (const char* world : {"", "x", "-1", "4294967296"})
    EXPECT_EQ(runCommand(revalidate({"-w", world, "-u", UUID})), (CommandResult{1, usage, ""}));
  EXPECT_TRUE(tables.requests.empty());
}

TEST(RevalidateVM, AFailureIsTheStatusOnly) {
  Tables tables(VM);
  tables.errors = {{10, EINVAL}};
  EXPECT_EQ(runCommand(revalidate()), (CommandResult{1, "", ""}));
  EXPECT_EQ(runCommand(revalidate({"-w", "5", "-u", UUID})), (CommandResult{1, "", ""}));
}
