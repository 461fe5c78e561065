#include <gtest/gtest.h>
#include <sys/sysinfo.h>

#include <chrono>
#include <set>

#include "TarnFWBootTime.h"

using namespace TarnFirewall;

TEST(TarnFWBootTime, OneMomentIsTheSameTimeAtEveryReading) {
  // Over more than a second, since the two clocks turn to the next second at different moments.
  std::set<std::time_t> times;
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(1100);
  while (std::chrono::steady_clock::now() < end) times.insert(bootsec2time(1000));
  EXPECT_EQ(times.size(), 1u);
}

TEST(TarnFWBootTime, IsTheWallClockLessTheUptime) {
  struct sysinfo info = {};
  ASSERT_EQ(sysinfo(&info), 0);
  EXPECT_NEAR(static_cast<double>(bootsec2time(1000)),
              static_cast<double>(std::time(nullptr) - info.uptime + 1000), 1);
}

TEST(TarnFWBootTime, CountsSecondsFromThere) {
  const std::time_t boot = bootsec2time(0);
  EXPECT_EQ(bootsec2time(86400), boot + 86400);
  EXPECT_EQ(bootsec2time(~std::uint64_t{0}), boot - 1) << "a number without meaning wraps around";
}
