#include <gtest/gtest.h>

#include "Expect.h"
#include "Message.h"
#include "TarnFWRuleActionMacRewrite.h"

using namespace TarnFirewall;

TEST(TarnFWRuleActionMacRewrite, TextHasNoZeroPadding) {
  const unsigned char mac[] = {0x00, 0x0a, 0xff, 0x10, 0x0f, 0xb0};
  CTarnFWRuleActionMacRewrite action(mac);
  EXPECT_EQ(action.getAction(), 9u);
  EXPECT_EQ(action.toString(), "macrewrite 0:a:ff:10:f:b0");
  action.enableCopyPacket();
  EXPECT_EQ(action.toString(), "macrewrite 0:a:ff:10:f:b0 with copy");
}

TEST(TarnFWRuleActionMacRewrite, WireFormHasTheAddressFirst) {
  const unsigned char mac[] = {1, 2, 3, 4, 5, 6};
  CTarnFWRuleActionMacRewrite action(mac);
  EXPECT_EQ(messageOf(action), Bytes(330).at(0, {1, 2, 3, 4, 5, 6}).at(290, {9}));
  expectShortBuffersRefused(action);
}
