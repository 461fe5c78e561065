#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "TarnFWAddressConvert.h"
#include "TarnFWText.h"

using namespace TarnFirewall;

namespace {

in_addr ipv4(const char* text) {
  in_addr address{};
  EXPECT_EQ(inet_pton(AF_INET, text, &address), 1) << text;
  return address;
}

in6_addr ipv6(const char* text) {
  in6_addr address{};
  EXPECT_EQ(inet_pton(AF_INET6, text, &address), 1) << text;
  return address;
}

in6_addr withLow(std::uint64_t low) {
  in6_addr address = ipv6("2001:db8:7:8::");
  for (int i = 0; i < 8; ++i) {
    address.s6_addr[8 + i] = static_cast<std::uint8_t>(low >> (56 - 8 * i));
  }
  return address;
}

/// A block by its first number and how many low bits it leaves free.
struct Block {
  std::uint64_t first;
  unsigned int freeBits;
  bool operator==(const Block&) const = default;
};

bool collectIPv4(void* context, in_addr block, unsigned int prefix) {
  static_cast<std::vector<Block>*>(context)->push_back({ntohl(block.s_addr), 32 - prefix});
  return true;
}

bool collectIPv6(void* context, in6_addr block, unsigned int prefix) {
  EXPECT_EQ(std::memcmp(&block, withLow(0).s6_addr, 8), 0);
  std::uint64_t low = 0;
  for (int i = 8; i < 16; ++i) low = (low << 8) | block.s6_addr[i];
  static_cast<std::vector<Block>*>(context)->push_back({low, 128 - prefix});
  return true;
}

std::vector<Block> cover4(std::uint32_t first, std::uint32_t last) {
  std::vector<Block> blocks;
  EXPECT_TRUE(ipv4range2cidr(in_addr{htonl(first)}, in_addr{htonl(last)}, &blocks, collectIPv4));
  return blocks;
}

std::vector<Block> cover6(std::uint64_t first, std::uint64_t last) {
  std::vector<Block> blocks;
  EXPECT_TRUE(ipv6range2cidr(withLow(first), withLow(last), &blocks, collectIPv6));
  return blocks;
}

/// The least cover by another way: the binary tree over `bits` bits is walked from its root, and a
/// node that lies in the range whole is a block.
void treeCover(std::uint64_t node, unsigned int freeBits, std::uint64_t first, std::uint64_t last,
               std::vector<Block>& blocks) {
  const std::uint64_t size =
      freeBits == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << freeBits) - 1;
  const std::uint64_t end = node + size;
  if (end < first || node > last) return;
  if (first <= node && end <= last) {
    blocks.push_back({node, freeBits});
    return;
  }
  treeCover(node, freeBits - 1, first, last, blocks);
  treeCover(node + (std::uint64_t{1} << (freeBits - 1)), freeBits - 1, first, last, blocks);
}

std::vector<Block> leastCover(unsigned int bits, std::uint64_t first, std::uint64_t last) {
  std::vector<Block> blocks;
  treeCover(0, bits, first, last, blocks);
  return blocks;
}

/// Every block aligned, the first at `first`, each right after the one before, the last at `last`.
void expectExact(const std::vector<Block>& blocks, std::uint64_t first, std::uint64_t last) {
  ASSERT_FALSE(blocks.empty());
  std::uint64_t next = first;
  for (const Block& block : blocks) {
    EXPECT_EQ(block.first, next);
    const std::uint64_t mask =
        block.freeBits == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << block.freeBits) - 1;
    EXPECT_EQ(block.first & mask, 0u);
    next = block.first + mask + 1;
  }
  EXPECT_EQ(next - 1, last);
}

bool stopAtTwo(void* context, in_addr, unsigned int) { return ++*static_cast<int*>(context) < 2; }
bool stopAtTwo6(void* context, in6_addr, unsigned int) { return ++*static_cast<int*>(context) < 2; }

}  // namespace

TEST(TarnFWAddressConvert, EveryIPv4PrefixGivesItsMaskAndComesBack) {
  for (unsigned int prefix = 0; prefix <= 32; ++prefix) {
    in_addr mask{0x12345678};
    ASSERT_TRUE(cidr2ipv4mask(prefix, &mask));
    std::uint32_t expected = 0;
    for (unsigned int bit = 0; bit < prefix; ++bit) expected |= 0x80000000u >> bit;
    EXPECT_EQ(ntohl(mask.s_addr), expected);
    unsigned char back = 99;
    EXPECT_TRUE(ipv4mask2cidr(mask, &back));
    EXPECT_EQ(back, prefix);
  }
}

TEST(TarnFWAddressConvert, IPv4PrefixZeroIsNoBitAndThirtyTwoIsAll) {
  in_addr mask{1};
  EXPECT_TRUE(cidr2ipv4mask(0, &mask));
  EXPECT_EQ(mask.s_addr, 0u);
  EXPECT_TRUE(cidr2ipv4mask(32, &mask));
  EXPECT_EQ(mask.s_addr, 0xffffffffu);
}

TEST(TarnFWAddressConvert, RefusesAPrefixAboveTheWidthAndANullMask) {
  in_addr mask{7};
  EXPECT_FALSE(cidr2ipv4mask(33, &mask));
  EXPECT_FALSE(cidr2ipv4mask(0xffffffff, &mask));
  EXPECT_EQ(mask.s_addr, 7u);
  EXPECT_FALSE(cidr2ipv4mask(8, nullptr));
  in6_addr mask6 = ipv6("::7");
  EXPECT_FALSE(cidr2ipv6mask(129, &mask6));
  EXPECT_FALSE(cidr2ipv6mask(0xffffffff, &mask6));
  EXPECT_EQ(std::memcmp(&mask6, ipv6("::7").s6_addr, 16), 0);
  EXPECT_FALSE(cidr2ipv6mask(8, nullptr));
}

TEST(TarnFWAddressConvert, EveryIPv6PrefixGivesItsMaskAndComesBack) {
  for (unsigned int prefix = 0; prefix <= 128; ++prefix) {
    in6_addr mask = ipv6("1:2:3:4:5:6:7:8");
    ASSERT_TRUE(cidr2ipv6mask(prefix, &mask));
    in6_addr expected{};
    for (unsigned int bit = 0; bit < prefix; ++bit) {
      expected.s6_addr[bit / 8] =
          static_cast<std::uint8_t>(expected.s6_addr[bit / 8] | (0x80 >> (bit % 8)));
    }
    EXPECT_EQ(std::memcmp(&mask, &expected, 16), 0) << prefix;
    unsigned char back = 255;
    EXPECT_TRUE(ipv6mask2cidr(mask, &back));
    EXPECT_EQ(back, prefix);
  }
}

TEST(TarnFWAddressConvert, AMaskWithAHoleStoresItsLeadingOnesAndFails) {
  unsigned char prefix = 99;
  EXPECT_FALSE(ipv4mask2cidr(ipv4("255.0.255.0"), &prefix));
  EXPECT_EQ(prefix, 8);
  EXPECT_FALSE(ipv4mask2cidr(ipv4("0.0.0.1"), &prefix));
  EXPECT_EQ(prefix, 0);
  EXPECT_FALSE(ipv4mask2cidr(ipv4("127.255.255.255"), &prefix));
  EXPECT_EQ(prefix, 0);
}

TEST(TarnFWAddressConvert, AnIPv6MaskWithAHoleInOrBetweenWordsFails) {
  const struct {
    const char* mask;
    unsigned char prefix;
  } kCases[] = {
      {"ffff:ffff:ffff::1", 48},            // a bit in the last word
      {"ffff:ffff:0:ffff::", 32},           // a hole at the start of the second word
      {"ffff:fffe:ffff::", 31},             // the next word is set again
      {"ff00:1::", 8},                      // a bit later in the same word
      {"::1", 0},                           // nothing leads
      {"ffff:ffff:ffff:ffff:fffe::1", 79},  // two words apart
  };
  for (const auto& c : kCases) {
    unsigned char prefix = 255;
    EXPECT_FALSE(ipv6mask2cidr(ipv6(c.mask), &prefix)) << c.mask;
    EXPECT_EQ(prefix, c.prefix) << c.mask;
  }
}

TEST(TarnFWAddressConvert, TheRangeOneToSixGivesFourBlocksInOrder) {
  EXPECT_EQ(
      cover4(0x0a000001, 0x0a000006),
      (std::vector<Block>{{0x0a000001, 0}, {0x0a000002, 1}, {0x0a000004, 1}, {0x0a000006, 0}}));
}

TEST(TarnFWAddressConvert, ATwoAddressRangeIsABlockOnlyWhenItIsAligned) {
  EXPECT_EQ(cover4(0x0a000001, 0x0a000002), (std::vector<Block>{{0x0a000001, 0}, {0x0a000002, 0}}));
  EXPECT_EQ(cover4(0x0a000000, 0x0a000001), (std::vector<Block>{{0x0a000000, 1}}));
}

TEST(TarnFWAddressConvert, TheWholeSpaceIsOneBlock) {
  EXPECT_EQ(cover4(0, 0xffffffff), (std::vector<Block>{{0, 32}}));
  EXPECT_EQ(cover6(0, ~std::uint64_t{0}), (std::vector<Block>{{0, 64}}));
}

TEST(TarnFWAddressConvert, ALoneLastAddressDoesNotWrapAround) {
  EXPECT_EQ(cover4(0xffffffff, 0xffffffff), (std::vector<Block>{{0xffffffff, 0}}));
  EXPECT_EQ(cover6(~std::uint64_t{0}, ~std::uint64_t{0}),
            (std::vector<Block>{{~std::uint64_t{0}, 0}}));
}

TEST(TarnFWAddressConvert, AStartAboveTheEndSucceedsWithNoBlock) {
  EXPECT_TRUE(cover4(0x0a000002, 0x0a000001).empty());
  EXPECT_TRUE(cover6(2, 1).empty());
}

TEST(TarnFWAddressConvert, AnIPv6RangeAcrossItsUpperHalfFailsWithNoCall) {
  std::vector<Block> blocks;
  EXPECT_FALSE(ipv6range2cidr(ipv6("2001:db8::ffff:ffff:ffff:ffff"), ipv6("2001:db8:0:1::"),
                              &blocks, collectIPv6));
  EXPECT_FALSE(ipv6range2cidr(ipv6("2001:db8::"), ipv6("2001:db9::"), &blocks, collectIPv6));
  EXPECT_TRUE(blocks.empty());
}

TEST(TarnFWAddressConvert, AFalseCallbackEndsTheWalk) {
  int calls = 0;
  EXPECT_FALSE(ipv4range2cidr(ipv4("10.0.0.1"), ipv4("10.0.0.6"), &calls, stopAtTwo));
  EXPECT_EQ(calls, 2);
  calls = 0;
  EXPECT_FALSE(ipv6range2cidr(withLow(1), withLow(6), &calls, stopAtTwo6));
  EXPECT_EQ(calls, 2);
}

TEST(TarnFWAddressConvert, WithoutACallbackOnlyTheWalkIsDone) {
  EXPECT_TRUE(ipv4range2cidr(ipv4("10.0.0.1"), ipv4("10.0.0.6"), nullptr, nullptr));
  EXPECT_TRUE(ipv6range2cidr(withLow(1), withLow(6), nullptr, nullptr));
}

TEST(TarnFWAddressConvert, EveryRangeOfASmallSpaceIsCoveredExactlyAndByTheFewestBlocks) {
  for (std::uint32_t base : {0u, 0x0a000000u, 0xffffff80u}) {
    for (std::uint32_t first = 0; first < 128; ++first) {
      for (std::uint32_t last = first; last < 128; ++last) {
        const std::vector<Block> blocks = cover4(base + first, base + last);
        expectExact(blocks, base + first, base + last);
        ASSERT_EQ(blocks, leastCover(32, base + first, base + last));
      }
    }
  }
  for (std::uint64_t base : {std::uint64_t{0}, ~std::uint64_t{0} - 63}) {
    for (std::uint64_t first = 0; first < 64; ++first) {
      for (std::uint64_t last = first; last < 64; ++last) {
        const std::vector<Block> blocks = cover6(base + first, base + last);
        expectExact(blocks, base + first, base + last);
        ASSERT_EQ(blocks, leastCover(64, base + first, base + last));
      }
    }
  }
}

TEST(TarnFWAddressConvert, LargeRandomRangesAreCoveredExactlyAndByTheFewestBlocks) {
  std::mt19937_64 random(20240611);
  for (int i = 0; i < 20000; ++i) {
    // Shifts of random width give short ranges as well as those over most of the space.
    std::uint64_t a = random() >> (random() % 64);
    std::uint64_t b = random() >> (random() % 64);
    if (a > b) std::swap(a, b);
    const std::vector<Block> six = cover6(a, b);
    expectExact(six, a, b);
    ASSERT_EQ(six, leastCover(64, a, b)) << a << " " << b;
    auto a4 = static_cast<std::uint32_t>(a);
    auto b4 = static_cast<std::uint32_t>(b);
    if (a4 > b4) std::swap(a4, b4);
    const std::vector<Block> four = cover4(a4, b4);
    expectExact(four, a4, b4);
    ASSERT_EQ(four, leastCover(32, a4, b4)) << a4 << " " << b4;
  }
}

TEST(TarnFWAddressConvert, AddressTypesMapToTheSetThatHoldsThem) {
  EXPECT_EQ(addr_type_to_addrset_type(0), FW_ADDRSET_ANY);
  for (unsigned int type = 1; type <= 6; ++type) {
    EXPECT_EQ(addr_type_to_addrset_type(type), FW_ADDRSET_IP) << type;
  }
  EXPECT_EQ(addr_type_to_addrset_type(7), FW_ADDRSET_MAC);
  EXPECT_EQ(addr_type_to_addrset_type(8), FW_ADDRSET_ANY);
  EXPECT_EQ(addr_type_to_addrset_type(0xffffffff), FW_ADDRSET_ANY);
}
