#include <gtest/gtest.h>

#include "Expect.h"
#include "Message.h"
#include "TarnFWProtocolSpecL4PortRange.h"

using namespace TarnFirewall;

TEST(TarnFWProtocolSpecL4PortRange, HasItsKindAndSize) {
  const CTarnFWProtocolSpecL4PortRange spec(1, 80, 90, false);
  EXPECT_EQ(spec.getSpecType(), 2u);
  EXPECT_EQ(spec.getType(), 117);
  EXPECT_EQ(spec.getMsgSize(), 6u);
}

TEST(TarnFWProtocolSpecL4PortRange, TextIsBothEnds) {
  EXPECT_EQ(CTarnFWProtocolSpecL4PortRange(0, 80, 90, false).toString(), "port 80-90");
  EXPECT_EQ(CTarnFWProtocolSpecL4PortRange(2, 0, 65535, true).toString(), "not port 0-65535");
}

TEST(TarnFWProtocolSpecL4PortRange, WireFormIsBothEndsInNetworkOrderAndTwoZeros) {
  CTarnFWProtocolSpecL4PortRange spec(1, 80, 0x1234, false);
  EXPECT_EQ(messageOf(spec), (Bytes{0x00, 0x50, 0x12, 0x34, 0x00, 0x00}));
  expectShortBuffersRefused(spec);
}

TEST(TarnFWProtocolSpecL4PortRange, LowMustBeBelowHigh) {
  EXPECT_THROW_WITH(CTarnFWProtocolSpecL4PortRange(1, 80, 80, false), CInvalidL4PortRangeException,
                    38, "invalid TCP/UDP port range: 80 - 80");
  EXPECT_THROW_WITH(CTarnFWProtocolSpecL4PortRange(1, 90, 80, false), CInvalidL4PortRangeException,
                    38, "invalid TCP/UDP port range: 90 - 80");
  EXPECT_EQ(CTarnFWProtocolSpecL4PortRange(1, 80, 81, false).toString(), "port 80-81");
}

TEST(TarnFWProtocolSpecL4PortRange, TextOfEqualOrReversedEndsIsRefused) {
  for (const char* text : {"80-80", "80:80", "90-80", "80", "", "80-", "-80", "80- 90", "80-65536",
                           "80-90,100", "80-90-100", "a-b"}) {
    EXPECT_THROW_WITH(CTarnFWProtocolSpecL4PortRange(1, text), CInvalidL4PortRangeException, 38,
                      std::string("invalid TCP/UDP port range: ") + text);
  }
  EXPECT_THROW_WITH(CTarnFWProtocolSpecL4PortRange(1, static_cast<const char*>(nullptr)),
                    CInvalidL4PortRangeException, 38, "invalid TCP/UDP port range: ");
}

TEST(TarnFWProtocolSpecL4PortRange, ReadsBothSeparators) {
  EXPECT_EQ(CTarnFWProtocolSpecL4PortRange(1, "80-90").toString(), "port 80-90");
  EXPECT_EQ(CTarnFWProtocolSpecL4PortRange(2, "0:65535").toString(), "port 0-65535");
}
