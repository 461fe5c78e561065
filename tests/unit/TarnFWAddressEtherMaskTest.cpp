#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "AddressRecord.h"
#include "TarnFWAddressEtherMask.h"

using namespace TarnFirewall;

TEST(TarnFWAddressEtherMask, IsAMacAddress) {
  const CTarnFWAddressEtherMask address("00:11:22:33:44:55/ff:ff:ff:00:00:00", false);
  EXPECT_EQ(address.getType(), 9);
  EXPECT_TRUE(address.isMACAddress());
  EXPECT_FALSE(address.isIPAddress());
}

TEST(TarnFWAddressEtherMask, PrintsAddressAndMaskAsGiven) {
  EXPECT_EQ(CTarnFWAddressEtherMask("0:11:22:33:44:55/FF:ff:ff:0:0:0", false).toString(),
            "mac 00:11:22:33:44:55/ff:ff:ff:00:00:00");
}

TEST(TarnFWAddressEtherMask, ATextIsNeverNegated) {
  const CTarnFWAddressEtherMask address("0:1:2:3:4:5/0:0:0:0:0:0", true);
  EXPECT_FALSE(address.isNegated());
  EXPECT_EQ(address.toString(), "mac 00:01:02:03:04:05/00:00:00:00:00:00");
}

TEST(TarnFWAddressEtherMask, TwoValuesMayBeNegated) {
  const CTarnFWAddressEtherMask address(fw_ether_{{1, 2, 3, 4, 5, 6}},
                                        fw_ether_{{255, 0, 0, 0, 0, 1}}, true);
  EXPECT_EQ(address.toString(), "not mac 01:02:03:04:05:06/ff:00:00:00:00:01");
  fw_ether_ value{};
  fw_ether_ mask{};
  EXPECT_TRUE(address.getAddress(&value, &mask));
  EXPECT_EQ(value.octet[5], 6);
  EXPECT_EQ(mask.octet[0], 255);
}

TEST(TarnFWAddressEtherMask, RefusesABadTextWithTheWholeText) {
  for (const std::string& text :
       {std::string(), std::string("00:11:22:33:44:55"), std::string("00:11:22:33:44:55/"),
        std::string("00:11:22:33:44:55/ff:ff:ff:ff:ff"),
        std::string("00:11:22:33:44:100/ff:ff:ff:ff:ff:ff"),
        std::string("00:11:22:33:44:55/ff:ff:ff:ff:ff:100"),
        std::string("-1:11:22:33:44:55/ff:ff:ff:ff:ff:ff"),
        std::string("00:11:22:33:44:55-ff:ff:ff:ff:ff:ff"), std::string(1000000, 'f')}) {
    EXPECT_THROW_WITH(CTarnFWAddressEtherMask(text.c_str(), false), CInvalidAddressException, 33,
                      text);
  }
  EXPECT_THROW_WITH(CTarnFWAddressEtherMask(static_cast<const char*>(nullptr), false),
                    CInvalidAddressException, 33, "");
}

TEST(TarnFWAddressEtherMask, WritesAndReadsItsRecord) {
  for (const bool isNegated : {false, true}) {
    const AddressGolden golden{
        9, isNegated, {{4, {1, 2, 3, 4, 5, 6}}, {10, {255, 254, 253, 0, 0, 9}}}};
    const FWAddress_ record = golden.record();
    CTarnFWAddressEtherMask read(&record);
    EXPECT_EQ(read.toString(), isNegated ? "not mac 01:02:03:04:05:06/ff:fe:fd:00:00:09"
                                         : "mac 01:02:03:04:05:06/ff:fe:fd:00:00:09");
    expectWire(read, golden);
  }
  CTarnFWAddressEtherMask text("1:2:3:4:5:6/ff:fe:fd:0:0:9", false);
  expectWire(text, {9, false, {{4, {1, 2, 3, 4, 5, 6}}, {10, {255, 254, 253, 0, 0, 9}}}});
}

TEST(TarnFWAddressEtherMask, IsOrderedUpwardsByAddressThenMask) {
  const CTarnFWAddressEtherMask a("01:00:00:00:00:ff/ff:00:00:00:00:00", false);
  const CTarnFWAddressEtherMask b("02:00:00:00:00:00/00:00:00:00:00:00", false);
  const CTarnFWAddressEtherMask c("02:00:00:00:00:00/00:00:00:00:00:01", false);
  EXPECT_TRUE(a < b);
  EXPECT_FALSE(b < a);
  EXPECT_TRUE(b < c);
  EXPECT_FALSE(c < b);
  EXPECT_FALSE(c < c);
}
