#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "AddressRecord.h"
#include "TarnFWAddressIPv6Range.h"

using namespace TarnFirewall;

namespace {

in6_addr ip(const char* text) {
  in6_addr address;
  EXPECT_EQ(inet_pton(AF_INET6, text, &address), 1) << text;
  return address;
}

const std::vector<int> kFirst = {0x20, 1, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
const std::vector<int> kLast = {0x20, 1, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 1};

}  // namespace

TEST(TarnFWAddressIPv6Range, IsAnIPv6Address) {
  const CTarnFWAddressIPv6Range range("2001:db8::1-2001:db8::9", false);
  EXPECT_EQ(range.getType(), 4);
  EXPECT_TRUE(range.isIPAddress());
  EXPECT_FALSE(range.isIPv4Address());
  EXPECT_TRUE(range.isIPv6Address());
}

TEST(TarnFWAddressIPv6Range, HasBothAddressesInItsText) {
  EXPECT_EQ(CTarnFWAddressIPv6Range("2001:db8::1-2001:db8::9", false).toString(),
            "ip 2001:db8::1-2001:db8::9");
  EXPECT_EQ(CTarnFWAddressIPv6Range(" ::1 - ::2 x", true).toString(), "not ip ::1-::2");
}

TEST(TarnFWAddressIPv6Range, ATextMayNameOneAddress) {
  EXPECT_EQ(CTarnFWAddressIPv6Range("2001:db8::1-2001:db8::1", false).toString(),
            "ip 2001:db8::1-2001:db8::1");
}

TEST(TarnFWAddressIPv6Range, RefusesABadTextWithTheWholeText) {
  for (const std::string& text :
       {std::string(), std::string("2001:db8::1"), std::string("2001:db8::1-"),
        std::string("-2001:db8::1"), std::string("2001:db8::9-2001:db8::1"),
        std::string("2001:db9::1-2001:db8::9"), std::string("2001:db8::1-2001:db8::9/64"),
        "::1-" + std::string(1000000, 'f')}) {
    EXPECT_THROW_WITH(CTarnFWAddressIPv6Range(text.c_str(), false), CInvalidAddressException, 33,
                      text);
  }
}

TEST(TarnFWAddressIPv6Range, ATextThatIsAcceptedMayBeRefusedAsARecord) {
  // A text is judged by its bytes, which stored configurations rely on; a record by any word, as
  // the kernel does.
  CTarnFWAddressIPv6Range range("2001:db8::ffff-2001:db9::1", false);
  FWAddress_ record = AddressGolden{4, false, {}}.record();
  ASSERT_TRUE(range.toMessage(&record, sizeof record, nullptr));
  EXPECT_THROW_WITH(CTarnFWAddressIPv6Range{&record}, CInvalidIPv6RangeException, 33,
                    "invalid IPv6 range: 2001:db8::ffff - 2001:db9::1");
}

TEST(TarnFWAddressIPv6Range, NoWordOfFirstMayBeAboveTheSameWordOfLast) {
  EXPECT_EQ(CTarnFWAddressIPv6Range(ip("1:2:3::1"), ip("1:2:3::1"), true).toString(),
            "not ip 1:2:3::1-1:2:3::1");
  // One word each, from the first to the last.
  EXPECT_THROW_WITH(CTarnFWAddressIPv6Range(ip("0:2::"), ip("0:1:1::"), false),
                    CInvalidIPv6RangeException, 33, "invalid IPv6 range: 0:2:: - 0:1:1::");
  EXPECT_THROW_WITH(CTarnFWAddressIPv6Range(ip("0:0:0:2::"), ip("0:1:0:1::"), false),
                    CInvalidIPv6RangeException, 33, "invalid IPv6 range: 0:0:0:2:: - 0:1:0:1::");
  EXPECT_THROW_WITH(CTarnFWAddressIPv6Range(ip("::2:0:0"), ip("0:1::1:0:0"), false),
                    CInvalidIPv6RangeException, 33, "invalid IPv6 range: ::2:0:0 - 0:1::1:0:0");
  EXPECT_THROW_WITH(CTarnFWAddressIPv6Range(ip("::2"), ip("0:1::1"), false),
                    CInvalidIPv6RangeException, 33, "invalid IPv6 range: ::2 - 0:1::1");
}

TEST(TarnFWAddressIPv6Range, AWordIsComparedInHostOrder) {
  const in6_addr first = ip("1::1:ff");
  const in6_addr last = ip("1::2:0");
  EXPECT_EQ(CTarnFWAddressIPv6Range(first, last, false).toString(), "ip 1::1:ff-1::2:0");
}

TEST(TarnFWAddressIPv6Range, GetAddressCopiesTheValuesOut) {
  in6_addr first{};
  in6_addr last{};
  EXPECT_TRUE(CTarnFWAddressIPv6Range("::1-::2", true).getAddress(&first, &last));
  const in6_addr one = ip("::1");
  const in6_addr two = ip("::2");
  EXPECT_EQ(std::memcmp(&first, &one, 16), 0);
  EXPECT_EQ(std::memcmp(&last, &two, 16), 0);
  EXPECT_FALSE(CTarnFWAddressIPv6Range("::1-::2", false).getAddress(&first, &last));
}

TEST(TarnFWAddressIPv6Range, WritesAndReadsItsRecord) {
  for (const bool isNegated : {false, true}) {
    const AddressGolden golden{4, isNegated, {{4, kFirst}, {20, kLast}}};
    CTarnFWAddressIPv6Range range("2001:db8::1-2001:db8::1:1", isNegated);
    expectWire(range, golden);
    const FWAddress_ record = golden.record();
    CTarnFWAddressIPv6Range read(&record);
    EXPECT_EQ(read.toString(), range.toString());
    expectWire(read, golden);
  }
}

TEST(TarnFWAddressIPv6Range, IsOrderedByTheLastWordOfLastFirst) {
  const CTarnFWAddressIPv6Range a("::-0:9::1:0", false);
  const CTarnFWAddressIPv6Range b("::-0:1::2:0", false);
  EXPECT_TRUE(a < b);
  EXPECT_FALSE(b < a);  // the greater word decides, unlike in a single address
}

TEST(TarnFWAddressIPv6Range, OfEqualLastsAnyLesserWordOfFirstDecides) {
  const CTarnFWAddressIPv6Range a("0:1::2:0-0:9::9:0", false);
  const CTarnFWAddressIPv6Range b("0:2::1:0-0:9::9:0", false);
  EXPECT_TRUE(a < b);
  EXPECT_TRUE(b < a);
  EXPECT_FALSE(a < a);
}
