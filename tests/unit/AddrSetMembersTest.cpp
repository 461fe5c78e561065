// getaddrsets and getcontainers: members of sets, and their statistics.

#include <gtest/gtest.h>

#include "AddrSetDisplay.h"
#include "DeviceShim.h"
#include "SetCommands.h"

using namespace SetCommands;

using SetMembers = SetCommand;
INSTANTIATE_TEST_SUITE_P(Both, SetMembers, testing::ValuesIn(kSetCommands), nameOf);

// --- Statistics

TEST_P(SetMembers, EntryStatisticsHaveAHeaderAndTwoLinesForEachMember) {
  kernel.own = {command.filled("a")};
  const CommandResult expected{
      0, kHeader + word + " a {\n" + infoText(command) + entryText(memberText(command)) + "}\n",
      ""};
  EXPECT_EQ(masked(command, run({"-s", "entry"})), expected);
  EXPECT_EQ(masked(command, run({"-s", "entry", "-a", "a"})), expected);
  EXPECT_EQ(kernel.clears, (std::vector<std::uint32_t>{0, 0}));
  EXPECT_EQ(kernel.timesAsked(kTableStats), 0u);
}

TEST_P(SetMembers, TheHeaderGoesWithTheFirstNameOnly) {
  kernel.own = {command.filled("a"), command.filled("b")};
  CommandResult result = run({"-s", "entry"});
  EXPECT_EQ(result.out.find(kHeader), 0u);
  EXPECT_EQ(result.out.find(kHeader, 1), std::string::npos);

  kernel.own.insert(kernel.own.begin(), {"x", command.otherType()});
  result = run({"-s", "entry"});
  EXPECT_EQ(result.out.find(kHeader), std::string::npos) << "the first is of the other type";
}

TEST_P(SetMembers, AllAreBothStatistics) {
  kernel.own = {command.filled("a")};
  EXPECT_EQ(masked(command, run({"-s", "all"})),
            (CommandResult{0,
                           tableText("a", 0) + kHeader + word + " a {\n" + infoText(command) +
                               entryText(memberText(command)) + "}\n",
                           ""}));
}

TEST_P(SetMembers, LongerWordsCountAsTheWordsThatTheyBeginWith) {
  kernel.own = {command.filled("a")};
  for (const char* known : {"table", "entry", "all"})
    EXPECT_EQ(run({"-s", std::string(known) + "s"}), run({"-s", known}));
  for (const char* other : {"tabl", "Table", "", "clears", "x"})
    EXPECT_EQ(run({"-s", other}), run()) << other;
}

TEST_P(SetMembers, ClearAloneListsAsUsual) {
  kernel.own = {command.filled("a")};
  EXPECT_EQ(run({"-s", "clear"}), run());
  EXPECT_TRUE(kernel.clears.empty()) << "no statistics are asked for";
  EXPECT_EQ(kernel.timesAsked(kTableStats), 0u);
}

TEST_P(SetMembers, ClearGoesWithTheEntryStatistics) {
  kernel.own = {command.filled("a")};
  run({"-s", "entry", "-s", "clear"});
  run({"-s", "entry", "-s", "clears"});
  EXPECT_EQ(kernel.clears, (std::vector<std::uint32_t>{1, 0}));
}

TEST_P(SetMembers, SaysThatTheEntryStatisticsFailed) {
  kernel.own = {command.filled("a")};
  kernel.fail(kEntryStats, 7);
  EXPECT_EQ(run({"-s", "entry"}),
            (CommandResult{
                0, "", "ERROR: failed to get address of " + word + " a: " + statusText(7) + "\n"}));
}

TEST_P(SetMembers, NoEntryStatisticsCloseABraceThatWasNotOpened) {
  kernel.own = {command.filled("a")};
  kernel.on(kEntryStats, [](Body&) { return 0; });
  EXPECT_EQ(run({"-s", "entry"}),
            (CommandResult{0, "there is no stats in " + word + " a.\n}\n", ""}));
}

TEST_P(SetMembers, FewerEntryStatisticsThanMembersAreAnError) {
  kernel.own = {
      {"a", command.type, {command.filled("").members[0], command.type == 1 ? ipv4(2) : sid(2)}}};
  kernel.on(kEntryStats, [](Body& body) {
    body.put32(54, 1);
    return 0;
  });
  EXPECT_EQ(run({"-s", "entry"}),
            (CommandResult{0, "", "ERROR: different size of " + word + " a detected\n"}));
}

TEST_P(SetMembers, MoreEntryStatisticsThanMembersAreAnError) {
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

TEST_P(SetMembers, SaysThatThereIsNoMemoryForTheEntryStatistics) {
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

TEST_P(SetMembers, SaysThatThereIsNoMemoryForTheMembers) {
  kernel.own = {command.filled("a")};
  const auto size = kernel.answerTo(kSize);
  kernel.on(kSize, [size, second = false](Body& body) mutable {
    if (second) DeviceShim::failNextCalloc();
    second = true;
    return size(body);
  });
  EXPECT_EQ(run(), (CommandResult{0, "", "ERROR: no memory for " + word + " a\n"}));
}

TEST_P(SetMembers, AMemberCountOfAllOnesIsRefused) {
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

TEST_P(SetMembers, SaysThatTheMembersFailed) {
  kernel.own = {command.filled("a")};
  const bool sets = command.type == 1;
  kernel.fail(sets ? kAddresses : kElements, 7);
  EXPECT_EQ(run(),
            (CommandResult{0, "",
                           std::string("ERROR: failed to get ") + (sets ? "address" : "elements") +
                               " of " + word + " a: " + statusText(7) + "\n"}));
}

TEST_P(SetMembers, NoMembersInTheReplyCloseABraceThatWasNotOpened) {
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

TEST_P(SetMembers, ASetThatChangesItsTypeIsNotShown) {
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

TEST_P(SetMembers, ShowingOneSetFailsAfterAnErrorLineOnly) {
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
