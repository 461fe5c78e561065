#include <gtest/gtest.h>

#include "Expect.h"
#include "Message.h"
#include "TarnFWProtocolSpecICMPType.h"

using namespace TarnFirewall;

using ICMPType = CTarnFWProtocolSpecICMPType;

TEST(TarnFWProtocolSpecICMPType, HasItsKindAndSize) {
  const ICMPType spec(0, 8, false);
  EXPECT_EQ(spec.getSpecType(), 6u);
  EXPECT_EQ(spec.getType(), 121);
  EXPECT_EQ(spec.getMsgSize(), 6u);
}

TEST(TarnFWProtocolSpecICMPType, TextHasAWordOfItsOwnWithACode) {
  EXPECT_EQ(ICMPType(0, 8, false).toString(), "icmptype 8");
  EXPECT_EQ(ICMPType(0, 255, true).toString(), "not icmptype 255");
  EXPECT_EQ(ICMPType(0, 3, 1, false).toString(), "typecode 3:1");
  EXPECT_EQ(ICMPType(0, 3, 0, true).toString(), "not typecode 3:0");
}

TEST(TarnFWProtocolSpecICMPType, WireFormAlwaysHasAType) {
  ICMPType type(0, 8, false);
  EXPECT_EQ(messageOf(type), (Bytes{1, 0, 0, 0, 8, 0}));
  ICMPType code(0, 3, 13, true);
  EXPECT_EQ(messageOf(code), (Bytes{3, 0, 0, 0, 3, 13}));
  expectShortBuffersRefused(code);
}

TEST(TarnFWProtocolSpecICMPType, ReadsACodeOnlyWhenTheRecordSaysSo) {
  EXPECT_EQ(ICMPType(0, ICMPType::Body{0, {}, 5, 7}, false).toString(), "icmptype 5");
  EXPECT_EQ(ICMPType(0, ICMPType::Body{2, {}, 5, 7}, true).toString(), "not typecode 5:7");
  ICMPType withoutCode(0, ICMPType::Body{1, {9, 9, 9}, 5, 7}, false);
  EXPECT_EQ(messageOf(withoutCode), (Bytes{1, 0, 0, 0, 5, 0}));
}
