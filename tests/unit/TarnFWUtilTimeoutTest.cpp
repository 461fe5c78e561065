#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "LogCapture.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

TEST(TarnFWUtilTimeouts, TimeoutsHaveTheirNamesWhateverTheCase) {
  const char* const names[] = {
      "dfw.tcp.first_packet",  "dfw.tcp.opening",      "dfw.tcp.established",
      "dfw.tcp.closing",       "dfw.tcp.fin_wait",     "dfw.tcp.closed",
      "dfw.udp.first_packet",  "dfw.udp.single",       "dfw.udp.multiple",
      "dfw.icmp.first_packet", "dfw.icmp.error_reply", "dfw.other.first_packet",
      "dfw.other.single",      "dfw.other.multiple",   "dfw.ip.frag",
      "dfw.interval",          "dfw.adaptive_start",   "dfw.adaptive_end",
      "dfw.src_node",          "dfw.ts_diff",          "dfw.invalid_state",
      "dfw.invalid_l7"};
  ASSERT_EQ(std::size(names), kTimeouts);
  for (unsigned int i = 0; i < kTimeouts; ++i) {
    EXPECT_STREQ(g_tarnfw_timeout_name[i], names[i]);
    EXPECT_EQ(TimeoutName2ID(names[i]), i);
  }
  EXPECT_EQ(TimeoutName2ID("DFW.TCP.Opening"), 1u);
}

TEST(TarnFWUtilTimeouts, AnUnknownTimeoutIsOnePastTheCount) {
  EXPECT_EQ(TimeoutName2ID("dfw.tcp"), 23u);
  EXPECT_EQ(TimeoutName2ID(""), 23u);
  EXPECT_EQ(TimeoutName2ID(nullptr), 23u);
}

TEST(TarnFWUtilTimeouts, TimeoutListsHaveExactlyTheirCount) {
  std::uint32_t values[4] = {9, 9, 9, 9};
  EXPECT_TRUE(ParseTimeoutList("1 2\t3", values, 3));
  EXPECT_EQ(values[2], 3u);
  EXPECT_EQ(values[3], 9u);
  EXPECT_TRUE(ParseTimeoutList("4,5:6", values, 3));
  EXPECT_EQ(values[0], 4u);
  EXPECT_EQ(values[2], 6u);
  EXPECT_TRUE(ParseTimeoutList("0,4294967295,4294967296", values, 3));
  EXPECT_EQ(values[1], 4294967295u);
  EXPECT_EQ(values[2], 0u);
  EXPECT_TRUE(ParseTimeoutList("", values, 0));
  EXPECT_FALSE(ParseTimeoutList(nullptr, values, 3));
  EXPECT_FALSE(ParseTimeoutList("1", nullptr, 1));
}

TEST(TarnFWUtilTimeouts, AMissingTimeoutLogsHowManyAreWanted) {
  LogCapture log;
  std::uint32_t values[22];
  EXPECT_FALSE(ParseTimeoutList("1 2 3", values, 22));
  ASSERT_EQ(log.normalized().size(), 1u);
  EXPECT_EQ(log.normalized()[0],
            "4|tarnfw: TarnFWUtil:ParseTimeoutList():N missing 19 timeout values\n\n");
}

TEST(TarnFWUtilTimeouts, ABadTimeoutIsLogged) {
  std::uint32_t values[2];
  for (const std::string text : {"x", "-1", "9223372036854775808"}) {
    LogCapture log;
    EXPECT_FALSE(ParseTimeoutList(("1," + text).c_str(), values, 2));
    ASSERT_EQ(log.normalized().size(), 1u);
    EXPECT_EQ(log.normalized()[0],
              "4|tarnfw: TarnFWUtil:ParseTimeoutList():N bad timeout value: " + text + "\n\n");
  }
}

TEST(TarnFWUtilTimeouts, OneTimeoutTooManyIsLogged) {
  LogCapture log;
  std::uint32_t values[3] = {0, 0, 9};
  EXPECT_FALSE(ParseTimeoutList("1,2,3", values, 2));
  ASSERT_EQ(log.normalized().size(), 1u);
  EXPECT_EQ(log.normalized()[0],
            "4|tarnfw: TarnFWUtil:ParseTimeoutList():N too many timeout values\n\n");
  EXPECT_EQ(values[2], 9u);
}
