// Handlers of the connections of a filter, against a scripted kernel.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DeviceShim.h"
#include "FlowBytes.h"
#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "TarnFWLog.h"
#include "TimeZone.h"
#include "tarnfw.h"

namespace {

using Body = HandlerKernel::Body;

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

const std::string kLine = " Active gre 0800 IN 1003 4 5  10.0.0.1 -> 10.0.0.2 11 22 33 44\n";

/// Has connections with the flow ids from 1 on, and keeps where pages began.
class ConnectionKernel : public HandlerKernel {
 public:
  explicit ConnectionKernel(std::uint32_t connections) : reported(connections), there(connections) {
    on(23, [this](Body& body) { return body.put32(4, reported), 0; });
    on(24, [this](Body& body) { return answerPage(body); });
    on(43, [this](Body& body) { return body.put32(0, there), 0; });
  }
  std::uint32_t reported;  // the number that it counts
  std::uint32_t there;     // those that it has
  std::vector<std::uint64_t> cursors;

 private:
  int answerPage(Body& body) {
    std::uint64_t cursor = 0;
    for (std::size_t i = 0; i < 8; ++i) cursor = cursor << 8 | body.at[4 + i];
    cursors.push_back(cursor);
    EXPECT_EQ(body.word(12), 64u);
    EXPECT_EQ(body.word(28), 16096u);
    std::uint32_t returned = 0;
    for (std::uint64_t id = std::max<std::uint64_t>(cursor, 1); id <= there && returned < 64;
         ++id) {
      Bytes flow = ipv4Flow(47);
      for (std::size_t i = 0; i < 8; ++i)
        flow.at(3 + i, {static_cast<int>(id >> (56 - 8 * i) & 0xff)});
      body.put(32 + 251 * std::size_t{returned++}, flow);
    }
    body.put32(16, returned);
    return 0;
  }
};

std::string linesOf(std::uint64_t first, std::uint64_t last) {
  std::string lines;
  for (std::uint64_t id = first; id <= last; ++id) {
    char text[20];
    std::snprintf(text, sizeof text, "%llx", static_cast<unsigned long long>(id));
    lines += text + kLine;
  }
  return lines;
}

CommandResult show(const std::vector<std::string>& options = {}) {
  std::vector<std::string> words{"getconnections", "-f", kFilter};
  words.insert(words.end(), options.begin(), options.end());
  return runCommand(words);
}

}  // namespace

TEST(GetConnections, PrintsEveryPageFromWhereTheLastOneEnded) {
  ConnectionKernel kernel(130);
  EXPECT_EQ(show(), (CommandResult{0, linesOf(1, 130), ""}));
  EXPECT_EQ(kernel.cursors, (std::vector<std::uint64_t>{0, 65, 129}));
}

TEST(GetConnections, StopsAsSoonAsItHasSeenTheCount) {
  ConnectionKernel kernel(64);
  EXPECT_EQ(show(), (CommandResult{0, linesOf(1, 64), ""}));
  EXPECT_EQ(kernel.timesAsked(24), 1u);
}

TEST(GetConnections, APageWithoutAnyEndsThePass) {
  ConnectionKernel kernel(0);
  kernel.reported = 5;
  EXPECT_EQ(show(), (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.timesAsked(24), 1u);
}

TEST(GetConnections, WithoutAnyItWaitsTwoSeconds) {
  ConnectionKernel kernel(0);
  Sleeps::clear();
  EXPECT_EQ(show(), (CommandResult{0, "No active connections\n", ""}));
  EXPECT_EQ(Sleeps::seen(), std::vector<unsigned int>{2});
}

TEST(GetConnections, RepeatsAfterItsInterval) {
  ConnectionKernel kernel(1);
  kernel.fail(23, 21, 3);
  Sleeps::clear();
  const std::string ended = linesOf(1, 1) + linesOf(1, 1) +
                            "Failed to get active connection count : switch port not found\n";
  EXPECT_EQ(show({"-t", "7"}), (CommandResult{1, ended, ""}));
  EXPECT_EQ(Sleeps::seen(), (std::vector<unsigned int>{7, 7}));

  ConnectionKernel again(1);
  again.fail(23, 21, 3);
  Sleeps::clear();
  EXPECT_EQ(show({"-t0"}), (CommandResult{1, ended, ""}));
  EXPECT_TRUE(Sleeps::seen().empty());
}

TEST(GetConnections, WaitsForConnectionsAsLongAsItRepeats) {
  ConnectionKernel kernel(0);
  kernel.fail(23, 21, 3);
  Sleeps::clear();
  const std::string none = "No active connections\n";
  EXPECT_EQ(
      show({"-t", "7"}),
      (CommandResult{
          1, none + none + "Failed to get active connection count : switch port not found\n", ""}));
  EXPECT_EQ(Sleeps::seen(), (std::vector<unsigned int>{2, 2})) << "the interval is not waited then";
}

TEST(GetConnections, WaitsItsIntervalAfterAPassWithoutAny) {
  ConnectionKernel kernel(0);
  kernel.reported = 5;
  kernel.fail(23, 21, 2);
  Sleeps::clear();
  EXPECT_EQ(
      show({"-t", "7"}),
      (CommandResult{1, "Failed to get active connection count : switch port not found\n", ""}));
  EXPECT_EQ(Sleeps::seen(), std::vector<unsigned int>{7});
}

TEST(GetConnections, RefusesAnIntervalThatIsNone) {
  ConnectionKernel kernel(1);
  for (const char* const text : {"", "x", "1s", "-1", "2147483648"}) {
    EXPECT_EQ(
        show({"-t", text}),
        (CommandResult{1, "", std::string("ERROR: Invalid refresh interval ") + text + "\n"}));
  }
  EXPECT_TRUE(kernel.asked().empty());
}

TEST(GetConnections, ReportsWhatTheKernelRefusesOnStandardOutput) {
  ConnectionKernel kernel(65);
  kernel.fail(24, 21, 2);
  EXPECT_EQ(
      show(),
      (CommandResult{
          1, linesOf(1, 64) + "Failed to get active connections : switch port not found\n", ""}));
}

TEST(GetConnections, ReportsThatThereIsNoMemory) {
  ConnectionKernel kernel(1);
  const auto count = kernel.answerTo(23);
  kernel.on(23, [&](Body& body) {
    // The next one is that of the page.
    DeviceShim::failNextCalloc();
    return count(body);
  });
  EXPECT_EQ(show(), (CommandResult{1, "", "ERROR: Failed to allocate memeory for records\n"}));
}

TEST(GetConnections, PrintsTimesWhenItIsVerbose) {
  const LogCapture log;
  const TimeZone zone("UTC0");
  ConnectionKernel kernel(1);
  std::string line = linesOf(1, 1);
  line.pop_back();
  EXPECT_EQ(show({"-v"}),
            (CommandResult{0,
                           "Setting verbose level to : 1\n" + line +
                               " Start: Tue, 14 Nov 2023 22:13:20 +0000, End: Tue, 14 "
                               "Nov 2023 22:14:20 +0000\n",
                           ""}));
}

TEST(GetConnections, SetsAndPrintsItsLevelBeforeItMissesAFilter) {
  for (const auto& [word, words] : std::vector<std::pair<std::string, std::string>>{
           {"getconnections", "Setting verbose level to : 3\n"},
           {"getconncount", "Setting verbose level : 3"}}) {
    const LogCapture log;
    ConnectionKernel kernel(1);
    const std::string usage = runCommand({word, "-h"}).out;
    EXPECT_EQ(runCommand({word, "-v3"}),
              (CommandResult{1, words + usage, "ERROR: filter is missing.\n"}));
    unsigned int level = 0;
    FW_GetLibVerboseLevel(18, &level);
    EXPECT_EQ(level, 3u) << "that of the last component";
    EXPECT_TRUE(kernel.asked().empty());
  }
}

TEST(GetConnections, ACountThatLiesIsBoundedByThePage) {
  const LogCapture log;
  ConnectionKernel kernel(64);
  const auto page = kernel.answerTo(24);
  kernel.on(24, [&](Body& body) {
    page(body);
    body.put32(16, ~0u);
    return 0;
  });
  EXPECT_EQ(show(), (CommandResult{0, linesOf(1, 64), ""}));
}

TEST(GetConnections, TheLastFlowIdOfAllEndsThePass) {
  ConnectionKernel kernel(1);
  kernel.reported = 9;
  kernel.on(24, [&](Body& body) {
    Bytes flow = ipv4Flow(47);
    flow.at(3, {255, 255, 255, 255, 255, 255, 255, 255});
    body.put(32, flow);
    body.put32(16, 1);
    return 0;
  });
  EXPECT_EQ(show(), (CommandResult{0, "ffffffffffffffff" + kLine, ""}));
}

TEST(GetConnCount, PrintsTheCount) {
  ConnectionKernel kernel(130);
  EXPECT_EQ(runCommand({"getconncount", "-f", kFilter}),
            (CommandResult{0, "Active connection count : 130\n", ""}));
  kernel.reported = ~0u;
  EXPECT_EQ(runCommand({"getconncount", "-f", kFilter}),
            (CommandResult{0, "Active connection count : -1\n", ""}));
  kernel.fail(23, 21);
  EXPECT_EQ(
      runCommand({"getconncount", "-f", kFilter}),
      (CommandResult{1, "Failed to get active connection count : switch port not found\n", ""}));
}

TEST(GetConnCount, ItsLevelHasNoLineEnd) {
  const LogCapture log;
  ConnectionKernel kernel(2);
  EXPECT_EQ(runCommand({"getconncount", "-v1", "-v2", "-f", kFilter}),
            (CommandResult{0, "Setting verbose level : 3Active connection count : 2\n", ""}));
}

TEST(ClrConnection, PrintsHowManyThereWere) {
  ConnectionKernel kernel(130);
  EXPECT_EQ(runCommand({"clrconnection", "-Override", "-f", kFilter}),
            (CommandResult{0, "Cleared connection count : 130\n", ""}));
  kernel.fail(43, 21);
  EXPECT_EQ(runCommand({"clrconnection", "-Override", "--filter", kFilter}),
            (CommandResult{1, "", "ERROR: failed to clear connection: switch port not found\n"}));
}

TEST(ClrConnection, TakesItsPrinterAway) {
  ConnectionKernel kernel(3);
  for (const TarnFirewall::FWStatus_t status : {0u, 21u}) {
    kernel.on(43, [&](Body&) { return status; });
    runCommand({"clrconnection", "-Override", "-f", kFilter});
    EXPECT_EQ(TarnFirewall::g_tarnfw_pretty_printing, nullptr) << status;
  }
}

TEST(ClrConnection, SaysItsLevelAndFilterInItsOwnWords) {
  const LogCapture log;
  ConnectionKernel kernel(3);
  EXPECT_EQ(runCommand({"clrconnection", "-Override", "--verbose", "1", "-f", kFilter}),
            (CommandResult{0,
                           std::string("verbose level : 1\nweirgate name : ") + kFilter +
                               "\nCleared connection count : 3\n",
                           ""}));
}

TEST(ClrConnection, IsGuarded) {
  ConnectionKernel kernel(3);
  EXPECT_EQ(runCommand({"clrconnection", "-f", kFilter}).status, 1);
  EXPECT_TRUE(kernel.asked().empty());
}
