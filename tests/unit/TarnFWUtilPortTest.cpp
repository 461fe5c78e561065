#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <string>

#include "TarnFWUtil.h"

using namespace TarnFirewall;

TEST(TarnFWUtilPorts, APairOfPortsHasADashOrAColonBetweenThem) {
  long low = 0;
  long high = 0;
  EXPECT_TRUE(Str2PortOrRange("22-30", &low, &high));
  EXPECT_EQ(low, 22);
  EXPECT_EQ(high, 30);
  EXPECT_TRUE(Str2PortOrRange("0:65535", &low, &high));
  EXPECT_EQ(low, 0);
  EXPECT_EQ(high, 65535);
  EXPECT_TRUE(Str2PortOrRange("22-22", &low, &high));
}

TEST(TarnFWUtilPorts, RefusesWhatIsNoPairOfPorts) {
  long low = 0;
  long high = 0;
  for (const char* text : {"22", "", "22-", "22:", "-5", "-", "22--30", "22- 30", "22-+30", "30-22",
                           "22-65536", "65536-65537", "22:30-40", "22-30:40", "a-30", "22-3a"}) {
    EXPECT_FALSE(Str2PortOrRange(text, &low, &high)) << text;
  }
  EXPECT_FALSE(Str2PortOrRange(nullptr, &low, &high));
  EXPECT_FALSE(Str2PortOrRange("1-2", nullptr, &high));
  EXPECT_FALSE(Str2PortOrRange("1-2", &low, nullptr));
}

TEST(TarnFWUtilPorts, ARangeHasAtLeastTwoPorts) {
  long low = 0;
  long high = 0;
  EXPECT_TRUE(Str2PortRange("22-23", &low, &high));
  EXPECT_FALSE(Str2PortRange("22-22", &low, &high));
  EXPECT_FALSE(Str2PortRange("23-22", &low, &high));
  EXPECT_FALSE(Str2PortRange(nullptr, &low, &high));
}

TEST(TarnFWUtilPorts, ParsePortStringGivesNetworkOrder) {
  std::uint16_t low = 1;
  std::uint16_t high = 1;
  EXPECT_TRUE(ParsePortString("22", &low, &high));
  EXPECT_EQ(low, htons(22));
  EXPECT_EQ(high, 0);
  EXPECT_TRUE(ParsePortString("22:30", &low, &high));
  EXPECT_EQ(low, htons(22));
  EXPECT_EQ(high, htons(30));
}

TEST(TarnFWUtilPorts, ParsePortStringRefusesARangeOfOnePort) {
  std::uint16_t low = 1;
  std::uint16_t high = 1;
  for (const char* text : {"22-22", "22-", "-5", "65536", "", "x"}) {
    low = high = 1;
    EXPECT_FALSE(ParsePortString(text, &low, &high)) << text;
    EXPECT_EQ(low, 0) << text;
    EXPECT_EQ(high, 0) << text;
  }
  EXPECT_FALSE(ParsePortString(nullptr, &low, &high));
  EXPECT_FALSE(ParsePortString("22", nullptr, &high));
  EXPECT_FALSE(ParsePortString("22", &low, nullptr));
}
