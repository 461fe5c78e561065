// gettimeout and settimeout against a scripted kernel.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

using Body = HandlerKernel::Body;

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

/// Numbers of the commands.
enum : unsigned int { kSet = 41, kGet = 42 };

/// The value of each timeout is 100 and its number.
class TimeoutKernel : public HandlerKernel {
 public:
  TimeoutKernel() {
    on(kGet, [this](Body& body) {
      EXPECT_EQ(body.size, 112u);
      marks.assign(body.at + 88, body.at + 110);
      for (std::size_t id = 0; id < 22; ++id)
        body.put32(4 * id, 100 + static_cast<std::uint32_t>(id));
      return 0;
    });
    on(kSet, [this](Body& body) {
      EXPECT_EQ(body.size, 112u);
      marks.assign(body.at + 88, body.at + 110);
      values.clear();
      for (std::size_t id = 0; id < 22; ++id) values.push_back(body.word(4 * id));
      return 0;
    });
  }

  /// Numbers of those that were marked.
  std::vector<int> marked() const {
    std::vector<int> ids;
    for (std::size_t id = 0; id < marks.size(); ++id)
      if (marks[id] != 0) ids.push_back(static_cast<int>(id));
    return ids;
  }

  std::vector<std::uint8_t> marks{};
  std::vector<std::uint32_t> values{};
};

CommandResult get(std::vector<std::string> options) {
  options.insert(options.begin(), {"gettimeout", "-f", kFilter});
  return runCommand(options);
}
CommandResult set(std::vector<std::string> options) {
  options.insert(options.begin(), {"settimeout", "-Override", "-f", kFilter});
  return runCommand(options);
}

}  // namespace

TEST(GetTimeout, PrintsAllWhenNoneIsNamed) {
  const TimeoutKernel kernel;
  EXPECT_EQ(get({}), (CommandResult{0,
                                    "Connection Timeouts:\n"
                                    "   dfw.tcp.first_packet  : 100\n"
                                    "   dfw.tcp.opening       : 101\n"
                                    "   dfw.tcp.established   : 102\n"
                                    "   dfw.tcp.closing       : 103\n"
                                    "   dfw.tcp.fin_wait      : 104\n"
                                    "   dfw.tcp.closed        : 105\n"
                                    "   dfw.udp.first_packet  : 106\n"
                                    "   dfw.udp.single        : 107\n"
                                    "   dfw.udp.multiple      : 108\n"
                                    "   dfw.icmp.first_packet : 109\n"
                                    "   dfw.icmp.error_reply  : 110\n"
                                    "   dfw.other.first_packet: 111\n"
                                    "   dfw.other.single      : 112\n"
                                    "   dfw.other.multiple    : 113\n"
                                    "   dfw.ip.frag           : 114\n"
                                    "   dfw.interval          : 115\n"
                                    "   dfw.adaptive_start    : 116\n"
                                    "   dfw.adaptive_end      : 117\n"
                                    "   dfw.src_node          : 118\n"
                                    "   dfw.ts_diff           : 119\n"
                                    "   dfw.invalid_state     : 120\n"
                                    "   dfw.invalid_l7        : 121\n",
                                    ""}));
  EXPECT_EQ(kernel.marked().size(), 22u);
}

TEST(GetTimeout, AsksForThoseThatAreNamed) {
  const TimeoutKernel kernel;
  const std::string lines =
      "Connection Timeouts:\n"
      "   dfw.tcp.opening       : 101\n"
      "   dfw.ip.frag           : 114\n";
  EXPECT_EQ(get({"-t", "dfw.ip.frag", "--timeout=DFW.TCP.Opening", "-tdfw.ip.frag"}),
            (CommandResult{0, lines, ""}));
  EXPECT_EQ(kernel.marked(), (std::vector<int>{1, 14}));
}

TEST(GetTimeout, SaysWhatIsWrong) {
  TimeoutKernel kernel;
  for (const char* const name : {"", "dfw", "dfw.ip.frag ", "%s%n"}) {
    EXPECT_EQ(get({"-t", name}),
              (CommandResult{1, "", std::string("ERROR: invalid timeout name: ") + name + "\n"}));
  }
  EXPECT_TRUE(kernel.asked().empty());
  kernel.fail(kGet, 21);
  EXPECT_EQ(get({}),
            (CommandResult{
                1, "", std::string("ERROR: Failed to get timeout for filter ") + kFilter + "\n"}));
  EXPECT_EQ(get({"-m", "io"}).status, 1) << "there is no such option";
}

TEST(GetTimeout, PrintsWhatTheKernelMarked) {
  TimeoutKernel kernel;
  const auto answer = kernel.answerTo(kGet);
  kernel.on(kGet, [&](Body& body) {
    answer(body);
    for (std::size_t id = 0; id < 22; ++id) body.at[88 + id] = id == 3 ? 255 : 0;
    body.put32(12, 0xffffffff);
    return 0;
  });
  EXPECT_EQ(get({}), (CommandResult{0,
                                    "Connection Timeouts:\n"
                                    "   dfw.tcp.closing       : 4294967295\n",
                                    ""}));
}

TEST(SetTimeout, CutsNameAndValueApart) {
  for (const char* const text : {"dfw.tcp.opening=30", "dfw.tcp.opening 30", "dfw.tcp.opening\t30",
                                 " \t=DFW.tcp.opening = 30 ", "dfw.tcp.opening==+30=more"}) {
    const TimeoutKernel kernel;
    EXPECT_EQ(set({"-t", text}), (CommandResult{0, "", ""})) << text;
    EXPECT_EQ(kernel.marked(), std::vector<int>{1}) << text;
    EXPECT_EQ(kernel.values[1], 30u) << text;
    EXPECT_EQ(kernel.values[0], 0u) << text;
  }
}

TEST(SetTimeout, SetsSeveralAtOnce) {
  const TimeoutKernel kernel;
  EXPECT_EQ(
      set({"-t", "dfw.ts_diff=0", "--timeout", "dfw.interval=4294967295", "-t", "dfw.ts_diff=9"}),
      (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.marked(), (std::vector<int>{15, 19}));
  EXPECT_EQ(kernel.values[15], 4294967295u);
  EXPECT_EQ(kernel.values[19], 9u) << "the last one counts";
}

TEST(SetTimeout, WithoutASettingNothingIsMarked) {
  const TimeoutKernel kernel;
  EXPECT_EQ(set({}), (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.marked(), std::vector<int>{});
}

TEST(SetTimeout, RefusesWhatIsNoSetting) {
  const std::vector<std::pair<const char*, const char*>> rows = {
      {"", "ERROR: cannot find timeout name in \n"},
      {" =\t", "ERROR: cannot find timeout name in  =\t\n"},
      {"dfw=1", "ERROR: invalid timeout name dfw\n"},
      {"30", "ERROR: invalid timeout name 30\n"},
      {"dfw.ts_diff", "ERROR: cannot find timeout value in dfw.ts_diff\n"},
      {"dfw.ts_diff = ", "ERROR: cannot find timeout value in dfw.ts_diff = \n"},
      {"dfw.ts_diff=-1", "ERROR: invalid timeout value: -1\n"},
      {"dfw.ts_diff=1s", "ERROR: invalid timeout value: 1s\n"},
      {"dfw.ts_diff=0x10", "ERROR: invalid timeout value: 0x10\n"},
      {"dfw.ts_diff=4294967296", "ERROR: invalid timeout value: 4294967296\n"},
      {"dfw.ts_diff=99999999999999999999", "ERROR: invalid timeout value: 99999999999999999999\n"},
  };
  const TimeoutKernel kernel;
  for (const auto& [text, line] : rows)
    EXPECT_EQ(set({"-t", text}), (CommandResult{1, "", line})) << text;
  EXPECT_TRUE(kernel.asked().empty());
}

TEST(SetTimeout, ReportsHowItWent) {
  const LogCapture log;
  TimeoutKernel kernel;
  EXPECT_EQ(set({"-v", "-t", "dfw.ts_diff=1"}),
            (CommandResult{0,
                           std::string("verbose level : 1\nweirgate agent: kelpco-sfw\n"
                                       "DEBUG: Timeout setting was changed for filter ") +
                               kFilter + ".\n",
                           ""}));
  kernel.fail(kSet, 21);
  EXPECT_EQ(set({"-t", "dfw.ts_diff=1"}),
            (CommandResult{1, "",
                           std::string("ERROR: Failed to change timeout setting for filter ") +
                               kFilter + ".\n"}));
}
