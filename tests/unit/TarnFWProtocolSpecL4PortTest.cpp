#include <gtest/gtest.h>

#include "Expect.h"
#include "Message.h"
#include "TarnFWProtocolSpecL4Port.h"

using namespace TarnFirewall;

TEST(TarnFWProtocolSpecL4Port, HasItsKindAndSize) {
  const CTarnFWProtocolSpecL4Port spec(1, 80, false);
  EXPECT_EQ(spec.getSpecType(), 1u);
  EXPECT_EQ(spec.getType(), 116);
  EXPECT_EQ(spec.getMsgSize(), 2u);
}

TEST(TarnFWProtocolSpecL4Port, TextIsPortAndNumber) {
  EXPECT_EQ(CTarnFWProtocolSpecL4Port(0, 80, false).toString(), "port 80");
  EXPECT_EQ(CTarnFWProtocolSpecL4Port(1, 0, true).toString(), "not port 0");
  EXPECT_EQ(CTarnFWProtocolSpecL4Port(2, 65535, false).toString(), "port 65535");
}

TEST(TarnFWProtocolSpecL4Port, WireFormIsThePortInNetworkOrder) {
  CTarnFWProtocolSpecL4Port spec(1, 8080, true);
  EXPECT_EQ(messageOf(spec), (Bytes{0x1f, 0x90}));
  expectShortBuffersRefused(spec);
}

TEST(TarnFWProtocolSpecL4Port, ReadsDecimalTextBelow65536) {
  EXPECT_EQ(CTarnFWProtocolSpecL4Port(1, "0").toString(), "port 0");
  EXPECT_EQ(CTarnFWProtocolSpecL4Port(1, "65535").toString(), "port 65535");
  EXPECT_EQ(CTarnFWProtocolSpecL4Port(2, "443").getDir(), 2);
  for (const char* text : {"65536", "", "-1", "80x", "0x50", "http", "80 90"}) {
    EXPECT_THROW_WITH(CTarnFWProtocolSpecL4Port(1, text), CInvalidL4PortException, 38,
                      std::string("invalid TCP/UDP port: ") + text);
  }
  EXPECT_THROW_WITH(CTarnFWProtocolSpecL4Port(1, static_cast<const char*>(nullptr)),
                    CInvalidL4PortException, 38, "invalid TCP/UDP port: ");
}

TEST(TarnFWProtocolSpecL4Port, RefusesABadDir) {
  EXPECT_THROW_WITH(CTarnFWProtocolSpecL4Port(3, 80, false), CInvalidProtocolSpecDirException, 43,
                    "invalid protocol spec dir (0-2): 3");
  EXPECT_THROW_WITH(CTarnFWProtocolSpecL4Port(4, "80"), CInvalidProtocolSpecDirException, 43,
                    "invalid protocol spec dir (0-2): 4");
}
