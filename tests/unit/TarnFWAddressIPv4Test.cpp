#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "AddressRecord.h"
#include "TarnFWAddressIPv4.h"

using namespace TarnFirewall;

namespace {

in_addr ip(std::uint32_t host) { return {htonl(host)}; }

}  // namespace

TEST(TarnFWAddressIPv4, IsAnIPv4Address) {
  const CTarnFWAddressIPv4 address("10.1.2.3", false);
  EXPECT_EQ(address.getType(), 1);
  EXPECT_TRUE(address.isIPAddress());
  EXPECT_TRUE(address.isIPv4Address());
  EXPECT_FALSE(address.isIPv6Address());
  EXPECT_FALSE(address.isMACAddress());
  EXPECT_FALSE(address.isContainer());
  EXPECT_EQ(address.getName(), "");
  static_assert(sizeof(CTarnFWAddressIPv4) <= 16);
}

TEST(TarnFWAddressIPv4, HasTheTextOfItsAddress) {
  EXPECT_EQ(CTarnFWAddressIPv4("10.1.2.3", false).toString(), "ip 10.1.2.3");
  EXPECT_EQ(CTarnFWAddressIPv4("10.1.2.3", true).toString(), "not ip 10.1.2.3");
  EXPECT_EQ(CTarnFWAddressIPv4(ip(0), false).toString(), "ip 0.0.0.0");
  EXPECT_EQ(CTarnFWAddressIPv4(ip(0xffffffff), true).toString(), "not ip 255.255.255.255");
}

TEST(TarnFWAddressIPv4, WritesEveryAddressAsInetNtopDoes) {
  std::mt19937 random(4);
  for (std::uint32_t i = 0; i < 20000; ++i) {
    const in_addr address = {i < 256 ? i * 0x01010101U : static_cast<std::uint32_t>(random())};
    char expected[INET_ADDRSTRLEN];
    ASSERT_NE(inet_ntop(AF_INET, &address, expected, sizeof expected), nullptr);
    ASSERT_EQ(CTarnFWAddressIPv4(address, false).toString(), std::string("ip ") + expected);
  }
}

TEST(TarnFWAddressIPv4, AppendsToAText) {
  CTarnFWText text;
  text += "from ";
  CTarnFWAddressIPv4("10.1.2.3", true).appendTo(text);
  EXPECT_EQ(text.view(), "from not ip 10.1.2.3");
}

TEST(TarnFWAddressIPv4, ALeadingBlankAndATrailingWordDoNotCount) {
  EXPECT_EQ(CTarnFWAddressIPv4(" \t10.1.2.3 and more", false).toString(), "ip 10.1.2.3");
}

TEST(TarnFWAddressIPv4, RefusesABadTextWithTheWholeText) {
  for (const std::string& text :
       {std::string(), std::string(" "), std::string("10.1.2"), std::string("10.1.2.256"),
        std::string("10.1.2.3.4"), std::string("10.1.2.3/24"), std::string("x 10.1.2.3"),
        std::string("2001:db8::1"), std::string(46, '1'), std::string(1000000, '1')}) {
    EXPECT_THROW_WITH(CTarnFWAddressIPv4(text.c_str(), false), CInvalidAddressException, 33, text);
  }
  const char* const none = nullptr;
  EXPECT_THROW_WITH(CTarnFWAddressIPv4(none, false), CInvalidAddressException, 33, "");
}

TEST(TarnFWAddressIPv4, GetAddressCopiesTheValueOut) {
  in_addr address{};
  EXPECT_FALSE(CTarnFWAddressIPv4("10.1.2.3", false).getAddress(&address));
  EXPECT_EQ(ntohl(address.s_addr), 0x0a010203u);
  EXPECT_TRUE(CTarnFWAddressIPv4("10.1.2.4", true).getAddress(&address));
  EXPECT_EQ(ntohl(address.s_addr), 0x0a010204u);
}

TEST(TarnFWAddressIPv4, WritesItsRecord) {
  CTarnFWAddressIPv4 plain("10.1.2.3", false);
  expectWire(plain, {1, false, {{4, {10, 1, 2, 3}}}});
  CTarnFWAddressIPv4 negated("10.1.2.3", true);
  expectWire(negated, {1, true, {{4, {10, 1, 2, 3}}}});
}

TEST(TarnFWAddressIPv4, ReadsARecord) {
  for (const bool isNegated : {false, true}) {
    const AddressGolden golden{1, isNegated, {{4, {192, 168, 0, 254}}}};
    const FWAddress_ record = golden.record();
    CTarnFWAddressIPv4 address(&record);
    EXPECT_EQ(address.toString(), isNegated ? "not ip 192.168.0.254" : "ip 192.168.0.254");
    expectWire(address, golden);
  }
}

TEST(TarnFWAddressIPv4, OnlyTheLowestFlagOfARecordNegates) {
  FWAddress_ record = AddressGolden{1, false, {}}.record();
  record.flags = 0xfe;
  EXPECT_FALSE(CTarnFWAddressIPv4(&record).isNegated());
}

TEST(TarnFWAddressIPv4, TheLastOctetWeighsMostInTheOrder) {
  const CTarnFWAddressIPv4 low("200.0.0.1", false);
  const CTarnFWAddressIPv4 high("1.0.0.2", false);
  EXPECT_TRUE(low < high);
  EXPECT_FALSE(high < low);
  EXPECT_FALSE(low < low);
}
