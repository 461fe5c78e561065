#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "AddressRecord.h"
#include "TarnFWAddressEtherRange.h"

using namespace TarnFirewall;

TEST(TarnFWAddressEtherRange, IsAMacAddress) {
  const CTarnFWAddressEtherRange range("00:00:00:00:00:01-00:00:00:00:00:02", false);
  EXPECT_EQ(range.getType(), 8);
  EXPECT_TRUE(range.isMACAddress());
  EXPECT_FALSE(range.isIPAddress());
}

TEST(TarnFWAddressEtherRange, HasBothAddressesInItsText) {
  EXPECT_EQ(CTarnFWAddressEtherRange("0:0:0:0:0:1-0:0:0:0:0:A", false).toString(),
            "mac 00:00:00:00:00:01-00:00:00:00:00:0a");
}

TEST(TarnFWAddressEtherRange, ATextIsNeverNegated) {
  EXPECT_FALSE(CTarnFWAddressEtherRange("0:0:0:0:0:1-0:0:0:0:0:2", true).isNegated());
  EXPECT_EQ(
      CTarnFWAddressEtherRange(fw_ether_{{0, 0, 0, 0, 0, 1}}, fw_ether_{{0, 0, 0, 0, 0, 2}}, true)
          .toString(),
      "not mac 00:00:00:00:00:01-00:00:00:00:00:02");
}

TEST(TarnFWAddressEtherRange, TheLastOctetWeighsMost) {
  EXPECT_EQ(CTarnFWAddressEtherRange("02:00:00:00:00:00-01:00:00:00:00:01", false).toString(),
            "mac 02:00:00:00:00:00-01:00:00:00:00:01");
  EXPECT_THROW_WITH(CTarnFWAddressEtherRange("01:00:00:00:00:01-02:00:00:00:00:00", false),
                    CInvalidEtherRangeException, 33,
                    "invalid ethernet range: 01:00:00:00:00:01-02:00:00:00:00:00");
  EXPECT_EQ(CTarnFWAddressEtherRange("01:00:00:00:00:01-02:00:00:00:00:01", false).getType(), 8);
}

TEST(TarnFWAddressEtherRange, RefusesARangeThatDoesNotRise) {
  EXPECT_THROW_WITH(CTarnFWAddressEtherRange("00:00:00:00:00:02-00:00:00:00:00:01", false),
                    CInvalidEtherRangeException, 33,
                    "invalid ethernet range: 00:00:00:00:00:02-00:00:00:00:00:01");
  EXPECT_THROW_WITH(CTarnFWAddressEtherRange("aa:bb:cc:dd:ee:ff-aa:bb:cc:dd:ee:ff", false),
                    CInvalidEtherRangeException, 33,
                    "invalid ethernet range: aa:bb:cc:dd:ee:ff-aa:bb:cc:dd:ee:ff");
  const fw_ether_ one{{1, 2, 3, 4, 5, 6}};
  EXPECT_THROW_WITH(CTarnFWAddressEtherRange(one, one, false), CInvalidEtherRangeException, 33,
                    "invalid ethernet range: 01:02:03:04:05:06-01:02:03:04:05:06");
  const FWAddress_ record = AddressGolden{8, false, {}}.record();
  EXPECT_THROW_WITH(CTarnFWAddressEtherRange{&record}, CInvalidEtherRangeException, 33,
                    "invalid ethernet range: 00:00:00:00:00:00-00:00:00:00:00:00");
}

TEST(TarnFWAddressEtherRange, RefusesABadTextWithTheWholeText) {
  for (const std::string& text :
       {std::string(), std::string("00:11:22:33:44:55"), std::string("00:11:22:33:44:55-"),
        std::string("00:11:22:33:44:55-ff:ff:ff:ff:ff"),
        std::string("00:11:22:33:44:100-ff:ff:ff:ff:ff:ff"),
        std::string("00:11:22:33:44:55/ff:ff:ff:ff:ff:ff"), std::string(1000000, '0')}) {
    EXPECT_THROW_WITH(CTarnFWAddressEtherRange(text.c_str(), false), CInvalidAddressException, 33,
                      text);
  }
}

TEST(TarnFWAddressEtherRange, WritesAndReadsItsRecord) {
  for (const bool isNegated : {false, true}) {
    const AddressGolden golden{8, isNegated, {{4, {1, 2, 3, 4, 5, 6}}, {10, {1, 2, 3, 4, 5, 7}}}};
    const FWAddress_ record = golden.record();
    CTarnFWAddressEtherRange read(&record);
    fw_ether_ first{};
    fw_ether_ last{};
    EXPECT_EQ(read.getAddress(&first, &last), isNegated);
    EXPECT_EQ(first.octet[5], 6);
    EXPECT_EQ(last.octet[5], 7);
    expectWire(read, golden);
  }
}

TEST(TarnFWAddressEtherRange, IsOrderedUpwardsByFirstThenLast) {
  const CTarnFWAddressEtherRange a("01:00:00:00:00:01-09:00:00:00:00:02", false);
  const CTarnFWAddressEtherRange b("02:00:00:00:00:00-01:00:00:00:00:02", false);
  const CTarnFWAddressEtherRange c("02:00:00:00:00:00-01:00:00:00:00:03", false);
  EXPECT_TRUE(a < b);
  EXPECT_FALSE(b < a);
  EXPECT_TRUE(b < c);
  EXPECT_FALSE(c < b);
  EXPECT_FALSE(c < c);
}
