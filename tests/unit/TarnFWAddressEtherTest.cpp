#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "AddressRecord.h"
#include "TarnFWAddressEther.h"

using namespace TarnFirewall;

TEST(TarnFWAddressEther, IsAMacAddress) {
  const CTarnFWAddressEther address("00:11:22:33:44:55", false);
  EXPECT_EQ(address.getType(), 7);
  EXPECT_TRUE(address.isMACAddress());
  EXPECT_FALSE(address.isIPAddress());
  EXPECT_FALSE(address.isIPv4Address());
  EXPECT_FALSE(address.isIPv6Address());
}

TEST(TarnFWAddressEther, WritesTwoDigitsForAnOctetWhateverTheInput) {
  EXPECT_EQ(CTarnFWAddressEther("0:1:A:Bc:0d:ff", false).toString(), "mac 00:01:0a:bc:0d:ff");
  EXPECT_EQ(CTarnFWAddressEther(fw_ether_{{1, 2, 3, 4, 5, 6}}, true).toString(),
            "not mac 01:02:03:04:05:06");
  EXPECT_EQ(CTarnFWAddressEther("0:1:2:3:4:5", true).toString(), "not mac 00:01:02:03:04:05");
}

TEST(TarnFWAddressEther, RefusesABadTextWithTheWholeText) {
  for (const std::string& text :
       {std::string(), std::string("00:11:22:33:44"), std::string("00:11:22:33:44:100"),
        std::string("100:11:22:33:44:55"), std::string("00:11:22:33:44:55x"),
        std::string("00:11:22:33:44:5x"), std::string(" 0:1:2:3:4:5"),
        std::string("00:11:22:33:44:gg"), std::string("00-11-22-33-44-55"),
        std::string("00:11:22:33:44:55-00:11:22:33:44:66"), std::string(1000000, '0')}) {
    EXPECT_THROW_WITH(CTarnFWAddressEther(text.c_str(), false), CInvalidAddressException, 33, text);
  }
  EXPECT_THROW_WITH(CTarnFWAddressEther(static_cast<const char*>(nullptr), false),
                    CInvalidAddressException, 33, "");
}

TEST(TarnFWAddressEther, AWordAfterTheAddressDoesNotCount) {
  EXPECT_EQ(CTarnFWAddressEther("00:11:22:33:44:55 x", false).toString(), "mac 00:11:22:33:44:55");
  EXPECT_EQ(CTarnFWAddressEther("00:11:22:33:44:5\n", false).toString(), "mac 00:11:22:33:44:05");
}

TEST(TarnFWAddressEther, GetAddressCopiesTheValueOut) {
  fw_ether_ address{};
  EXPECT_FALSE(CTarnFWAddressEther("01:02:03:04:05:06", false).getAddress(&address));
  const std::uint8_t expected[] = {1, 2, 3, 4, 5, 6};
  EXPECT_EQ(std::memcmp(address.octet, expected, 6), 0);
  EXPECT_TRUE(CTarnFWAddressEther("01:02:03:04:05:06", true).getAddress(&address));
}

TEST(TarnFWAddressEther, WritesAndReadsItsRecord) {
  for (const bool isNegated : {false, true}) {
    const AddressGolden golden{7, isNegated, {{4, {0, 0x11, 0x22, 0x33, 0x44, 0x55}}}};
    CTarnFWAddressEther address("00:11:22:33:44:55", isNegated);
    expectWire(address, golden);
    const FWAddress_ record = golden.record();
    CTarnFWAddressEther read(&record);
    EXPECT_EQ(read.toString(), address.toString());
    expectWire(read, golden);
  }
}

TEST(TarnFWAddressEther, IsOrderedDownwardsByBytes) {
  const CTarnFWAddressEther low("01:00:00:00:00:ff", false);
  const CTarnFWAddressEther high("02:00:00:00:00:00", false);
  EXPECT_TRUE(high < low);  // the reverse of the other layer-2 addresses, as the kernel sorts
  EXPECT_FALSE(low < high);
  EXPECT_FALSE(low < low);
}
