#include <gtest/gtest.h>

#include "Expect.h"
#include "Message.h"
#include "TarnFWProtocolSpecTCPFlags.h"

using namespace TarnFirewall;

TEST(TarnFWProtocolSpecTCPFlags, HasItsKindAndSize) {
  const CTarnFWProtocolSpecTCPFlags spec(0, 2, false);
  EXPECT_EQ(spec.getSpecType(), 4u);
  EXPECT_EQ(spec.getType(), 119);
  EXPECT_EQ(spec.getMsgSize(), 6u);
}

TEST(TarnFWProtocolSpecTCPFlags, TextHasFourHexadecimalDigits) {
  EXPECT_EQ(CTarnFWProtocolSpecTCPFlags(0, 0x12, false).toString(), "flag 0x0012");
  EXPECT_EQ(CTarnFWProtocolSpecTCPFlags(0, 0x1ff, true).toString(), "not flag 0x01ff");
}

TEST(TarnFWProtocolSpecTCPFlags, WireFormHasTheNinthFlagInTheSecondByte) {
  CTarnFWProtocolSpecTCPFlags low(0, 0xc3, false);
  EXPECT_EQ(messageOf(low), (Bytes{0xc3, 0, 0, 0, 0, 0}));
  CTarnFWProtocolSpecTCPFlags all(0, 0x1ff, true);
  EXPECT_EQ(messageOf(all), (Bytes{0xff, 1, 0, 0, 0, 0}));
  expectShortBuffersRefused(all);
}

TEST(TarnFWProtocolSpecTCPFlags, RefusesATenthFlag) {
  EXPECT_EQ(CTarnFWProtocolSpecTCPFlags(0, 511, false).toString(), "flag 0x01ff");
  EXPECT_THROW_WITH(CTarnFWProtocolSpecTCPFlags(0, 512, false), CInvalidTCPFlagsException, 40,
                    "invalid TCP flags: 0x0200");
}

TEST(TarnFWProtocolSpecTCPFlags, ReadsNineBitsOfARecord) {
  CTarnFWProtocolSpecTCPFlags spec(0, CTarnFWProtocolSpecTCPFlags::Body{0x12, 0xff, {1, 1, 1, 1}},
                                   false);
  EXPECT_EQ(spec.toString(), "flag 0x0112");
  EXPECT_EQ(messageOf(spec), (Bytes{0x12, 1, 0, 0, 0, 0}));
}
