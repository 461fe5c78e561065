// getfloodstat and setfloodconfig against a scripted kernel.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DeviceShim.h"
#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

using Body = HandlerKernel::Body;

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";
constexpr std::uint32_t kKeep = 0xffffffff;

/// Numbers of the commands.
enum : unsigned int { kSet = 78, kGet = 79 };

/// Answers with everything set, each field with a number of its own, and keeps what it was sent.
class FloodKernel : public HandlerKernel {
 public:
  FloodKernel() {
    on(kGet, [this](Body& body) {
      EXPECT_EQ(body.size, 12424u);
      zero = body.word(0);
      rowSize = body.word(128);
      rowCount = body.word(132);
      for (std::size_t at = 4; at < 64; at += 4)
        body.put32(at, static_cast<std::uint32_t>(1000 + at));
      for (std::size_t at = 64; at < 128; at += 8) body.put64(at, (1ull << 40) + at);
      body.put32(132, rows);
      body.put32(136, 1);
      body.put64(136 + 24 + 8, 2);
      body.put64(136 + 72 + 16, 3);
      if (change) change(body);
      return 0;
    });
    on(kSet, [this](Body& body) {
      EXPECT_EQ(body.size, 36u);
      for (std::size_t at = 0; at < 36; at += 4) sent.push_back(body.word(at));
      return 0;
    });
  }

  std::uint32_t zero = 9, rowSize = 9, rowCount = 9;
  std::uint32_t rows = 0;
  std::function<void(Body&)> change{};
  std::vector<std::uint32_t> sent{};
};

CommandResult get(std::vector<std::string> options) {
  options.insert(options.begin(), {"getfloodstat", "-f", kFilter});
  return runCommand(options);
}
CommandResult set(std::vector<std::string> options) {
  options.insert(options.begin(), {"setfloodconfig", "-f", kFilter});
  return runCommand(options);
}

const char kFlows[] =
    "UDP:\n"
    "    Flood Protection        : enabled\n"
    "    Active UDP Flows        = 1008\n"
    "    Active UDP Flow Limit   = 1004\n"
    "    UDP Flows Denied        = 1099511627856\n"
    "ICMP:\n"
    "    Flood Protection        : enabled\n"
    "    Active ICMP Flows       = 1016\n"
    "    Active ICMP Flow Limit  = 1012\n"
    "    ICMP Flows Denied       = 1099511627864\n"
    "OTHER:\n"
    "    Flood Protection        : enabled\n"
    "    Active OTHER Flows      = 1032\n"
    "    Active OTHER Flow Limit = 1028\n"
    "    OTHER Flows Denied      = 1099511627880\n"
    "TCP Half-open:\n"
    "    Flood Protection        : enabled\n"
    "    Active TCP Flows        = 1024\n"
    "    Active TCP Flow Limit   = 1020\n"
    "    TCP Flows Denied        = 1099511627872\n"
    "    TCP Syncache            : enabled, 1040 x 1044\n"
    "                            : inuse = 1056, purged = 1099511627840, notfound = "
    "1099511627848\n"
    "    RST Spoofing            : enabled, 1099511627896 sent\n";

}  // namespace

TEST(GetFloodStat, PrintsEachFieldInItsPlace) {
  const FloodKernel kernel;
  EXPECT_EQ(get({}), (CommandResult{0, std::string(kFlows) + "\n", ""}));
  EXPECT_EQ(kernel.zero, 0u);
  EXPECT_EQ(kernel.rowSize, 0u);
  EXPECT_EQ(kernel.rowCount, 0u);
}

TEST(GetFloodStat, WithoutALimitOnlyTheActiveFlowsArePrinted) {
  FloodKernel kernel;
  kernel.change = [](Body& body) {
    for (const std::size_t at : {4u, 12u, 20u, 28u, 36u}) body.put32(at, 0);
  };
  EXPECT_EQ(get({}), (CommandResult{0,
                                    "UDP:\n"
                                    "    Flood Protection        : disabled\n"
                                    "    Active UDP Flows        = 1008\n"
                                    "ICMP:\n"
                                    "    Flood Protection        : disabled\n"
                                    "    Active ICMP Flows       = 1016\n"
                                    "OTHER:\n"
                                    "    Flood Protection        : disabled\n"
                                    "    Active OTHER Flows      = 1032\n"
                                    "TCP Half-open:\n"
                                    "    Flood Protection        : disabled\n"
                                    "    Active TCP Flows        = 1024\n"
                                    "    TCP Syncache            : disabled\n"
                                    "\n",
                                    ""}));
}

TEST(GetFloodStat, RstSpoofingIsPrintedWithTheSyncacheOnly) {
  FloodKernel kernel;
  kernel.change = [](Body& body) { body.put32(52, 0); };
  const std::string out = get({}).out;
  EXPECT_NE(out.find("    RST Spoofing            : disabled\n\n"), std::string::npos) << out;
  kernel.change = [](Body& body) { body.put32(36, 0); };
  EXPECT_EQ(get({}).out.find("RST"), std::string::npos);
}

TEST(GetFloodStat, RowsThatWereNeverUsedAreLeftOut) {
  FloodKernel kernel;
  kernel.rows = 5;
  EXPECT_EQ(get({"-s"}),
            (CommandResult{0,
                           std::string(kFlows) + "Syncache:\n"
                                                 "    0: inuse = 1, purged = 0, notfound = 0\n"
                                                 "    1: inuse = 0, purged = 2, notfound = 0\n"
                                                 "    3: inuse = 0, purged = 0, notfound = 3\n"
                                                 "\n",
                           ""}));
  EXPECT_EQ(kernel.rowSize, 24u);
  EXPECT_EQ(kernel.rowCount, 512u);
  EXPECT_EQ(get({}), (CommandResult{0, std::string(kFlows) + "\n", ""})) << "not asked for";
  kernel.rows = 0;
  EXPECT_EQ(get({"-s"}), (CommandResult{0, std::string(kFlows) + "\n", ""})) << "none came";
}

TEST(GetFloodStat, ACountOfRowsBeyondTheRecordIsNotWalked) {
  for (const std::uint32_t rows : {512u, 513u, 0x10000000u, 0xffffffffu}) {
    const LogCapture log;
    FloodKernel kernel;
    kernel.rows = rows;
    kernel.change = [](Body& body) { body.put32(136 + 24 * 511, 511); };
    const CommandResult result = get({"-s"});
    EXPECT_EQ(result.status, 0) << rows;
    EXPECT_NE(result.out.find("    511: inuse = 511, purged = 0, notfound = 0\n\n"),
              std::string::npos)
        << result;
  }
}

TEST(GetFloodStat, ZeroIsARequest) {
  const FloodKernel kernel;
  EXPECT_EQ(get({"-z"}).status, 0);
  EXPECT_EQ(kernel.zero, 1u);
}

TEST(GetFloodStat, SaysWhatIsMissingAndWhatFails) {
  EXPECT_EQ(runCommand({"getfloodstat", "-s"}),
            (CommandResult{1, "", "ERROR: filter is missing.\n"}));
  FloodKernel kernel;
  DeviceShim::failNextCalloc();
  EXPECT_EQ(get({}),
            (CommandResult{1, "", "ERROR: Failed to allocate 12424 bytes for flood stat\n"}));
  EXPECT_TRUE(kernel.asked().empty());
  kernel.fail(kGet, 21);
  EXPECT_EQ(get({}),
            (CommandResult{1, "", "ERROR: Failed to get flood status: switch port not found\n"}));
}

TEST(SetFloodConfig, WhatIsNotGivenIsAllOnes) {
  FloodKernel kernel;
  EXPECT_EQ(set({}), (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.sent, (std::vector<std::uint32_t>{kKeep, kKeep, kKeep, kKeep, kKeep, kKeep,
                                                     kKeep, kKeep, 0}));
  kernel.sent.clear();
  EXPECT_EQ(set({"-u1", "-i", "2", "-t3", "-o4", "-s", "0", "-b5", "-r6", "-z"}),
            (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.sent, (std::vector<std::uint32_t>{1, 2, 3, 4, 0, 5, kKeep, 6, 1}));
}

TEST(SetFloodConfig, SendsANumberAsItBegins) {
  const std::vector<std::pair<const char*, std::uint32_t>> rows = {
      {"7x", 7},
      {"many", 0},
      {"", 0},
      {" 12", 12},
      {"-2", 0xfffffffe},
      {"2147483647", 0x7fffffff},
      {"4294967296", 0x7fffffff},
      {"99999999999999999999", 0x7fffffff},
      {"-99999999999999999999", 0x80000000}};
  for (const auto& [text, value] : rows) {
    FloodKernel kernel;
    EXPECT_EQ(set({"-u5", "-u", text}), (CommandResult{0, "", ""})) << text;
    ASSERT_EQ(kernel.sent.size(), 9u) << text;
    EXPECT_EQ(kernel.sent[0], value) << text;
  }
}

TEST(SetFloodConfig, SaysWhatIsMissingAndWhatFails) {
  EXPECT_EQ(runCommand({"setfloodconfig", "-z"}),
            (CommandResult{1, "", "ERROR: filter is missing.\n"}));
  FloodKernel kernel;
  kernel.fail(kSet, 3);
  EXPECT_EQ(set({"-b", "3"}),
            (CommandResult{1, "", "ERROR: Failed to set flood config: invalid argument\n"}));
}
