// rtt against a scripted kernel.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DirectKernel.h"
#include "FakeKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"

namespace {

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

/// The figures of the reply, which begin with the version at 108.
class RttKernel : public DirectKernel {
 public:
  RttKernel() {
    put32(reply, 0, 1);
    put32(put32(reply, 16, 11), 20, 12);
    put64(put64(reply, 24, 13), 32, 14);
    put64(put64(reply, 40, 24000), 48, 60000);  // of the windows
    put32(put32(reply, 56, 4), 60, 5);          // samples
    put64(put64(reply, 64, 7200), 72, 9600);    // averages
    put64(reply, 80, 100);                      // cycles
    put32(put32(put32(reply, 88, 168), 92, 8), 96, 3);
    put32(put32(put32(reply, 100, 5), 104, 16), 108, 32);
    on(42, [this](std::uint8_t* body) {
      std::memcpy(body + 108, reply.data(), reply.size());
      return 0u;
    });
  }
  Bytes reply = Bytes(112);
};

CommandResult run(std::vector<std::string> options) {
  options.insert(options.begin(), "rtt");
  return runCommand(options);
}

CommandResult runOnFlow() { return run({"-f", kFilter, "-i", "1001"}); }

/// The line of the output that begins with this text.
std::string lineOf(const std::string& out, const std::string& start) {
  const std::size_t at = out.find(start);
  return at == std::string::npos ? "" : out.substr(at, out.find('\n', at) - at);
}

const std::string kUsage =
    "retrieve RTT info for a flow.\n\n"
    "Usage: tarnioctl rtt <options>\n"
    "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
    "    -i <flowid> : flow id, hexadecimal, as getflows prints it\n"
    "    -r          : reset RTT average\n"
    "    -h          : this help message\n";

}  // namespace

// Of a weight of 64, 60 average ticks of 7200 and one window of 24000: 456000 / 64 is 7125.
TEST(Rtt, PrintsBothDirections) {
  const RttKernel kernel;
  EXPECT_EQ(runOnFlow(), (CommandResult{0,
                                        "VM to switch (OUT): seqno = 11\n"
                                        "                    ticks = 13\n"
                                        "                    win_num_samples = 4\n"
                                        "                    win_total_ticks = 24000 (60 us)\n"
                                        "                    tot_win_avg_ticks = 7200 (72 us)\n"
                                        "switch to VM: (IN): seqno = 12\n"
                                        "                    ticks = 14\n"
                                        "                    win_num_samples = 5\n"
                                        "                    win_total_ticks = 60000 (120 us)\n"
                                        "                    tot_win_avg_ticks = 9600 (96 us)\n"
                                        "cyc_per_usec = 100\n"
                                        "RTT = 168 (outRTT = 71, inRTT = 97)\n"
                                        "win samples = 8, win_weight = 3, accum_weight = 5\n"
                                        "buf_entries = 16, len = 32\n",
                                        ""}));
}

TEST(Rtt, SendsTheFlowInHostOrderAndTheReset) {
  const RttKernel kernel;
  EXPECT_EQ(run({"-f", kFilter, "-i", "0x0102030405060708", "-r"}).status, 0);
  EXPECT_EQ(run({"--filter", kFilter, "--flowid=ffffffffffffffff"}).status, 0);
  EXPECT_EQ(run({"--filter", kFilter, "--flowid", "1", "--reset"}).status, 0);
  ASSERT_EQ(kernel.requests().size(), 3u);
  EXPECT_EQ(
      kernel.requests()[0].body,
      Bytes(220).text(0, kFilter).at(100, {8, 7, 6, 5, 4, 3, 2, 1}).at(112, {220}).at(120, {1}));
  EXPECT_EQ(
      kernel.requests()[1].body,
      Bytes(220).text(0, kFilter).at(100, {255, 255, 255, 255, 255, 255, 255, 255}).at(112, {220}));
  EXPECT_EQ(kernel.requests()[2].body[120], 1);
}

TEST(Rtt, ANameIsSentAsFarAsItsFieldTakesIt) {
  const RttKernel kernel;
  EXPECT_EQ(run({"-f", std::string(300, 'f'), "-i", "1"}).status, 0);
  ASSERT_EQ(kernel.requests().size(), 1u);
  EXPECT_EQ(kernel.requests()[0].body,
            Bytes(220).text(0, std::string(99, 'f')).at(100, {1}).at(112, {220}));
}

TEST(Rtt, NamesTheFilterFirstOfWhatIsMissing) {
  const RttKernel kernel;
  EXPECT_EQ(run({}), (CommandResult{1, kUsage, "ERROR: filter is missing\n"}));
  EXPECT_EQ(run({"-i", "1"}), (CommandResult{1, kUsage, "ERROR: filter is missing\n"}));
  EXPECT_EQ(run({"-f", kFilter}), (CommandResult{1, kUsage, "ERROR: flowid is missing\n"}));
  for (const char* const text : {"", "x", "1g", "10000000000000000"}) {
    EXPECT_EQ(run({"-f", kFilter, "-i", text}),
              (CommandResult{1, kUsage, "ERROR: flowid is missing\n"}))
        << text;
  }
  EXPECT_TRUE(kernel.requests().empty());
}

TEST(Rtt, SaysOnStandardOutputThatThereIsNoSuchFlow) {
  const LogCapture log;
  RttKernel kernel;
  for (const std::uint32_t version : {0u, 2u}) {
    put32(kernel.reply, 0, version);
    EXPECT_EQ(
        runOnFlow(),
        (CommandResult{1, "Unable to find flow, ver = " + std::to_string(version) + "\n", ""}));
  }
  put32(kernel.reply, 0, ~0u);
  EXPECT_EQ(runOnFlow(), (CommandResult{1, "Unable to find flow, ver = -1\n", ""}));
  kernel.fail(42, EINVAL);
  EXPECT_EQ(runOnFlow(), (CommandResult{1, "Unable to find flow, ver = 0\n", ""}));
}

TEST(Rtt, ADirectionWithoutSamplesHasATimeOfZeroInItsWindow) {
  RttKernel kernel;
  put32(kernel.reply, 56, 0);
  const std::string out = runOnFlow().out;
  EXPECT_NE(out.find("win_total_ticks = 24000 (0 us)\n"), std::string::npos);
  EXPECT_NE(out.find("win_total_ticks = 60000 (120 us)\n"), std::string::npos);
  // All 64 of the average: 484800 / 64 is 7575.
  EXPECT_EQ(lineOf(out, "RTT"), "RTT = 168 (outRTT = 75, inRTT = 97)");
}

TEST(Rtt, WhatWouldBeDividedByZeroIsZero) {
  RttKernel kernel;
  put64(kernel.reply, 80, 0);
  EXPECT_EQ(lineOf(runOnFlow().out, "RTT"), "RTT = 168 (outRTT = 0, inRTT = 0)");
  for (const std::size_t at : {std::size_t{92}, std::size_t{96}}) {
    RttKernel weightless;
    put32(weightless.reply, at, 0);
    if (at == 96) put32(weightless.reply, 100, 0);
    const CommandResult result = runOnFlow();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(lineOf(result.out, "RTT"), "RTT = 168 (outRTT = 0, inRTT = 0)");
  }
  RttKernel nothing;
  nothing.reply = Bytes(112);
  put32(nothing.reply, 0, 1);
  EXPECT_EQ(lineOf(runOnFlow().out, "cyc"), "cyc_per_usec = 0");
}

// 4 samples of a weight of 2 leave 4294967294 averages of 3 ticks. Their half is 6442450941, of
// which the last 32 bits are printed.
TEST(Rtt, SubtractsInThirtyTwoBitsAndGoesOnInSixtyFour) {
  RttKernel kernel;
  put64(kernel.reply, 40, 0);
  put64(kernel.reply, 64, 3);
  put64(kernel.reply, 80, 1);
  put32(put32(put32(kernel.reply, 92, 1), 96, 1), 100, 1);
  EXPECT_EQ(lineOf(runOnFlow().out, "RTT"), "RTT = 168 (outRTT = 2147483645, inRTT = 15600)");
}

// A weight of 2^33, of which 4 and 5 samples leave 4294967292 and 4294967291 averages.
TEST(Rtt, AWeightMayHaveMoreThanThirtyTwoBits) {
  RttKernel kernel;
  put64(put64(kernel.reply, 40, 0), 48, 0);
  put64(put64(kernel.reply, 64, 1u << 20), 72, 1u << 21);
  put64(kernel.reply, 80, 1);
  put32(put32(put32(kernel.reply, 92, 2), 96, 1u << 31), 100, 1u << 31);
  EXPECT_EQ(lineOf(runOnFlow().out, "RTT"), "RTT = 168 (outRTT = 524287, inRTT = 1048575)");
}

TEST(Rtt, FiguresOfAllOnesArePrinted) {
  RttKernel kernel;
  kernel.reply = Bytes(112, 0xff);
  put32(kernel.reply, 0, 1);
  const CommandResult result = runOnFlow();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(lineOf(result.out, "VM to"), "VM to switch (OUT): seqno = 4294967295");
  EXPECT_EQ(lineOf(result.out, "cyc"), "cyc_per_usec = 18446744073709551615");
  EXPECT_EQ(lineOf(result.out, "buf"), "buf_entries = 4294967295, len = 4294967295");
}
