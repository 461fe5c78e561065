// getaddrsets and getcontainers: the sets that the filters of an agent share.

#include <gtest/gtest.h>

#include "SetCommands.h"

using namespace SetCommands;

using SharedSetCommand = SetCommand;
INSTANTIATE_TEST_SUITE_P(Both, SharedSetCommand, testing::ValuesIn(kSetCommands), nameOf);

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

TEST_P(SharedSetCommand, SharedSetsAreShownInAPassOfTheirOwn) {
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

TEST_P(SharedSetCommand, APassWithoutSetsSaysSo) {
  kernel.sharing = true;
  const SharedWords words = sharedWords(command);
  EXPECT_EQ(run(), (CommandResult{0, words.head + command.none + words.local + command.none, ""}));
  EXPECT_EQ(run({"-a", "x"}),
            (CommandResult{0, words.head + command.noSet + words.local + command.noSet, ""}));
  EXPECT_EQ(run({"-s", "table", "-a", "x"}),
            (CommandResult{0, words.head + command.none + words.local + command.none, ""}));
}

TEST_P(SharedSetCommand, TheOriginalFilterIsUsedWhenItIsAskedFor) {
  kernel.sharing = true;
  kernel.own = {command.empty("l")};
  EXPECT_EQ(run({"-o"}), (CommandResult{0, command.shown("l"), ""}));
  EXPECT_EQ(kernel.timesAsked(kShared), 1u) << "which is asked all the same";
}

TEST_P(SharedSetCommand, AFilterThatCannotTellDoesNotShare) {
  kernel.fail(kShared, 7);
  kernel.own = {command.empty("l")};
  EXPECT_EQ(run(), (CommandResult{0, command.shown("l"), ""}));
}

TEST_P(SharedSetCommand, AFailedCountOfTheSharedSetsEndsTheCommand) {
  kernel.sharing = true;
  kernel.fail(kCount, 21);
  EXPECT_EQ(run(),
            (CommandResult{1, sharedWords(command).head,
                           "ERROR: failed to get " + word + " count: " + statusText(21) + "\n"}));
  EXPECT_EQ(kernel.timesAsked(kCount), 1u);
}

TEST_P(SharedSetCommand, AFailedCountOfTheLocalSetsFailsTheCommand) {
  kernel.sharing = true;
  kernel.fail(kCount, 21, 2);
  const SharedWords words = sharedWords(command);
  EXPECT_EQ(run(),
            (CommandResult{1, words.head + command.none + words.local,
                           "ERROR: failed to get " + word + " count: " + statusText(21) + "\n"}));
}

TEST_P(SharedSetCommand, StatisticsThatTheSharedTableLacksEndTheCommand) {
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

TEST_P(SharedSetCommand, ANamedSharedSetOfTheOtherTypeEndsTheCommand) {
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
