#include "TarnFWProtocolNames.h"

#include <gtest/gtest.h>

using TarnFirewall::CTarnFWProtocolNames;

TEST(TarnFWProtocolNames, GivesTheHostsNumbersEveryTime) {
  CTarnFWProtocolNames names;
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(names.number("tcp"), 6);
    EXPECT_EQ(names.number("udp"), 17);
    EXPECT_EQ(names.number("ICMP"), 1);
    EXPECT_EQ(names.number("nonesuch"), -1);
  }
}

TEST(TarnFWProtocolNames, StillAnswersWhenItKeepsNoMoreNames) {
  CTarnFWProtocolNames names;
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(names.number(("nonesuch" + std::to_string(i)).c_str()), -1);
  }
  EXPECT_EQ(names.number("tcp"), 6);
}
