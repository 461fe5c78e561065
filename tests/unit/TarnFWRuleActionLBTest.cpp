#include <gtest/gtest.h>

#include "Expect.h"
#include "Message.h"
#include "TarnFWRuleActionLB.h"

using namespace TarnFirewall;

TEST(TarnFWRuleActionLB, TextHasTwoBlanksAndL7ForEveryTypeButZero) {
  EXPECT_EQ(CTarnFWRuleActionLB(0).getAction(), 13u);
  EXPECT_EQ(CTarnFWRuleActionLB(0).toString(), "lb  lbtype L4");
  EXPECT_EQ(CTarnFWRuleActionLB(1).toString(), "lb  lbtype L7");
  EXPECT_EQ(CTarnFWRuleActionLB(2).toString(), "lb  lbtype L7");
}

TEST(TarnFWRuleActionLB, TextShowsTimeoutsThatAreNotZero) {
  EXPECT_EQ(CTarnFWRuleActionLB(0, 0, 0).toString(), "lb  lbtype L4");
  EXPECT_EQ(CTarnFWRuleActionLB(0, 30, 0).toString(), "lb  lbtype L4 lbidletimeout 30");
  EXPECT_EQ(CTarnFWRuleActionLB(0, 0, 65535).toString(), "lb  lbtype L4 lbclosetimeout 65535");
  EXPECT_EQ(CTarnFWRuleActionLB(1, 30, 8, "a=b").toString(),
            "lb  lbtype L7 lbidletimeout 30 lbclosetimeout 8 lboptions a=b");
}

TEST(TarnFWRuleActionLB, EmptyOptionsAreOptions) {
  CTarnFWRuleActionLB action(0, 0, 0, "");
  action.enableLBRule();
  EXPECT_EQ(action.toString(), "lb  lbtype L4 lboptions  with lbrule");
  EXPECT_EQ(messageOf(action), Bytes(330).at(282, {0x40}).at(290, {13, 0, 1}));
  EXPECT_EQ(CTarnFWRuleActionLB(0, 0, 0, nullptr).toString(), "lb  lbtype L4 lboptions ");
}

TEST(TarnFWRuleActionLB, EachConstructorHasItsRecord) {
  CTarnFWRuleActionLB plain(2);
  EXPECT_EQ(messageOf(plain), Bytes(330).at(148, {2}).at(290, {13}));
  expectShortBuffersRefused(plain);
  CTarnFWRuleActionLB timeouts(1, 0x1234, 0xabcd);
  EXPECT_EQ(messageOf(timeouts), Bytes(330).at(148, {1, 0, 0x34, 0x12, 0xcd, 0xab}).at(290, {13}));
  const std::string longest(127, 'o');
  CTarnFWRuleActionLB options(0, 1, 2, longest.c_str());
  EXPECT_EQ(messageOf(options),
            Bytes(330).at(150, {1, 0, 2, 0}).text(154, longest).at(282, {0x40}).at(290, {13}));
}

TEST(TarnFWRuleActionLB, RefusesTypesAboveTwoAndLongOptions) {
  EXPECT_THROW_WITH(CTarnFWRuleActionLB(3), CUnsupportedException, 7, "Invalid LB Type");
  EXPECT_THROW_WITH(CTarnFWRuleActionLB(65535, 0, 0), CUnsupportedException, 7, "Invalid LB Type");
  EXPECT_THROW_WITH(CTarnFWRuleActionLB(3, 0, 0, std::string(128, 'o').c_str()),
                    CUnsupportedException, 7, "Invalid LB Type");
  EXPECT_THROW_WITH(CTarnFWRuleActionLB(0, 0, 0, std::string(128, 'o').c_str()),
                    CUnsupportedException, 7, "Invalid LB Options");
}
