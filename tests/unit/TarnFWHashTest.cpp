#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "TarnFWHash.h"

namespace {

std::uint32_t rot(std::uint32_t x, int k) { return (x << k) | (x >> (32 - k)); }

/// lookup3 as it is published for hosts without aligned reads: one byte at a time, the tail by
/// falling through the cases.
std::uint64_t referenceHash(const unsigned char* k, std::size_t length, std::uint32_t pc,
                            std::uint32_t pb) {
  std::uint32_t a = 0xdeadbeef + static_cast<std::uint32_t>(length) + pc;
  std::uint32_t b = a;
  std::uint32_t c = a;
  c += pb;
  const auto both = [&] { return (static_cast<std::uint64_t>(b) << 32) | c; };
  const auto byte = [](unsigned char v, int shift) {
    return static_cast<std::uint32_t>(v) << shift;
  };
  while (length > 12) {
    a += byte(k[0], 0) + byte(k[1], 8) + byte(k[2], 16) + byte(k[3], 24);
    b += byte(k[4], 0) + byte(k[5], 8) + byte(k[6], 16) + byte(k[7], 24);
    c += byte(k[8], 0) + byte(k[9], 8) + byte(k[10], 16) + byte(k[11], 24);
    // clang-format off
    a -= c; a ^= rot(c, 4);  c += b;
    b -= a; b ^= rot(a, 6);  a += c;
    c -= b; c ^= rot(b, 8);  b += a;
    a -= c; a ^= rot(c, 16); c += b;
    b -= a; b ^= rot(a, 19); a += c;
    c -= b; c ^= rot(b, 4);  b += a;
    // clang-format on
    length -= 12;
    k += 12;
  }
  switch (length) {
    case 12:
      c += byte(k[11], 24);
      [[fallthrough]];
    case 11:
      c += byte(k[10], 16);
      [[fallthrough]];
    case 10:
      c += byte(k[9], 8);
      [[fallthrough]];
    case 9:
      c += byte(k[8], 0);
      [[fallthrough]];
    case 8:
      b += byte(k[7], 24);
      [[fallthrough]];
    case 7:
      b += byte(k[6], 16);
      [[fallthrough]];
    case 6:
      b += byte(k[5], 8);
      [[fallthrough]];
    case 5:
      b += byte(k[4], 0);
      [[fallthrough]];
    case 4:
      a += byte(k[3], 24);
      [[fallthrough]];
    case 3:
      a += byte(k[2], 16);
      [[fallthrough]];
    case 2:
      a += byte(k[1], 8);
      [[fallthrough]];
    case 1:
      a += byte(k[0], 0);
      break;
    case 0:
      return both();
  }
  // clang-format off
  c ^= b; c -= rot(b, 14);
  a ^= c; a -= rot(c, 11);
  b ^= a; b -= rot(a, 25);
  c ^= b; c -= rot(b, 16);
  a ^= c; a -= rot(c, 4);
  b ^= a; b -= rot(a, 14);
  c ^= b; c -= rot(b, 24);
  // clang-format on
  return both();
}

const std::string kGettysburg = "Four score and seven years ago";

std::uint64_t seed(std::uint32_t primary, std::uint32_t secondary) {
  return (static_cast<std::uint64_t>(secondary) << 32) | primary;
}

}  // namespace

TEST(TarnFWHash, Jhash32GivesThePublishedVectors) {
  EXPECT_EQ(jhash32("", 0, 0), 0xdeadbeefu);
  EXPECT_EQ(jhash32(nullptr, 0, 0xdeadbeef), 0xbd5b7ddeu);
  EXPECT_EQ(jhash32(kGettysburg.data(), 30, 0), 0x17770551u);
  EXPECT_EQ(jhash32(kGettysburg.data(), 30, 1), 0xcd628161u);
}

TEST(TarnFWHash, Jhash64GivesThePublishedVectors) {
  EXPECT_EQ(jhash64("", 0, 0), 0xdeadbeefdeadbeefu);
  EXPECT_EQ(jhash64("", 0, seed(0, 0xdeadbeef)), 0xdeadbeefbd5b7ddeu);
  EXPECT_EQ(jhash64("", 0, seed(0xdeadbeef, 0xdeadbeef)), 0xbd5b7dde9c093ccdu);
  EXPECT_EQ(jhash64(kGettysburg.data(), 30, 0), 0xce7226e617770551u);
  EXPECT_EQ(jhash64(kGettysburg.data(), 30, seed(0, 1)), 0xbd371de4e3607caeu);
  EXPECT_EQ(jhash64(kGettysburg.data(), 30, seed(1, 0)), 0x6cbea4b3cd628161u);
}

TEST(TarnFWHash, AgreesWithTheByteWiseFormForEveryLengthAndAlignment) {
  for (std::size_t length = 0; length <= 64; ++length) {
    for (std::size_t alignment = 0; alignment < 16; ++alignment) {
      // The key ends with its block, so that a read past it is seen by the sanitizer.
      std::vector<unsigned char> block(alignment + length);
      unsigned char* key = block.data() + alignment;
      for (std::size_t i = 0; i < length; ++i) {
        key[i] = static_cast<unsigned char>(i * 37 + length * 11 + 200);
      }
      const std::uint32_t primary = 0x01234567u * static_cast<std::uint32_t>(length + 1);
      const std::uint32_t secondary = 0x89abcdefu + static_cast<std::uint32_t>(alignment);
      EXPECT_EQ(jhash32(key, length, primary),
                static_cast<std::uint32_t>(referenceHash(key, length, primary, 0)))
          << "length " << length << " alignment " << alignment;
      EXPECT_EQ(jhash64(key, length, seed(primary, secondary)),
                referenceHash(key, length, primary, secondary))
          << "length " << length << " alignment " << alignment;
    }
  }
}

TEST(TarnFWHash, EveryByteOfTheKeyCounts) {
  for (std::size_t length = 1; length <= 64; ++length) {
    std::vector<unsigned char> key(length, 0x5a);
    const std::uint32_t before = jhash32(key.data(), length, 0);
    for (std::size_t i = 0; i < length; ++i) {
      key[i] ^= 0x80;
      EXPECT_NE(jhash32(key.data(), length, 0), before) << length << " byte " << i;
      key[i] ^= 0x80;
    }
  }
}
