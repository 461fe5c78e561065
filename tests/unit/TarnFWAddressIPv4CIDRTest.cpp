#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <string>

#include "AddressRecord.h"
#include "TarnFWAddressIPv4CIDR.h"

using namespace TarnFirewall;

namespace {

in_addr ip(std::uint32_t host) { return {htonl(host)}; }

}  // namespace

TEST(TarnFWAddressIPv4CIDR, IsAnIPv4Address) {
  const CTarnFWAddressIPv4CIDR block("1.2.3.4/24", false);
  EXPECT_EQ(block.getType(), 5);
  EXPECT_TRUE(block.isIPAddress());
  EXPECT_TRUE(block.isIPv4Address());
  EXPECT_FALSE(block.isIPv6Address());
  static_assert(sizeof(CTarnFWAddressIPv4CIDR) <= 24);
}

TEST(TarnFWAddressIPv4CIDR, PrintsItsHostBitsAndWritesNone) {
  CTarnFWAddressIPv4CIDR block("1.2.3.4/24", false);
  EXPECT_EQ(block.toString(), "ip 1.2.3.4/24");
  expectWire(block, {5, false, {{4, {1, 2, 3, 0}}, {8, {24}}}});
}

TEST(TarnFWAddressIPv4CIDR, EveryPrefixLengthIsAccepted) {
  for (unsigned int prefix = 0; prefix <= 32; ++prefix) {
    const std::string text = "255.255.255.255/" + std::to_string(prefix);
    const CTarnFWAddressIPv4CIDR block(text.c_str(), true);
    EXPECT_EQ(block.toString(), "not ip " + text);
    in_addr address{};
    in_addr mask{};
    unsigned char got = 99;
    EXPECT_TRUE(block.getAddress(&address, &got, &mask));
    EXPECT_EQ(address.s_addr, 0xffffffffu);
    EXPECT_EQ(got, prefix);
    EXPECT_EQ(ntohl(mask.s_addr), prefix == 0 ? 0 : 0xffffffffu << (32 - prefix));
    EXPECT_EQ(CTarnFWAddressIPv4CIDR(ip(1), static_cast<unsigned char>(prefix), false).toString(),
              "ip 0.0.0.1/" + std::to_string(prefix));
  }
}

TEST(TarnFWAddressIPv4CIDR, AMaskGivesItsPrefixLengthAndIsKept) {
  CTarnFWAddressIPv4CIDR block("1.2.3.4/255.255.0.0", false);
  EXPECT_EQ(block.toString(), "ip 1.2.3.4/16");
  in_addr address{};
  in_addr mask{};
  unsigned char prefix = 0;
  EXPECT_FALSE(block.getAddress(&address, &prefix, &mask));
  EXPECT_EQ(ntohl(address.s_addr), 0x01020304u);
  EXPECT_EQ(prefix, 16);
  EXPECT_EQ(ntohl(mask.s_addr), 0xffff0000u);
  expectWire(block, {5, false, {{4, {1, 2, 0, 0}}, {8, {16}}}});
  EXPECT_EQ(CTarnFWAddressIPv4CIDR("1.2.3.4/0.0.0.0", false).toString(), "ip 1.2.3.4/0");
  EXPECT_EQ(CTarnFWAddressIPv4CIDR("1.2.3.4/255.255.255.255", false).toString(), "ip 1.2.3.4/32");
}

TEST(TarnFWAddressIPv4CIDR, BlanksAroundTheAddressDoNotCount) {
  EXPECT_EQ(CTarnFWAddressIPv4CIDR(" 1.2.3.4 x/ 24", false).toString(), "ip 1.2.3.4/24");
  EXPECT_EQ(CTarnFWAddressIPv4CIDR("1.2.3.4/ 255.0.0.0 x", false).toString(), "ip 1.2.3.4/8");
}

TEST(TarnFWAddressIPv4CIDR, RefusesABadTextWithTheWholeText) {
  for (const std::string& text :
       {std::string(), std::string("1.2.3.4"), std::string("1.2.3.4/"), std::string("/24"),
        std::string("1.2.3.4/33"), std::string("1.2.3.4/-1"), std::string("1.2.3.4/24x"),
        std::string("1.2.3.4/24 "), std::string("1.2.3/24"), std::string("1.2.3.4/255.0.255.0"),
        std::string("1.2.3.4/255.255.255.1"), std::string("1.2.3.4/255.255"),
        std::string("1.2.3.4/24/24"), "1.2.3.4/" + std::string(1000000, '0') + "x",
        std::string(1000000, '1') + "/24"}) {
    EXPECT_THROW_WITH(CTarnFWAddressIPv4CIDR(text.c_str(), false), CInvalidAddressException, 33,
                      text);
  }
  EXPECT_THROW_WITH(CTarnFWAddressIPv4CIDR(static_cast<const char*>(nullptr), false),
                    CInvalidAddressException, 33, "");
}

TEST(TarnFWAddressIPv4CIDR, RefusesAPrefixLengthAbove32) {
  EXPECT_THROW_WITH(CTarnFWAddressIPv4CIDR(ip(1), 33, false), CInvalidAddressException, 33,
                    "invalid ipv4 cidr: 33");
  EXPECT_THROW_WITH(CTarnFWAddressIPv4CIDR(ip(1), 255, false), CInvalidAddressException, 33,
                    "invalid ipv4 cidr: 255");
  const FWAddress_ record = AddressGolden{5, false, {{8, {33}}}}.record();
  EXPECT_THROW_WITH(CTarnFWAddressIPv4CIDR{&record}, CInvalidAddressException, 33,
                    "invalid ipv4 cidr: 33");
}

TEST(TarnFWAddressIPv4CIDR, ReadsARecordWithItsHostBits) {
  const FWAddress_ record = AddressGolden{5, true, {{4, {1, 2, 3, 4}}, {8, {24}}}}.record();
  CTarnFWAddressIPv4CIDR block(&record);
  EXPECT_EQ(block.toString(), "not ip 1.2.3.4/24");
  in_addr address{};
  unsigned char prefix = 0;
  EXPECT_TRUE(block.getAddress(&address, &prefix));
  EXPECT_EQ(ntohl(address.s_addr), 0x01020304u);
  EXPECT_EQ(prefix, 24);
  expectWire(block, {5, true, {{4, {1, 2, 3, 0}}, {8, {24}}}});
}

TEST(TarnFWAddressIPv4CIDR, IsOrderedByPrefixLengthThenByTheUnmaskedAddress) {
  const CTarnFWAddressIPv4CIDR shorter("9.9.9.9/8", false);
  const CTarnFWAddressIPv4CIDR longer("1.1.1.1/9", false);
  EXPECT_TRUE(shorter < longer);
  EXPECT_FALSE(longer < shorter);
  const CTarnFWAddressIPv4CIDR low("9.0.0.1/8", false);
  const CTarnFWAddressIPv4CIDR high("1.0.0.2/8", false);
  EXPECT_TRUE(low < high);
  EXPECT_FALSE(high < low);
  EXPECT_FALSE(low < low);
}
