// getfilterstat and clearfilterstat against a scripted kernel.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "DirectKernel.h"
#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

using Body = HandlerKernel::Body;

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";
const std::string kHeading =
    "PACKETS                       IN                OUT\n"
    "-------                       --                ---\n";

/// Numbers of the commands.
enum : unsigned int { kGet = 29, kClear = 30 };

/// A first and a last row that counted something, and one that counted only outwards.
class StatisticsKernel : public HandlerKernel {
 public:
  StatisticsKernel() {
    on(kGet, [this](Body& body) {
      EXPECT_EQ(body.size, 1642u);
      agent = std::string(body.port.agent);
      body.putText(2, "first");
      body.put64(2 + 25, 11);
      body.put64(2 + 33, 12);
      body.putText(2 + 41, "none");
      body.putText(2 + 2 * 41, "out only");
      body.put64(2 + 2 * 41 + 33, 1);
      body.putText(2 + 39 * 41, std::string(25, 'n'));
      body.put64(2 + 39 * 41 + 25, ~0ull);
      return 0;
    });
    on(kClear, [](Body& body) {
      EXPECT_EQ(body.size, 1642u);
      return 0;
    });
  }
  std::string agent{};
};

const std::string kTable = kHeading +
                           "first                         11                 12\n"
                           "out only                       0                  1\n" +
                           std::string(25, 'n') + "18446744073709551615                  0\n";

CommandResult run(const std::string& command, std::vector<std::string> options) {
  std::vector<std::string> words{command};
  if (command == "clearfilterstat") words.emplace_back("-Override");
  words.insert(words.end(), options.begin(), options.end());
  return runCommand(words);
}

}  // namespace

TEST(GetFilterStat, PrintsTheRowsThatCountedSomething) {
  const StatisticsKernel kernel;
  EXPECT_EQ(run("getfilterstat", {"-f", kFilter}), (CommandResult{0, kTable, ""}));
  EXPECT_EQ(kernel.asked(), (std::vector<unsigned int>{kGet}));
}

TEST(GetFilterStat, ClearsAfterItHasPrinted) {
  for (const char* const option : {"-z", "--zero=1"}) {
    const StatisticsKernel kernel;
    EXPECT_EQ(run("getfilterstat", {"-f", kFilter, option}), (CommandResult{0, kTable, ""}));
    EXPECT_EQ(kernel.asked(), (std::vector<unsigned int>{kGet, kClear}));
  }
}

TEST(GetFilterStat, TheLongWordNeedsAnArgument) {
  const StatisticsKernel kernel;
  const CommandResult result = run("getfilterstat", {"-f", kFilter, "--zero"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "getfilterstat: option '--zero' requires an argument\n");
  EXPECT_TRUE(kernel.asked().empty());
  // What follows it is taken for the argument.
  EXPECT_EQ(run("getfilterstat", {"--zero", "-f"}),
            (CommandResult{1, "", "ERROR: filter is missing.\n"}));
}

TEST(GetFilterStat, TheAgentAlwaysComesFromTheBuffer) {
  const LogCapture log;
  const StatisticsKernel kernel;
  EXPECT_EQ(run("getfilterstat", {"-f", "nic-1-eth0-an-agent.of.mine.2", "-v2"}).out,
            "verbose level : 2\nweirgate agent: an-agent.of.mine\n" + kTable);
  EXPECT_EQ(kernel.agent, "an-agent.of.mine");
  run("getfilterstat", {"-f", "nic-1"});
  EXPECT_EQ(kernel.agent, "kelpco-sfw");
  run("getfilterstat", {"-f", "shared-addrset-filter-"});
  EXPECT_EQ(kernel.agent, "");
}

TEST(GetFilterStat, ReportsWhatFails) {
  StatisticsKernel kernel;
  kernel.fail(kClear, 21);
  EXPECT_EQ(run("getfilterstat", {"-f", kFilter, "-z"}),
            (CommandResult{1, kTable, "ERROR: Failed to clear filter stat\n"}));
  kernel.fail(kGet, 7);
  EXPECT_EQ(run("getfilterstat", {"-f", kFilter, "-z"}),
            (CommandResult{1, "", "ERROR: Failed to get filter stat\n"}));
  EXPECT_EQ(kernel.timesAsked(kClear), 1u);
}

TEST(GetFilterStat, ARowOfAnyBytesEndsWithItsField) {
  StatisticsKernel kernel;
  kernel.on(kGet, [](Body& body) {
    std::fill_n(body.at, body.size, std::uint8_t{0xff});
    return 0;
  });
  std::string row(25, '\xff');
  row += "18446744073709551615";
  std::string expected = kHeading;
  for (int i = 0; i < 40; ++i) expected += row + "18446744073709551615\n";
  EXPECT_EQ(run("getfilterstat", {"-f", kFilter}), (CommandResult{0, expected, ""}));
}

TEST(ClearFilterStat, SendsTheNameOfTheFilter) {
  DirectKernel kernel;
  kernel.on(35, [](std::uint8_t*) { return 0u; });
  EXPECT_EQ(run("clearfilterstat", {"-f", kFilter}), (CommandResult{0, "", ""}));
  const std::string longest(99, 'f');
  EXPECT_EQ(run("clearfilterstat", {"-f", longest}), (CommandResult{0, "", ""}));
  ASSERT_EQ(kernel.requests().size(), 2u);
  EXPECT_EQ(kernel.requests()[0].number, 35u);
  EXPECT_EQ(kernel.requests()[0].status, 0u);
  EXPECT_EQ(kernel.requests()[0].body, Bytes(100).text(0, kFilter));
  EXPECT_EQ(kernel.requests()[1].body, Bytes(100).text(0, longest));
}

TEST(ClearFilterStat, SaysWhatItDoesBeforeItAsksAndSucceedsInAnyCase) {
  const LogCapture log;
  DirectKernel kernel;
  kernel.on(35, [](std::uint8_t*) { return 7u; });
  EXPECT_EQ(run("clearfilterstat", {"-f", kFilter}), (CommandResult{0, "", ""}));
  kernel.fail(35, ENOENT);
  EXPECT_EQ(run("clearfilterstat", {"-v", "-f", kFilter}),
            (CommandResult{0,
                           "verbose level : 1\nweirgate agent: kelpco-sfw\n"
                           "DEBUG: Clear stats for filter nic-1002672-eth0-kelpco-sfw.2\n",
                           ""}));
}

TEST(ClearFilterStat, SendsNothingWithoutAFilter) {
  const DirectKernel kernel;
  EXPECT_EQ(run("clearfilterstat", {"-v"}), (CommandResult{1, "", "ERROR: filter is missing.\n"}));
  EXPECT_EQ(run("clearfilterstat", {"-m", "cmd", "-f", kFilter}).status, 1);
  EXPECT_TRUE(kernel.requests().empty());
}
