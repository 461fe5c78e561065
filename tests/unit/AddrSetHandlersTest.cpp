// getaddrsets and getcontainers against a scripted kernel.

#include <gtest/gtest.h>

#include "AddrSetDisplay.h"
#include "DeviceShim.h"
#include "HandlerKernel.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

using Body = HandlerKernel::Body;

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";
const char kSharedFilter[] = "shared-addrset-filter-";

/// Numbers of the commands.
enum : unsigned int {
  kSize = 15,
  kInfo = 16,
  kAddresses = 17,
  kEntryStats = 19,
  kCount = 20,
  kList = 21,
  kTableStats = 22,
  kShared = 45,
  kElements = 56,
};

const char* statusText(unsigned int status) { return FW_StatusToString(status); }

Bytes ipv4(int last) { return Bytes(144).at(0, {1}).at(4, {10, 0, 0, last}); }

/// An element of a chain: the security identifier S-1-5-LAST.
Bytes sid(int last) {
  return Bytes(90)
      .at(0, {1, 0, 0, 0, 82})
      .at(8, {8, 0, 4, 0, 82})
      .at(22, {1, 1, 0, 0, 0, 0, 0, 5, last});
}

struct Set {
  std::string name;
  std::uint32_t type = kAddrSetType;
  std::vector<Bytes> members{};
};
using Table = std::vector<Set>;

Set container(const std::string& name, std::vector<Bytes> elements = {}) {
  return {name, kContainerType, std::move(elements)};
}

/// What the filter holds, and what the filters of its agent share.
class SetKernel : public HandlerKernel {
 public:
  SetKernel() {
    on(kShared, [this](Body& body) {
      EXPECT_STREQ(body.port.identifier, kFilter);
      body.at[0] = sharing ? 1 : 0;
      return 0;
    });
    on(kCount, [this](Body& body) {
      EXPECT_EQ(body.at[0], 0) << "of every type";
      body.put32(4, static_cast<std::uint32_t>(table(body).size()));
      return 0;
    });
    on(kList, [this](Body& body) {
      const Table& sets = table(body);
      EXPECT_EQ(body.at[0], 0) << "of every type";
      EXPECT_EQ(body.word(4), sets.size());
      EXPECT_EQ(body.word(8), 0u);
      body.put32(12, static_cast<std::uint32_t>(sets.size()));
      for (std::size_t i = 0; i < sets.size(); ++i) body.putText(16 + 38 * i, sets[i].name);
      return 0;
    });
    on(kTableStats, [this](Body& body) {
      const Table& sets = table(body);
      EXPECT_EQ(body.at[0], 0) << "of every type";
      EXPECT_EQ(body.word(4), sets.size());
      EXPECT_EQ(body.word(8), 0u);
      body.put32(12, static_cast<std::uint32_t>(sets.size()));
      for (std::size_t i = 0; i < sets.size(); ++i) {
        const std::size_t record = 16 + 130 * i;
        body.putText(record, sets[i].name);
        for (std::size_t counter = 0; counter < 11; ++counter)
          body.put64(record + 38 + 8 * counter, 100 * (i + 1) + counter);
        body.put32(record + 126, static_cast<std::uint32_t>(7 + i));
      }
      return 0;
    });
    on(kSize, [this](Body& body) -> FWStatus_t {
      const Set* const set = find(body);
      if (set == nullptr) return 29;
      body.put32(38, static_cast<std::uint32_t>(set->members.size()));
      body.put32(42, set->type);
      body.put32(46, static_cast<std::uint32_t>(12 + 90 * set->members.size()));
      return 0;
    });
    on(kInfo, [this](Body& body) -> FWStatus_t {
      if (find(body) == nullptr) return 29;
      body.put32(38, 3);
      body.put64(42, 1000);
      body.put64(50, 42);
      return 0;
    });
    on(kAddresses, [this](Body& body) -> FWStatus_t {
      const Set* const set = find(body);
      EXPECT_EQ(body.word(42), set->members.size());
      EXPECT_EQ(body.word(46), 0u);
      body.put32(50, static_cast<std::uint32_t>(set->members.size()));
      for (std::size_t i = 0; i < set->members.size(); ++i) body.put(70 + 144 * i, set->members[i]);
      return 0;
    });
    on(kEntryStats, [this](Body& body) -> FWStatus_t {
      const Set* const set = find(body);
      EXPECT_EQ(body.word(42), set->members.size());
      EXPECT_EQ(body.word(46), 0u);
      clears.push_back(body.word(50));
      body.put32(54, static_cast<std::uint32_t>(set->members.size()));
      for (std::size_t i = 0; i < set->members.size(); ++i) {
        const std::size_t record = 58 + 80 * i;
        for (std::size_t counter = 0; counter < 8; ++counter)
          body.put64(record + 8 * counter, 10 * (i + 1) + counter);
        body.put32(record + 64, static_cast<std::uint32_t>(-1));
        body.put32(record + 68, 99);
        body.put64(record + 72, 1234567890123);
      }
      return 0;
    });
    on(kElements, [this](Body& body) -> FWStatus_t {
      const Set* const set = find(body);
      EXPECT_EQ(body.word(42), set->members.size());
      EXPECT_EQ(body.size, 70 + 12 + 90 * set->members.size());
      putChain(body, set->members);
      return 0;
    });
  }

  static void putChain(Body& body, const std::vector<Bytes>& elements) {
    body.put32(70, 2);
    body.put32(74, static_cast<std::uint32_t>(elements.size()));
    body.put32(78, static_cast<std::uint32_t>(90 * elements.size()));
    for (std::size_t i = 0; i < elements.size(); ++i) body.put(82 + 90 * i, elements[i]);
  }

  Table own;
  Table shared;
  bool sharing = false;
  std::vector<std::uint32_t> clears;  // flags of the entry statistics

 private:
  const Table& table(const Body& body) const {
    const std::string name = body.port.identifier;
    if (name == kSharedFilter) return shared;
    EXPECT_EQ(name, kFilter);
    return own;
  }
  const Set* find(const Body& body) const {
    for (const Set& set : table(body)) {
      if (set.name == body.text(0, 38)) return &set;
    }
    return nullptr;
  }
};

/// The two commands, which are one but for their words.
struct Command {
  const char* name;
  const char* set;
  const char* statsOf;
  const char* none;
  const char* noSet;
  std::uint32_t type;

  /// An empty set of the command's type, and what is shown of it.
  Set empty(const std::string& id) const { return {id, type}; }
  std::string shown(const std::string& id) const {
    return type == kAddrSetType ? "addrset " + id + " {\n}\n"
                                : "container " + id + " (type 2, num 0 size 12) {\n}\n";
  }
  /// A set with one member.
  Set filled(const std::string& id) const {
    return {id, type, {type == kAddrSetType ? ipv4(1) : sid(1)}};
  }
  std::uint32_t otherType() const { return 3 - type; }
};
const Command kSetCommands[] = {
    {"getaddrsets", "addrset", "address set", "No address sets.\n", "No address sets.\n", 1},
    {"getcontainers", "container", "container", "No containers.\n", "No containers sets.\n", 2},
};

std::ostream& operator<<(std::ostream& to, const Command& command) { return to << command.name; }

class SetCommand : public testing::TestWithParam<Command> {
 protected:
  CommandResult run(std::vector<std::string> options = {}) const {
    std::vector<std::string> words{command.name, "-f", kFilter};
    words.insert(words.end(), options.begin(), options.end());
    return runCommand(words);
  }

  const Command& command = GetParam();
  const std::string word = command.set;
  SetKernel kernel;
};

INSTANTIATE_TEST_SUITE_P(Both, SetCommand, testing::ValuesIn(kSetCommands),
                         [](const auto& test) { return std::string(test.param.name); });

/// What the table statistics of the set at `index` print.
std::string tableText(const std::string& name, int index) {
  const auto number = [index](int counter) {
    const std::string text = std::to_string(100 * (index + 1) + counter);
    return std::string(16 - text.size(), ' ') + text;
  };
  return name + ":\n" +  //
         "    in+pass   : " + number(1) + "  " + number(5) +
         "\n"  //
         "    out+pass  : " +
         number(3) + "  " + number(7) +
         "\n"  //
         "    in+block  : " +
         number(0) + "  " + number(4) +
         "\n"  //
         "    out+block : " +
         number(2) + "  " + number(6) +
         "\n"  //
         "    match     : " +
         number(8) +
         "\n"  //
         "    nomatch   : " +
         number(9) +
         "\n"  //
         "    uptime    : " +
         number(10) +
         "\n"  //
         "    anchor_ref: " +
         std::to_string(7 + index) + "\n\n";
}

const char kHeader[] =
    "                            addr :    pkt[in][pass]    pkt[in][drop]   pkt[out][pass]   "
    "pkt[out][drop] tcp curr  tcp hwm\n"
    "                                    bytes[in][pass]  bytes[in][drop] bytes[out][pass] "
    "bytes[out][drop] uptime\n";

/// What the entry statistics of the first member print, under this text.
std::string entryText(const std::string& text) {
  return std::string(32 - text.size(), ' ') + text +
         " :               11               10               13               12       -1"
         "       99\n" +
         std::string(32, ' ') +
         "                 15               14               17               16 1234567890123\n";
}

const char kSid1[] = "WIN_SID : S-1-5-1";

std::string memberText(const Command& command) {
  return command.type == kAddrSetType ? "ip 10.0.0.1" : kSid1;
}

/// Lines about generation and time, which a container has after its open line.
std::string infoText(const Command& command) {
  return command.type == kAddrSetType ? "" : "# generation number: 42\n# realization time : TIME\n";
}

CommandResult masked(const Command& command, CommandResult result) {
  if (command.type == kContainerType) result.out = maskTime(result.out, 1000);
  return result;
}

}  // namespace

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

// --- Statistics of the entries

TEST_P(SetCommand, EntryStatisticsHaveAHeaderAndTwoLinesForEachMember) {
  kernel.own = {command.filled("a")};
  const CommandResult expected{
      0, kHeader + word + " a {\n" + infoText(command) + entryText(memberText(command)) + "}\n",
      ""};
  EXPECT_EQ(masked(command, run({"-s", "entry"})), expected);
  EXPECT_EQ(masked(command, run({"-s", "entry", "-a", "a"})), expected);
  EXPECT_EQ(kernel.clears, (std::vector<std::uint32_t>{0, 0}));
  EXPECT_EQ(kernel.timesAsked(kTableStats), 0u);
}

TEST_P(SetCommand, TheHeaderGoesWithTheFirstNameOnly) {
  kernel.own = {command.filled("a"), command.filled("b")};
  CommandResult result = run({"-s", "entry"});
  EXPECT_EQ(result.out.find(kHeader), 0u);
  EXPECT_EQ(result.out.find(kHeader, 1), std::string::npos);

  kernel.own.insert(kernel.own.begin(), {"x", command.otherType()});
  result = run({"-s", "entry"});
  EXPECT_EQ(result.out.find(kHeader), std::string::npos) << "the first is of the other type";
}

TEST_P(SetCommand, AllAreBothStatistics) {
  kernel.own = {command.filled("a")};
  EXPECT_EQ(masked(command, run({"-s", "all"})),
            (CommandResult{0,
                           tableText("a", 0) + kHeader + word + " a {\n" + infoText(command) +
                               entryText(memberText(command)) + "}\n",
                           ""}));
}

TEST_P(SetCommand, LongerWordsCountAsTheWordsThatTheyBeginWith) {
  kernel.own = {command.filled("a")};
  for (const char* known : {"table", "entry", "all"})
    EXPECT_EQ(run({"-s", std::string(known) + "s"}), run({"-s", known}));
  for (const char* other : {"tabl", "Table", "", "clears", "x"})
    EXPECT_EQ(run({"-s", other}), run()) << other;
}

TEST_P(SetCommand, ClearAloneListsAsUsual) {
  kernel.own = {command.filled("a")};
  EXPECT_EQ(run({"-s", "clear"}), run());
  EXPECT_TRUE(kernel.clears.empty()) << "no statistics are asked for";
  EXPECT_EQ(kernel.timesAsked(kTableStats), 0u);
}

TEST_P(SetCommand, ClearGoesWithTheEntryStatistics) {
  kernel.own = {command.filled("a")};
  run({"-s", "entry", "-s", "clear"});
  run({"-s", "entry", "-s", "clears"});
  EXPECT_EQ(kernel.clears, (std::vector<std::uint32_t>{1, 0}));
}

TEST_P(SetCommand, SaysThatTheEntryStatisticsFailed) {
  kernel.own = {command.filled("a")};
  kernel.fail(kEntryStats, 7);
  EXPECT_EQ(run({"-s", "entry"}),
            (CommandResult{
                0, "", "ERROR: failed to get address of " + word + " a: " + statusText(7) + "\n"}));
}

TEST_P(SetCommand, NoEntryStatisticsCloseABraceThatWasNotOpened) {
  kernel.own = {command.filled("a")};
  kernel.on(kEntryStats, [](Body&) { return 0; });
  EXPECT_EQ(run({"-s", "entry"}),
            (CommandResult{0, "there is no stats in " + word + " a.\n}\n", ""}));
}

TEST_P(SetCommand, FewerEntryStatisticsThanMembersAreAnError) {
  kernel.own = {
      {"a", command.type, {command.filled("").members[0], command.type == 1 ? ipv4(2) : sid(2)}}};
  kernel.on(kEntryStats, [](Body& body) {
    body.put32(54, 1);
    return 0;
  });
  EXPECT_EQ(run({"-s", "entry"}),
            (CommandResult{0, "", "ERROR: different size of " + word + " a detected\n"}));
}

TEST_P(SetCommand, MoreEntryStatisticsThanMembersAreAnError) {
  kernel.own = {command.filled("a")};
  const auto stats = kernel.answerTo(kEntryStats);
  kernel.on(kEntryStats, [stats](Body& body) {
    const auto status = stats(body);
    body.put32(54, 2);
    return status;
  });
  EXPECT_EQ(run({"-s", "entry"}),
            (CommandResult{0, "", "ERROR: different size of " + word + " a detected\n"}));
}

TEST_P(SetCommand, SaysThatThereIsNoMemoryForTheEntryStatistics) {
  kernel.own = {command.filled("a")};
  const unsigned int members = command.type == 1 ? kAddresses : kElements;
  const auto answer = kernel.answerTo(members);
  kernel.on(members, [answer](Body& body) {
    const auto status = answer(body);
    DeviceShim::failNextCalloc();
    return status;
  });
  EXPECT_EQ(run({"-s", "entry"}),
            (CommandResult{0, "", "ERROR: no memory for " + word + " a stats\n"}));
}

// --- Members

TEST_P(SetCommand, SaysThatThereIsNoMemoryForTheMembers) {
  kernel.own = {command.filled("a")};
  const auto size = kernel.answerTo(kSize);
  kernel.on(kSize, [size, second = false](Body& body) mutable {
    if (second) DeviceShim::failNextCalloc();
    second = true;
    return size(body);
  });
  EXPECT_EQ(run(), (CommandResult{0, "", "ERROR: no memory for " + word + " a\n"}));
}

TEST_P(SetCommand, AMemberCountOfAllOnesIsRefused) {
  kernel.own = {command.filled("a")};
  const auto size = kernel.answerTo(kSize);
  kernel.on(kSize, [size](Body& body) {
    const auto status = size(body);
    body.put32(38, 0xffffffff);
    body.put32(46, 0xffffffff);
    return status;
  });
  const CommandResult result = run();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err.find("ERROR: "), 0u);
  EXPECT_EQ(kernel.timesAsked(kAddresses) + kernel.timesAsked(kElements), 0u);
}

TEST_P(SetCommand, SaysThatTheMembersFailed) {
  kernel.own = {command.filled("a")};
  const bool sets = command.type == 1;
  kernel.fail(sets ? kAddresses : kElements, 7);
  EXPECT_EQ(run(),
            (CommandResult{0, "",
                           std::string("ERROR: failed to get ") + (sets ? "address" : "elements") +
                               " of " + word + " a: " + statusText(7) + "\n"}));
}

TEST_P(SetCommand, NoMembersInTheReplyCloseABraceThatWasNotOpened) {
  kernel.own = {command.filled("a")};
  const bool sets = command.type == 1;
  kernel.on(sets ? kAddresses : kElements, [](Body& body) {
    if (body.size > 82) SetKernel::putChain(body, {});
    body.put32(50, 0);
    return 0;
  });
  EXPECT_EQ(run(), (CommandResult{0,
                                  std::string("there is no ") + (sets ? "address" : "element") +
                                      " in " + word + " a.\n}\n",
                                  ""}));
}

TEST_P(SetCommand, ASetThatChangesItsTypeIsNotShown) {
  kernel.own = {command.filled("a")};
  const auto size = kernel.answerTo(kSize);
  kernel.on(kSize, [size, second = false](Body& body) mutable {
    const auto status = size(body);
    if (second) body.put32(42, 9);
    second = true;
    return status;
  });
  EXPECT_EQ(run(), (CommandResult{0, "", ""}));
}

TEST(GetAddrSets, AnAddressThatMakesNoTextIsSkipped) {
  SetKernel kernel;
  kernel.own = {{"a", 1, {ipv4(1), Bytes(144).at(0, {8}), ipv4(3)}}};
  EXPECT_EQ(runCommand({"getaddrsets", "-f", kFilter}),
            (CommandResult{0, "addrset a {\nip 10.0.0.1,\nip 10.0.0.3,\n}\n", ""}));
}

TEST(GetAddrSets, AnAddressTextOf63CharactersIsShownAndALongerOneSkipped) {
  SetKernel kernel;
  Bytes fitting = Bytes(144).at(0, {4}).at(4, {0x11, 0x11});
  fitting.at(12, {0x11, 0x11, 0x11, 0x11, 0x00, 0x01, 0x00, 0x11});
  for (std::size_t i = 0; i < 16; ++i) fitting.at(20 + i, {0x22});
  Bytes longer = fitting;
  longer.at(18, {0x01});
  kernel.own = {{"a", 1, {longer, fitting}}};
  EXPECT_EQ(runCommand({"getaddrsets", "-f", kFilter}),
            (CommandResult{0,
                           "addrset a {\n"
                           "ip 1111::1111:1111:1:11-2222:2222:2222:2222:2222:2222:2222:2222,\n"
                           "}\n",
                           ""}));
}

TEST(GetAddrSets, MoreAddressesThanWereAskedForAreCutOff) {
  SetKernel kernel;
  kernel.own = {{"a", 1, {ipv4(1)}}};
  const auto addresses = kernel.answerTo(kAddresses);
  kernel.on(kAddresses, [addresses](Body& body) {
    const auto status = addresses(body);
    body.put32(50, 0xffffffff);
    return status;
  });
  EXPECT_EQ(runCommand({"getaddrsets", "-f", kFilter}),
            (CommandResult{0, "addrset a {\nip 10.0.0.1,\n}\n", ""}));
}

TEST(GetContainers, EqualElementsAreAMismatchAndTheWorkGoesOn) {
  SetKernel kernel;
  kernel.own = {container("a", {sid(1), sid(1)})};
  EXPECT_EQ(
      masked(kSetCommands[1], runCommand({"getcontainers", "-f", kFilter})),
      (CommandResult{0, "container a {\n" + infoText(kSetCommands[1]) + kSid1 + ",\n}\n",
                     "ERROR: mismatch in the number of elements: expected 2, returned 1.\n"}));
}

TEST(GetContainers, MoreElementsThanWereAskedForAreRefused) {
  SetKernel kernel;
  kernel.own = {container("a", {sid(1)})};
  kernel.on(kElements, [](Body& body) {
    SetKernel::putChain(body, {sid(1)});
    body.put32(74, 0xffffffff);
    return 0;
  });
  EXPECT_EQ(runCommand({"getcontainers", "-f", kFilter}),
            (CommandResult{0, "",
                           std::string("ERROR: failed to get elements of container a: ") +
                               statusText(6) + "\n"}));
}

TEST(GetContainers, WithoutInfoNoElementIsShown) {
  SetKernel kernel;
  kernel.own = {container("a", {sid(1)})};
  kernel.fail(kInfo, 7);
  EXPECT_EQ(runCommand({"getcontainers", "-f", kFilter}),
            (CommandResult{0, "container a {\n}\n", ""}));
}

TEST(GetContainers, TheNameOfAnAddressSetIsNoContainer) {
  SetKernel kernel;
  kernel.own = {{"web", 1, {ipv4(1)}}};
  EXPECT_EQ(runCommand({"getcontainers", "-f", kFilter, "-a", "web"}),
            (CommandResult{0, "no container found\n", ""}));
}

TEST_P(SetCommand, ShowingOneSetFailsAfterAnErrorLineOnly) {
  const auto show = command.type == kAddrSetType ? GetSingleAddrSet : GetSingleContainer;
  const unsigned int members = command.type == kAddrSetType ? kAddresses : kElements;
  const dvs_port_ port = filterPort(kFilter);
  // Status and whether there was an error line, without and with statistics.
  const auto outcome = [&](bool entries) {
    FWAddrSetID_t id{};
    id.text[0] = 'a';
    MemberStatistics statistics;
    statistics.wanted = entries;
    const CommandResult result =
        captured([&] { return show(kernel.kernel().handle(), &port, id, "", statistics); });
    return std::pair(result.status, !result.err.empty());
  };
  constexpr std::pair shown(0, false);
  constexpr std::pair failed(1, true);

  kernel.own = {command.empty("a")};
  EXPECT_EQ(outcome(true), shown) << "no members";
  kernel.own = {{"a", command.otherType()}};
  EXPECT_EQ(outcome(true), shown) << "the other type";
  kernel.own = {command.filled("a")};
  EXPECT_EQ(outcome(false), shown);
  EXPECT_EQ(outcome(true), shown);

  kernel.on(kEntryStats, [](Body&) { return 0; });
  EXPECT_EQ(outcome(true), shown) << "no statistics in the reply";
  kernel.fail(kEntryStats, 7);
  EXPECT_EQ(outcome(true), failed);
  EXPECT_EQ(outcome(false), shown);

  const auto answer = kernel.answerTo(members);
  kernel.on(members, [](Body& body) {
    if (body.size > 82) SetKernel::putChain(body, {});
    body.put32(50, 0);
    return 0;
  });
  EXPECT_EQ(outcome(true), shown) << "no members in the reply";
  kernel.on(members, answer);
  kernel.fail(members, 7);
  EXPECT_EQ(outcome(false), failed);
  kernel.fail(kSize, 29);
  EXPECT_EQ(outcome(false), failed);
}

TEST(GetSingleAddrSet, TakesThePrefixOfItsCaller) {
  SetKernel kernel;
  kernel.own = {{"a", 1, {ipv4(1)}}, {"e", 1}};
  const dvs_port_ port = filterPort(kFilter);
  const auto shown = [&](const char* name) {
    FWAddrSetID_t id{};
    id.text[0] = name[0];
    return captured([&] {
      return GetSingleAddrSet(kernel.kernel().handle(), &port, id, "IPSet        : ", {});
    });
  };
  EXPECT_EQ(shown("a"), (CommandResult{0, "IPSet        : a {\nip 10.0.0.1,\n}\n", ""}));
  EXPECT_EQ(shown("e"), (CommandResult{0, "IPSet        : e {\n}\n", ""}));
  EXPECT_EQ(shown("n"), (CommandResult{1, "",
                                       std::string("ERROR: failed to get size of addrset n: ") +
                                           statusText(29) + "\n"}));
}

// --- Shared sets

namespace {

struct SharedWords {
  std::string head;
  std::string local;
};
SharedWords sharedWords(const Command& command) {
  if (command.type == 1)
    return {"addrset is shared for this filter\nglobal addrset\n", "\nlocal addrset\n"};
  return {"containers are shared for this filter\nglobal containers\n", "\nlocal containers\n"};
}

}  // namespace

TEST_P(SetCommand, SharedSetsAreShownInAPassOfTheirOwn) {
  kernel.sharing = true;
  kernel.shared = {command.empty("g")};
  kernel.own = {command.empty("l")};
  const SharedWords words = sharedWords(command);
  EXPECT_EQ(run(), (CommandResult{
                       0, words.head + command.shown("g") + words.local + command.shown("l"), ""}));
  // One message about sharing, then four of each pass.
  const auto& messages = kernel.kernel().messages();
  ASSERT_EQ(messages.size(), 9u);
  for (const std::size_t i : {1u, 4u}) {
    const auto port = messages[i].port.value();
    EXPECT_STREQ(port.identifier, kSharedFilter);
    EXPECT_EQ(std::string(port.identifier + 22, 42), std::string(42, '\0'));
    EXPECT_STREQ(port.agent, "kelpco-sfw");
    EXPECT_EQ(port.type, 7);
  }
  for (const std::size_t i : {0u, 5u, 8u}) {
    const auto port = messages[i].port.value();
    EXPECT_STREQ(port.identifier, kFilter);
    EXPECT_STREQ(port.agent, "kelpco-sfw");
    EXPECT_EQ(port.type, 7);
  }
}

TEST_P(SetCommand, APassWithoutSetsSaysSo) {
  kernel.sharing = true;
  const SharedWords words = sharedWords(command);
  EXPECT_EQ(run(), (CommandResult{0, words.head + command.none + words.local + command.none, ""}));
  EXPECT_EQ(run({"-a", "x"}),
            (CommandResult{0, words.head + command.noSet + words.local + command.noSet, ""}));
  EXPECT_EQ(run({"-s", "table", "-a", "x"}),
            (CommandResult{0, words.head + command.none + words.local + command.none, ""}));
}

TEST_P(SetCommand, TheOriginalFilterIsUsedWhenItIsAskedFor) {
  kernel.sharing = true;
  kernel.own = {command.empty("l")};
  EXPECT_EQ(run({"-o"}), (CommandResult{0, command.shown("l"), ""}));
  EXPECT_EQ(kernel.timesAsked(kShared), 1u) << "which is asked all the same";
}

TEST_P(SetCommand, AFilterThatCannotTellDoesNotShare) {
  kernel.fail(kShared, 7);
  kernel.own = {command.empty("l")};
  EXPECT_EQ(run(), (CommandResult{0, command.shown("l"), ""}));
}

TEST_P(SetCommand, AFailedCountOfTheSharedSetsEndsTheCommand) {
  kernel.sharing = true;
  kernel.fail(kCount, 21);
  EXPECT_EQ(run(),
            (CommandResult{1, sharedWords(command).head,
                           "ERROR: failed to get " + word + " count: " + statusText(21) + "\n"}));
  EXPECT_EQ(kernel.timesAsked(kCount), 1u);
}

TEST_P(SetCommand, AFailedCountOfTheLocalSetsFailsTheCommand) {
  kernel.sharing = true;
  kernel.fail(kCount, 21, 2);
  const SharedWords words = sharedWords(command);
  EXPECT_EQ(run(),
            (CommandResult{1, words.head + command.none + words.local,
                           "ERROR: failed to get " + word + " count: " + statusText(21) + "\n"}));
}

TEST_P(SetCommand, StatisticsThatTheSharedTableLacksEndTheCommand) {
  kernel.sharing = true;
  kernel.shared = {command.empty("g"), command.empty("web")};
  kernel.own = {command.empty("web")};
  const auto stats = kernel.answerTo(kTableStats);
  kernel.on(kTableStats, [stats](Body& body) {
    const auto status = stats(body);
    body.put32(12, 1);
    return status;
  });
  EXPECT_EQ(run({"-a", "web", "-s", "table"}),
            (CommandResult{
                0, sharedWords(command).head + word + " web {\nfailed to get stats\n}\n",
                std::string("ERROR: failed to find stats for ") + command.statsOf + " web\n"}));
  EXPECT_EQ(kernel.timesAsked(kTableStats), 1u);
}

TEST_P(SetCommand, ANamedSharedSetOfTheOtherTypeEndsTheCommand) {
  kernel.sharing = true;
  kernel.shared = {{"x", command.otherType()}};
  kernel.own = {command.empty("x")};
  EXPECT_EQ(run({"-a", "x"}),
            (CommandResult{0, sharedWords(command).head + "no " + word + " found\n", ""}));
}

TEST(GetAddrSets, AFilterWithoutAnAgentLooksAtTheSharedSetsOfTheDefaultOne) {
  SetKernel kernel;
  kernel.on(kShared, [](Body& body) {
    body.at[0] = 1;
    return 0;
  });
  kernel.on(kCount, [](Body&) { return 0; });
  EXPECT_EQ(runCommand({"getaddrsets", "-f", "vif-1"}).status, 0);
  const auto& messages = kernel.kernel().messages();
  ASSERT_EQ(messages.size(), 3u);
  EXPECT_STREQ(messages[1].port->identifier, kSharedFilter);
  EXPECT_STREQ(messages[1].port->agent, "kelpco-sfw");
  EXPECT_EQ(messages[1].port->type, 7);
  EXPECT_STREQ(messages[2].port->identifier, "vif-1");
  EXPECT_STREQ(messages[2].port->agent, "kelpco-sfw");
  EXPECT_EQ(messages[2].port->type, 8);
}
