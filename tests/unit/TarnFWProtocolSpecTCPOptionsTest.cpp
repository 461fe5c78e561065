#include <gtest/gtest.h>

#include "Expect.h"
#include "Message.h"
#include "TarnFWProtocolSpecTCPOptions.h"

using namespace TarnFirewall;

TEST(TarnFWProtocolSpecTCPOptions, HasItsKindAndSize) {
  const CTarnFWProtocolSpecTCPOptions spec(0, "ab", 2, false);
  EXPECT_EQ(spec.getSpecType(), 5u);
  EXPECT_EQ(spec.getType(), 120);
  EXPECT_EQ(spec.getMsgSize(), 42u);
}

TEST(TarnFWProtocolSpecTCPOptions, TextIsTheBytesInHexadecimal) {
  EXPECT_EQ(CTarnFWProtocolSpecTCPOptions(0, "\x02\x04\xff\x00", 4, false).toString(),
            "tcpoptions 0x0204ff00");
  EXPECT_EQ(CTarnFWProtocolSpecTCPOptions(0, nullptr, 0, true).toString(), "not tcpoptions 0x");
}

TEST(TarnFWProtocolSpecTCPOptions, WireFormIsLengthAndBytes) {
  CTarnFWProtocolSpecTCPOptions spec(0, "\x02\x04\x05\xb4", 4, false);
  EXPECT_EQ(messageOf(spec), Bytes(42).at(0, {4, 0, 0x02, 0x04, 0x05, 0xb4}));
  expectShortBuffersRefused(spec);
  CTarnFWProtocolSpecTCPOptions full(0, std::string(40, 'x').data(), 40, false);
  EXPECT_EQ(messageOf(full), Bytes(42, 'x').at(0, {40, 0}));
}

TEST(TarnFWProtocolSpecTCPOptions, RefusesMoreThanFortyBytes) {
  EXPECT_THROW_WITH(CTarnFWProtocolSpecTCPOptions(0, std::string(41, 'x').data(), 41, false),
                    CTCPOptionsTooLongException, 41, "TCP options is too long: 41");
  CTarnFWProtocolSpecTCPOptions::Body body{};
  body.length = 65535;
  EXPECT_THROW_WITH(CTarnFWProtocolSpecTCPOptions(0, body, false), CTCPOptionsTooLongException, 41,
                    "TCP options is too long: 65535");
}
