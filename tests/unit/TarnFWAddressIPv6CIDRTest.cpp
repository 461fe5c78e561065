#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "AddressRecord.h"
#include "TarnFWAddressIPv6CIDR.h"

using namespace TarnFirewall;

namespace {

in6_addr ip(const char* text) {
  in6_addr address;
  EXPECT_EQ(inet_pton(AF_INET6, text, &address), 1) << text;
  return address;
}

}  // namespace

TEST(TarnFWAddressIPv6CIDR, IsAnIPv6Address) {
  const CTarnFWAddressIPv6CIDR block("2001:db8::1/64", false);
  EXPECT_EQ(block.getType(), 6);
  EXPECT_TRUE(block.isIPAddress());
  EXPECT_FALSE(block.isIPv4Address());
  EXPECT_TRUE(block.isIPv6Address());
}

TEST(TarnFWAddressIPv6CIDR, PrintsItsHostBitsAndWritesNone) {
  CTarnFWAddressIPv6CIDR block("2001:db8::1234/40", true);
  EXPECT_EQ(block.toString(), "not ip 2001:db8::1234/40");
  expectWire(
      block,
      {6, true, {{4, {0x20, 1, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}}, {20, {40}}}});
}

TEST(TarnFWAddressIPv6CIDR, EveryPrefixLengthIsAccepted) {
  for (unsigned int prefix = 0; prefix <= 128; ++prefix) {
    const std::string text = "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff/" + std::to_string(prefix);
    CTarnFWAddressIPv6CIDR block(text.c_str(), false);
    EXPECT_EQ(block.toString(), "ip " + text);
    std::vector<int> masked(16, 0);
    for (unsigned int bit = 0; bit < prefix; ++bit) masked[bit / 8] |= 0x80 >> (bit % 8);
    expectWire(block, {6, false, {{4, masked}, {20, {static_cast<int>(prefix)}}}});
  }
}

TEST(TarnFWAddressIPv6CIDR, AMaskGivesItsPrefixLengthAndIsKept) {
  const CTarnFWAddressIPv6CIDR block("2001:db8::1/ffff:ffff:ff00::", false);
  EXPECT_EQ(block.toString(), "ip 2001:db8::1/40");
  in6_addr address{};
  in6_addr mask{};
  unsigned char prefix = 0;
  EXPECT_FALSE(block.getAddress(&address, &prefix, &mask));
  const in6_addr expected = ip("ffff:ffff:ff00::");
  EXPECT_EQ(std::memcmp(&mask, &expected, 16), 0);
  EXPECT_EQ(prefix, 40);
  EXPECT_EQ(CTarnFWAddressIPv6CIDR("2001:db8::1/::", false).toString(), "ip 2001:db8::1/0");
}

TEST(TarnFWAddressIPv6CIDR, RefusesABadTextWithTheWholeText) {
  for (const std::string& text :
       {std::string(), std::string("2001:db8::1"), std::string("2001:db8::1/"), std::string("/64"),
        std::string("2001:db8::1/129"), std::string("2001:db8::1/-1"),
        std::string("2001:db8::1/64x"), std::string("2001:db8::1/ffff::ffff"),
        std::string("2001:db8::1/ffff:"), std::string("2001:db8/64"),
        std::string("2001:db8::1/255.0.0.0"), "::/" + std::string(1000000, '9')}) {
    EXPECT_THROW_WITH(CTarnFWAddressIPv6CIDR(text.c_str(), false), CInvalidAddressException, 33,
                      text);
  }
}

TEST(TarnFWAddressIPv6CIDR, RefusesAPrefixLengthAbove128) {
  EXPECT_EQ(CTarnFWAddressIPv6CIDR(ip("::1"), 128, false).toString(), "ip ::1/128");
  EXPECT_THROW_WITH(CTarnFWAddressIPv6CIDR(ip("::1"), 129, false), CInvalidAddressException, 33,
                    "invalid ipv6 cidr: 129");
  const FWAddress_ record = AddressGolden{6, false, {{20, {255}}}}.record();
  EXPECT_THROW_WITH(CTarnFWAddressIPv6CIDR{&record}, CInvalidAddressException, 33,
                    "invalid ipv6 cidr: 255");
}

TEST(TarnFWAddressIPv6CIDR, ReadsARecordWithItsHostBits) {
  const FWAddress_ record = AddressGolden{
      6,
      true,
      {{4, {0x20, 1, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}},
       {20, {32}}}}.record();
  const CTarnFWAddressIPv6CIDR block(&record);
  EXPECT_EQ(block.toString(), "not ip 2001:db8::1/32");
  in6_addr address{};
  unsigned char prefix = 0;
  EXPECT_TRUE(block.getAddress(&address, &prefix));
  EXPECT_EQ(prefix, 32);
  EXPECT_EQ(address.s6_addr[15], 1);
}

TEST(TarnFWAddressIPv6CIDR, IsOrderedByPrefixLengthThenByAnyLesserWord) {
  const CTarnFWAddressIPv6CIDR shorter("9::9/64", false);
  const CTarnFWAddressIPv6CIDR longer("1::1/65", false);
  EXPECT_TRUE(shorter < longer);
  EXPECT_FALSE(longer < shorter);
  const CTarnFWAddressIPv6CIDR a("0:1::2:0/64", false);
  const CTarnFWAddressIPv6CIDR b("0:2::1:0/64", false);
  EXPECT_TRUE(a < b);
  EXPECT_TRUE(b < a);
  EXPECT_FALSE(a < a);
}
