#include <gtest/gtest.h>

#include "Expect.h"
#include "Message.h"
#include "TarnFWProtocolSpecDSCP.h"
#include "TarnFWProtocolSpecSession.h"
#include "TarnFWProtocolSpecSloppy.h"
#include "TarnFWProtocolSpecStateless.h"
#include "TarnFWProtocolSpecStrict.h"

using namespace TarnFirewall;

TEST(TarnFWProtocolSpecSession, EachHasItsKindSizeAndText) {
  const CTarnFWProtocolSpecStateless stateless;
  const CTarnFWProtocolSpecDSCP dscp(46);
  const CTarnFWProtocolSpecStrict strict;
  const CTarnFWProtocolSpecSloppy sloppy;
  const struct {
    const CTarnFWProtocolSpec& spec;
    unsigned int kind;
    int type;
    const char* text;
  } rows[] = {{stateless, 7, 122, "stateless"},
              {dscp, 8, 123, "dscp 46"},
              {strict, 9, 124, "strict"},
              {sloppy, 10, 125, "sloppy"}};
  for (const auto& row : rows) {
    EXPECT_EQ(row.spec.getSpecType(), row.kind);
    EXPECT_EQ(row.spec.getType(), row.type);
    EXPECT_EQ(row.spec.getMsgSize(), 56u);
    EXPECT_EQ(row.spec.getDir(), 0);
    EXPECT_FALSE(row.spec.isNegated());
    EXPECT_EQ(row.spec.toString(), row.text);
  }
}

TEST(TarnFWProtocolSpecSession, NeverPrintsNot) {
  CTarnFWProtocolSpecStateless stateless;
  stateless.setNegated(true);
  EXPECT_EQ(stateless.toString(), "stateless");
  CTarnFWProtocolSpecDSCP dscp(0);
  dscp.setNegated(true);
  EXPECT_EQ(dscp.toString(), "dscp 0");
}

TEST(TarnFWProtocolSpecSession, EachSetsItsBitsOfTheFlagWord) {
  CTarnFWProtocolSpecStateless stateless;
  EXPECT_EQ(messageOf(stateless, 0), Bytes(56).at(0, {0x01, 0x00}));
  CTarnFWProtocolSpecDSCP lowest(1);
  EXPECT_EQ(messageOf(lowest, 0), Bytes(56).at(0, {0x20, 0x00}));
  CTarnFWProtocolSpecDSCP dscp(63);
  EXPECT_EQ(messageOf(dscp, 0), Bytes(56).at(0, {0xe0, 0x07}));
  CTarnFWProtocolSpecStrict strict;
  EXPECT_EQ(messageOf(strict, 0), Bytes(56).at(0, {0x00, 0x08}));
  CTarnFWProtocolSpecSloppy sloppy;
  EXPECT_EQ(messageOf(sloppy, 0), Bytes(56).at(0, {0x00, 0x10}));
  expectShortBuffersRefused(sloppy);
}

TEST(TarnFWProtocolSpecSession, LeavesAllOtherBitsAlone) {
  CTarnFWProtocolSpecStrict strict;
  EXPECT_EQ(messageOf(strict, 0x42), Bytes(56, 0x42).at(0, {0x42, 0x4a}));
}

TEST(TarnFWProtocolSpecSession, RefusesADSCPValueOfSevenBits) {
  EXPECT_EQ(CTarnFWProtocolSpecDSCP(63).toString(), "dscp 63");
  EXPECT_THROW_WITH(CTarnFWProtocolSpecDSCP(64), CUnsupportedException, 60, "bad dscp markings");
}
