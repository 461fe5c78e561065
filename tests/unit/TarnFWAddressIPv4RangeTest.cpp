#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <string>

#include "AddressRecord.h"
#include "TarnFWAddressIPv4Range.h"

using namespace TarnFirewall;

namespace {

in_addr ip(std::uint32_t host) { return {htonl(host)}; }

}  // namespace

TEST(TarnFWAddressIPv4Range, IsAnIPv4Address) {
  const CTarnFWAddressIPv4Range range("10.0.0.5-10.0.0.9", false);
  EXPECT_EQ(range.getType(), 3);
  EXPECT_TRUE(range.isIPAddress());
  EXPECT_TRUE(range.isIPv4Address());
  EXPECT_FALSE(range.isIPv6Address());
}

TEST(TarnFWAddressIPv4Range, HasBothAddressesInItsText) {
  EXPECT_EQ(CTarnFWAddressIPv4Range("10.0.0.5-10.0.0.9", false).toString(), "ip 10.0.0.5-10.0.0.9");
  EXPECT_EQ(CTarnFWAddressIPv4Range(ip(5), ip(6), true).toString(), "not ip 0.0.0.5-0.0.0.6");
}

TEST(TarnFWAddressIPv4Range, BlanksAroundTheAddressesDoNotCount) {
  EXPECT_EQ(CTarnFWAddressIPv4Range(" 10.0.0.5 - 10.0.0.9 junk", true).toString(),
            "not ip 10.0.0.5-10.0.0.9");
}

TEST(TarnFWAddressIPv4Range, RefusesARangeOfOneAddress) {
  EXPECT_THROW_WITH(CTarnFWAddressIPv4Range("10.0.0.5-10.0.0.5", false), CInvalidAddressException,
                    33, "10.0.0.5-10.0.0.5");
}

TEST(TarnFWAddressIPv4Range, RefusesAFallingRange) {
  EXPECT_THROW_WITH(CTarnFWAddressIPv4Range("10.0.0.9-10.0.0.5", false), CInvalidAddressException,
                    33, "10.0.0.9-10.0.0.5");
}

TEST(TarnFWAddressIPv4Range, ComparesNumbersAndNotTexts) {
  EXPECT_EQ(CTarnFWAddressIPv4Range("10.0.0.9-10.0.0.10", false).toString(),
            "ip 10.0.0.9-10.0.0.10");
  EXPECT_EQ(CTarnFWAddressIPv4Range("0.0.0.255-1.0.0.0", false).toString(), "ip 0.0.0.255-1.0.0.0");
}

TEST(TarnFWAddressIPv4Range, RefusesABadTextWithTheWholeText) {
  for (const std::string& text :
       {std::string(), std::string("10.0.0.5"), std::string("10.0.0.5-"), std::string("-10.0.0.5"),
        std::string("-"), std::string("10.0.0.5-x"), std::string("1.2.3.4-1.2.3.9/24"),
        std::string("1.2.3.4-1.2.3.9-1.2.3.10"), std::string(46, '1') + "-10.0.0.1",
        "10.0.0.1-" + std::string(1000000, '1')}) {
    EXPECT_THROW_WITH(CTarnFWAddressIPv4Range(text.c_str(), false), CInvalidAddressException, 33,
                      text);
  }
  EXPECT_THROW_WITH(CTarnFWAddressIPv4Range(static_cast<const char*>(nullptr), false),
                    CInvalidAddressException, 33, "");
}

TEST(TarnFWAddressIPv4Range, TwoValuesThatDoNotRiseAreRefusedWithBoth) {
  EXPECT_THROW_WITH(CTarnFWAddressIPv4Range(ip(0x0a000005), ip(0x0a000005), false),
                    CInvalidIPv4RangeException, 33, "invalid IPv4 range: 10.0.0.5 - 10.0.0.5");
  EXPECT_THROW_WITH(CTarnFWAddressIPv4Range(ip(0x0a000009), ip(0x0a000005), false),
                    CInvalidIPv4RangeException, 33, "invalid IPv4 range: 10.0.0.9 - 10.0.0.5");
}

TEST(TarnFWAddressIPv4Range, GetAddressCopiesTheValuesOut) {
  in_addr first{};
  in_addr last{};
  EXPECT_FALSE(CTarnFWAddressIPv4Range(ip(5), ip(9), false).getAddress(&first, &last));
  EXPECT_EQ(first.s_addr, htonl(5));
  EXPECT_EQ(last.s_addr, htonl(9));
  EXPECT_TRUE(CTarnFWAddressIPv4Range(ip(5), ip(9), true).getAddress(&first, &last));
}

TEST(TarnFWAddressIPv4Range, WritesItsRecord) {
  for (const bool isNegated : {false, true}) {
    CTarnFWAddressIPv4Range range("10.0.0.5-10.1.0.0", isNegated);
    expectWire(range, {3, isNegated, {{4, {10, 0, 0, 5}}, {8, {10, 1, 0, 0}}}});
  }
}

TEST(TarnFWAddressIPv4Range, ReadsARecord) {
  const AddressGolden golden{3, true, {{4, {10, 0, 0, 5}}, {8, {10, 1, 0, 0}}}};
  const FWAddress_ record = golden.record();
  CTarnFWAddressIPv4Range range(&record);
  EXPECT_EQ(range.toString(), "not ip 10.0.0.5-10.1.0.0");
  expectWire(range, golden);
}

TEST(TarnFWAddressIPv4Range, RefusesARecordThatDoesNotRise) {
  const FWAddress_ record =
      AddressGolden{3, false, {{4, {10, 0, 0, 5}}, {8, {10, 0, 0, 5}}}}.record();
  EXPECT_THROW_WITH(CTarnFWAddressIPv4Range{&record}, CInvalidIPv4RangeException, 33,
                    "invalid IPv4 range: 10.0.0.5 - 10.0.0.5");
}

TEST(TarnFWAddressIPv4Range, IsOrderedByLastThenFirstWithTheLastOctetWeighingMost) {
  const CTarnFWAddressIPv4Range a("1.0.0.9-9.0.0.1", false);
  const CTarnFWAddressIPv4Range b("1.0.0.1-2.0.0.2", false);
  EXPECT_TRUE(a < b);
  EXPECT_FALSE(b < a);
  const CTarnFWAddressIPv4Range c("2.0.0.1-9.0.0.1", false);
  EXPECT_TRUE(c < a);
  EXPECT_FALSE(a < c);
  EXPECT_FALSE(a < a);
}
