#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "AddressRecord.h"
#include "LibcShim.h"
#include "TarnFWAddressIPv6.h"

using namespace TarnFirewall;

namespace {

in6_addr ip(const char* text) {
  in6_addr address;
  EXPECT_EQ(inet_pton(AF_INET6, text, &address), 1) << text;
  return address;
}

}  // namespace

TEST(TarnFWAddressIPv6, IsAnIPv6Address) {
  const CTarnFWAddressIPv6 address("2001:db8::1", false);
  EXPECT_EQ(address.getType(), 2);
  EXPECT_TRUE(address.isIPAddress());
  EXPECT_FALSE(address.isIPv4Address());
  EXPECT_TRUE(address.isIPv6Address());
  EXPECT_FALSE(address.isMACAddress());
  static_assert(sizeof(CTarnFWAddressIPv6) <= 32);
}

TEST(TarnFWAddressIPv6, SharesItsWordWithIPv4) {
  EXPECT_EQ(CTarnFWAddressIPv6("2001:0DB8:0:0:0:0:0:1", false).toString(), "ip 2001:db8::1");
  EXPECT_EQ(CTarnFWAddressIPv6("::", true).toString(), "not ip ::");
  EXPECT_EQ(CTarnFWAddressIPv6("::ffff:10.0.0.1", false).toString(), "ip ::ffff:10.0.0.1");
}

TEST(TarnFWAddressIPv6, WritesEveryAddressAsInetNtopDoes) {
  std::mt19937_64 random(6);
  for (int i = 0; i < 2000; ++i) {
    in6_addr address;
    for (std::uint8_t& byte : address.s6_addr) {
      byte = static_cast<std::uint8_t>(random() % 3 == 0 ? random() : 0);
    }
    char expected[INET6_ADDRSTRLEN];
    ASSERT_NE(inet_ntop(AF_INET6, &address, expected, sizeof expected), nullptr);
    ASSERT_EQ(CTarnFWAddressIPv6(address, false).toString(), std::string("ip ") + expected);
  }
}

TEST(TarnFWAddressIPv6, AnAddressThatInetNtopFailsOnHasNoText) {
  const CTarnFWAddressIPv6 address("2001:db8::1", false);
  {
    const LibcShim::FailingAddressTexts failing;
    EXPECT_THROW_WITH(address.toString(), CInvalidAddressException, 33, "invalid ip6 address");
  }
  EXPECT_EQ(address.toString(), "ip 2001:db8::1");
}

TEST(TarnFWAddressIPv6, ALeadingBlankAndATrailingWordDoNotCount) {
  EXPECT_EQ(CTarnFWAddressIPv6(" 2001:db8::1 and more", false).toString(), "ip 2001:db8::1");
}

TEST(TarnFWAddressIPv6, RefusesABadTextWithTheWholeText) {
  for (const std::string& text :
       {std::string(), std::string("2001:db8"), std::string("2001:db8:::1"),
        std::string("2001:db8::1/64"), std::string("10.0.0.1"), std::string("fe80::1%eth0"),
        std::string(46, ':'), std::string(1000000, ':')}) {
    EXPECT_THROW_WITH(CTarnFWAddressIPv6(text.c_str(), false), CInvalidAddressException, 33, text);
  }
}

TEST(TarnFWAddressIPv6, GetAddressCopiesTheValueOut) {
  in6_addr address{};
  EXPECT_FALSE(CTarnFWAddressIPv6("2001:db8::1", false).getAddress(&address));
  const in6_addr expected = ip("2001:db8::1");
  EXPECT_EQ(std::memcmp(&address, &expected, 16), 0);
  EXPECT_TRUE(CTarnFWAddressIPv6("2001:db8::1", true).getAddress(&address));
}

TEST(TarnFWAddressIPv6, WritesAndReadsItsRecord) {
  for (const bool isNegated : {false, true}) {
    const AddressGolden golden{
        2, isNegated, {{4, {0x20, 1, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x12, 0x34}}}};
    CTarnFWAddressIPv6 address("2001:db8::1234", isNegated);
    expectWire(address, golden);
    const FWAddress_ record = golden.record();
    CTarnFWAddressIPv6 read(&record);
    EXPECT_EQ(read.toString(), isNegated ? "not ip 2001:db8::1234" : "ip 2001:db8::1234");
    expectWire(read, golden);
  }
}

TEST(TarnFWAddressIPv6, IsLessWhenAnyWordIsLess) {
  const CTarnFWAddressIPv6 a("0:1::2:0", false);
  const CTarnFWAddressIPv6 b("0:2::1:0", false);
  // Each has a word below the other's: both hold. Not a strict weak order:
  // the kernel sorts sets this way.
  EXPECT_TRUE(a < b);
  EXPECT_TRUE(b < a);
  EXPECT_FALSE(a < a);
  const CTarnFWAddressIPv6 low("::", false);
  EXPECT_TRUE(low < a);
  EXPECT_FALSE(a < low);
}

TEST(TarnFWAddressIPv6, AWordIsComparedAsItStandsInMemory) {
  const CTarnFWAddressIPv6 low("::0200:0001", false);
  const CTarnFWAddressIPv6 high("::0100:0002", false);
  EXPECT_TRUE(low < high);
  EXPECT_FALSE(high < low);
}
