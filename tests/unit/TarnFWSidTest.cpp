#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "Expect.h"
#include "TarnFWSid.h"

using namespace TarnFirewall;

namespace {

std::vector<std::uint8_t> bytesOf(const fwattr_sid& sid) {
  std::vector<std::uint8_t> bytes(sizeof sid);
  std::memcpy(bytes.data(), &sid, sizeof sid);
  return bytes;
}

std::string sidOf(int subAuthorities) {
  std::string text = "S-1-5";
  for (int i = 1; i <= subAuthorities; ++i) text += "-" + std::to_string(i);
  return text;
}

bool reads(const char* text) {
  fwattr_sid sid;
  return sid_str2bin(text, &sid);
}

/// The text of a record in a block of exactly `size` bytes, or "refused".
std::string print(const fwattr_sid& sid, std::size_t size = kSidTextSize) {
  std::vector<char> buffer(size, 'x');
  if (!sid_bin2str(&sid, buffer.data(), size)) return "refused";
  return buffer.data();
}

}  // namespace

TEST(TarnFWSid, TextBecomesTheKernelsRecord) {
  fwattr_sid sid;
  std::memset(&sid, 0xee, sizeof sid);
  ASSERT_TRUE(sid_str2bin("S-1-5-21-1-2-4000000000", &sid));
  EXPECT_EQ(bytesOf(sid), Bytes(72)
                              .at(4, {1, 4})
                              .at(6, {0, 0, 0, 0, 0, 5})
                              .at(12, {21, 0, 0, 0})
                              .at(16, {1, 0, 0, 0})
                              .at(20, {2, 0, 0, 0})
                              .at(24, {0x00, 0x28, 0x6b, 0xee}));
  EXPECT_EQ(print(sid), "S-1-5-21-1-2-4000000000");
}

TEST(TarnFWSid, TheAuthorityHas48BitsHighestFirst) {
  fwattr_sid sid;
  ASSERT_TRUE(sid_str2bin("S-1-20015998343868", &sid));
  EXPECT_EQ(bytesOf(sid), Bytes(72).at(4, {1, 0}).at(6, {0x12, 0x34, 0x56, 0x78, 0x9a, 0xbc}));
  EXPECT_EQ(print(sid), "S-1-20015998343868");
  EXPECT_TRUE(reads("S-1-281474976710655"));
  EXPECT_FALSE(reads("S-1-281474976710656"));
  EXPECT_FALSE(reads("S-1-99999999999999999999"));
}

TEST(TarnFWSid, ASmallSIsAccepted) {
  fwattr_sid sid;
  ASSERT_TRUE(sid_str2bin("s-1-5-18", &sid));
  EXPECT_EQ(print(sid), "S-1-5-18");
}

TEST(TarnFWSid, FifteenSubAuthoritiesPassAndSixteenFail) {
  fwattr_sid sid;
  ASSERT_TRUE(sid_str2bin(sidOf(15).c_str(), &sid));
  EXPECT_EQ(sid.count, 15);
  EXPECT_EQ(print(sid), sidOf(15));
  EXPECT_FALSE(reads(sidOf(16).c_str()));
}

TEST(TarnFWSid, TheRevisionIsFixed) {
  EXPECT_FALSE(reads("S-2-5"));
  EXPECT_FALSE(reads("S-01-5"));
  EXPECT_FALSE(reads("S-1x-5"));
}

TEST(TarnFWSid, RefusesTextsThatAreNoIdentifier) {
  for (const char* text :
       {"", "S", "S-", "S-1", "X-1-5", "SS-1-5", "-S-1-5", "S--1-5", "S-1-", "S-1--5", "S-1-x",
        "S-1-5-", "S-1-5--21", "S-1-5-abc", "S-1-5-99999999999999999999", "S-1-5-4294967296"}) {
    EXPECT_FALSE(reads(text)) << text;
  }
  EXPECT_TRUE(reads("S-1-5-4294967295"));
}

TEST(TarnFWSid, WhatFollowsTheDigitsOfAFieldIsIgnored) {
  fwattr_sid sid;
  ASSERT_TRUE(sid_str2bin("S-1-5x-21y", &sid));
  EXPECT_EQ(print(sid), "S-1-5-21");
}

TEST(TarnFWSid, NullArgumentsFail) {
  fwattr_sid sid{};
  char buffer[8];
  EXPECT_FALSE(sid_str2bin(nullptr, &sid));
  EXPECT_FALSE(sid_str2bin("S-1-5", nullptr));
  EXPECT_FALSE(sid_bin2str(nullptr, buffer, sizeof buffer));
  EXPECT_FALSE(sid_bin2str(&sid, nullptr, 8));
}

TEST(TarnFWSid, ABadRevisionOrCountHasNoTextAndLeavesTheBufferCleared) {
  fwattr_sid sid;
  ASSERT_TRUE(sid_str2bin("S-1-5-21", &sid));
  char buffer[kSidTextSize];
  for (const int revision : {0, 2, 255}) {
    fwattr_sid bad = sid;
    bad.revision = static_cast<std::uint8_t>(revision);
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_FALSE(sid_bin2str(&bad, buffer, sizeof buffer));
    EXPECT_EQ(std::string(buffer, sizeof buffer), std::string(sizeof buffer, '\0'));
  }
  for (const int count : {16, 255}) {
    fwattr_sid bad = sid;
    bad.count = static_cast<std::uint8_t>(count);
    EXPECT_FALSE(sid_bin2str(&bad, buffer, sizeof buffer));
  }
}

TEST(TarnFWSid, ATextThatDoesNotFitFailsAtEverySize) {
  fwattr_sid sid;
  ASSERT_TRUE(sid_str2bin("S-1-5-21-4", &sid));
  for (std::size_t size = 0; size <= 10; ++size) EXPECT_EQ(print(sid, size), "refused") << size;
  EXPECT_EQ(print(sid, 11), "S-1-5-21-4");
}

TEST(TarnFWSid, TheLongestTextFitsItsSizeExactly) {
  std::string longest = "S-1-281474976710655";
  for (int i = 0; i < 15; ++i) longest += "-4294967295";
  fwattr_sid sid;
  ASSERT_TRUE(sid_str2bin(longest.c_str(), &sid));
  EXPECT_EQ(longest.size() + 1, kSidTextSize);
  EXPECT_EQ(print(sid), longest);
}
