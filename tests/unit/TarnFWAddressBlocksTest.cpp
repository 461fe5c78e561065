#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <memory>

#include "AddressRecord.h"
#include "Message.h"
#include "TarnFWAddressBlocks.h"
#include "TarnFWAddressList.h"

using namespace TarnFirewall;

namespace {

in_addr ip(std::uint32_t host) { return {htonl(host)}; }

std::unique_ptr<CTarnFWAddressIPv4Blocks> blocks(std::uint32_t first, std::uint32_t last) {
  unsigned int count = 0;
  EXPECT_TRUE(CTarnFWAddressIPv4Blocks::countOf(ip(first), ip(last), &count));
  return std::make_unique<CTarnFWAddressIPv4Blocks>(ip(first), ip(last), count);
}

/// 10.0.0.1, 10.0.0.2/31, 10.0.0.4/30, 10.0.0.8/31
std::unique_ptr<CTarnFWAddressIPv4Blocks> oneToNine() { return blocks(0x0a000001, 0x0a000009); }

in6_addr ip6(std::uint8_t high, std::uint8_t low) {
  in6_addr address{};
  address.s6_addr[0] = high;
  address.s6_addr[15] = low;
  return address;
}

}  // namespace

TEST(TarnFWAddressBlocks, CountsTheBlocksOfARange) {
  EXPECT_EQ(oneToNine()->getCount(), 4u);
  EXPECT_EQ(blocks(1, 0xfffffffe)->getCount(), 62u);
  EXPECT_EQ(blocks(0, 0xffffffff)->getCount(), 1u);
  unsigned int count = 5;
  EXPECT_FALSE(CTarnFWAddressIPv6Blocks::countOf(ip6(1, 0), ip6(2, 0), &count));
  EXPECT_EQ(count, 0u);
  EXPECT_TRUE(CTarnFWAddressIPv6Blocks::countOf(ip6(1, 1), ip6(1, 5), &count));
  EXPECT_EQ(count, 3u);
}

TEST(TarnFWAddressBlocks, WritesARecordForEachBlock) {
  Bytes expected(4 * 144);
  expected.at(0, {1, 0, 0, 0, 10, 0, 0, 1});
  expected.at(144, {5, 0, 0, 0, 10, 0, 0, 2, 31});
  expected.at(288, {5, 0, 0, 0, 10, 0, 0, 4, 30});
  expected.at(432, {5, 0, 0, 0, 10, 0, 0, 8, 31});
  EXPECT_EQ(messageOf(*oneToNine(), 0), expected);
  expectShortBuffersRefused(*oneToNine());
}

TEST(TarnFWAddressBlocks, WritesBlocksOfIPv6) {
  CTarnFWAddressIPv6Blocks six(ip6(0x20, 1), ip6(0x20, 5), 3);
  Bytes expected(3 * 144);
  expected.at(0, {2}).at(4, {0x20}).at(19, {1});
  expected.at(144, {6}).at(148, {0x20}).at(163, {2, 127});
  expected.at(288, {6}).at(292, {0x20}).at(307, {4, 127});
  EXPECT_EQ(messageOf(six, 0), expected);
  EXPECT_TRUE(six.areIPv6());
  EXPECT_FALSE(oneToNine()->areIPv6());
  EXPECT_EQ(six.toString(), "ip 2000::1, ip 2000::2/127, ip 2000::4/127");
}

TEST(TarnFWAddressBlocks, IsTheTextOfItsBlocks) {
  EXPECT_EQ(oneToNine()->toString(), "ip 10.0.0.1, ip 10.0.0.2/31, ip 10.0.0.4/30, ip 10.0.0.8/31");
}

TEST(TarnFWAddressBlocks, MakesItsBlocksAsAddresses) {
  const auto addresses = oneToNine()->makeAddresses();
  ASSERT_EQ(addresses.size(), 4u);
  EXPECT_EQ(addresses[0]->toString(), "ip 10.0.0.1");
  EXPECT_EQ(addresses[3]->toString(), "ip 10.0.0.8/31");
}

TEST(TarnFWAddressBlocks, IsAListThatIsNotComparable) {
  EXPECT_EQ(oneToNine()->getType(), 132);
  EXPECT_THROW_WITH(static_cast<void>(*oneToNine() < *oneToNine()), CInvalidAddressException, 33,
                    "compare address two sets");
  EXPECT_TRUE(CTarnFWAddressIPv4(ip(1), false) < *oneToNine());
  EXPECT_FALSE(*oneToNine() < CTarnFWAddressIPv4(ip(1), false));
}

TEST(TarnFWAddressBlocks, CountAsAddressesOfTheirSet) {
  CTarnFWAddressList list(false);
  EXPECT_TRUE(list.addAddress(std::make_unique<CTarnFWAddressIPv4>("10.0.0.77", false)));
  list.addBlocks(oneToNine());
  EXPECT_EQ(list.getAddresses().size(), 2u);
  EXPECT_EQ(list.getAddressCount(), 5u);
  EXPECT_EQ(list.getMsgSize(), 5 * 144u);
  EXPECT_FALSE(list.hasIPv6());
  EXPECT_EQ(list.toString(),
            "{ip 10.0.0.77, ip 10.0.0.1, ip 10.0.0.2/31, ip 10.0.0.4/30, ip 10.0.0.8/31}");
  Bytes expected(5 * 144);
  expected.at(0, {1, 0, 0, 0, 10, 0, 0, 77}).at(144, {1, 0, 0, 0, 10, 0, 0, 1});
  expected.at(288, {5, 0, 0, 0, 10, 0, 0, 2, 31}).at(432, {5, 0, 0, 0, 10, 0, 0, 4, 30});
  expected.at(576, {5, 0, 0, 0, 10, 0, 0, 8, 31});
  EXPECT_EQ(messageOf(list, 0), expected);
  list.addBlocks(std::make_unique<CTarnFWAddressIPv6Blocks>(ip6(0x20, 1), ip6(0x20, 5), 3));
  EXPECT_TRUE(list.hasIPv6());
}

TEST(TarnFWAddressBlocks, AreHandedOverEachByItself) {
  CTarnFWAddressList list(false);
  list.addBlocks(oneToNine());
  EXPECT_TRUE(list.addAddress(std::make_unique<CTarnFWAddressIPv4>("10.0.0.77", false)));
  const auto addresses = list.takeAddresses();
  ASSERT_EQ(addresses.size(), 5u);
  EXPECT_EQ(addresses[2]->toString(), "ip 10.0.0.4/30");
  EXPECT_EQ(addresses[4]->toString(), "ip 10.0.0.77");
  EXPECT_EQ(list.getAddressCount(), 0u);
  EXPECT_EQ(list.toString(), "{}");
}

TEST(TarnFWAddressBlocks, OfMoreThanAMessageHoldsAreCountedAndNotKept) {
  constexpr unsigned int kMost = 29826161;  // of 144 bytes each in 32 bits
  CTarnFWAddressList list(false);
  const auto add = [&] { list.addBlocks(blocks(1, 0xfffffffe)); };
  for (unsigned int i = 0; i < kMost / 62; ++i) add();
  EXPECT_EQ(list.getMsgSize(), kMost / 62 * 62 * 144);
  EXPECT_FALSE(list.isFull());
  add();
  EXPECT_TRUE(list.isFull());
  add();
  EXPECT_EQ(list.getAddresses().size(), kMost / 62 + 1);
  EXPECT_THROW_WITH(static_cast<void>(list.getMsgSize()), CIntegerOverflowException, 17,
                    "too many addresses: 29826278");
}
