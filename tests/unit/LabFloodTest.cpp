#include <gtest/gtest.h>

#include <set>

#include "LabBench.h"
#include "LabFamily.h"

namespace TarnLab {
namespace {

class LabFlood : public LabBench {
 protected:
  static constexpr std::uint32_t keep = 0xffffffff;

  /// A configuration that changes nothing but what is given, by offset.
  static Record configuration(std::initializer_list<std::pair<std::size_t, std::uint32_t>> given) {
    Record body;
    for (std::size_t at = 0; at < 36; at += 4) {
      std::uint32_t value = at == 32 ? 0 : keep;
      for (const auto& [offset, wanted] : given) {
        if (offset == at) value = wanted;
      }
      body.u32(value);
    }
    return body;
  }
  static Record asked(std::uint32_t zero = 0, std::uint32_t rows = 0) {
    return Record().u32(zero).to(128).u32(rows == 0 ? 0 : 24).u32(rows).to(12424);
  }
};

TEST_F(LabFlood, ItsCountersAgreeWithEachOther) {
  ASSERT_EQ(command(79, asked(0, 512)), 0u);
  const std::uint32_t rows = get32(reply, 132);
  EXPECT_EQ(rows, 16u);
  EXPECT_EQ(get32(reply, 40), 16u);
  std::uint64_t sums[3] = {};
  unsigned empty = 0;
  for (std::size_t at = 136; at < 136 + 24 * rows; at += 24) {
    EXPECT_LE(get32(reply, at), get32(reply, 44)) << "no bucket holds more than its depth";
    sums[0] += get32(reply, at);
    sums[1] += get64(reply, at + 8);
    sums[2] += get64(reply, at + 16);
    if (isZero(part(ConstBytes(reply), at, 24))) ++empty;
  }
  EXPECT_EQ(empty, 4u);
  EXPECT_EQ(get32(reply, 56), sums[0]);
  EXPECT_EQ(get64(reply, 64), sums[1]);
  EXPECT_EQ(get64(reply, 72), sums[2]);
  std::set<std::uint64_t> seen;
  for (const std::size_t at : {4u, 8u, 12u, 16u, 20u, 24u, 28u, 32u, 40u, 44u, 56u}) {
    EXPECT_TRUE(seen.insert(get32(reply, at)).second) << at;
  }
  for (const std::size_t at : {64u, 72u, 80u, 88u, 96u, 104u, 120u}) {
    EXPECT_TRUE(seen.insert(get64(reply, at)).second) << at;
  }
}

TEST_F(LabFlood, RowsComeOnlyAsFarAsTheyAreAskedFor) {
  ASSERT_EQ(command(79, asked()), 0u);
  EXPECT_EQ(get32(reply, 132), 0u);
  EXPECT_TRUE(isZero(part(ConstBytes(reply), 136, 512 * 24)));
  const std::uint32_t inUse = get32(reply, 56);
  EXPECT_NE(inUse, 0u);
  ASSERT_EQ(command(79, asked(0, 3)), 0u);
  EXPECT_EQ(get32(reply, 132), 3u);
  EXPECT_EQ(get32(reply, 56), inUse) << "the sums are of all rows";
  EXPECT_TRUE(isZero(part(ConstBytes(reply), 136 + 72, 509 * 24)));
}

TEST_F(LabFlood, WhatIsSetIsReadAndWhatIsNotGivenStays) {
  ASSERT_EQ(command(78, configuration({{0, 70}, {8, 0}, {20, 64}, {28, 0}})), 0u);
  ASSERT_EQ(command(79, asked(0, 512)), 0u);
  EXPECT_EQ(get32(reply, 4), 70u);
  EXPECT_EQ(get32(reply, 8), 70u) << "no more flows are active than the limit";
  EXPECT_EQ(get32(reply, 20), 0u);
  EXPECT_EQ(get64(reply, 96), 0u) << "without a limit nothing is denied";
  EXPECT_EQ(get32(reply, 12), 2000u);
  EXPECT_EQ(get32(reply, 40), 64u);
  EXPECT_EQ(get32(reply, 132), 64u);
  EXPECT_EQ(get32(reply, 52), 0u);
  EXPECT_EQ(get64(reply, 120), 0u);
  ASSERT_EQ(command(78, configuration({{16, 0}})), 0u);
  ASSERT_EQ(command(79, asked(0, 512)), 0u);
  for (const std::size_t at : {36u, 40u, 44u, 56u, 132u}) EXPECT_EQ(get32(reply, at), 0u) << at;
  EXPECT_TRUE(isZero(part(ConstBytes(reply), 136, 512 * 24)));
}

TEST_F(LabFlood, ZeroingFollowsTheReading) {
  ASSERT_EQ(command(79, asked(1)), 0u);
  EXPECT_EQ(get64(reply, 80), 720u);
  const std::uint32_t active = get32(reply, 8);
  ASSERT_EQ(command(79, asked(0, 512)), 0u);
  for (const std::size_t at : {64u, 72u, 80u, 88u, 96u, 104u, 120u})
    EXPECT_EQ(get64(reply, at), 0u) << at;
  EXPECT_EQ(get32(reply, 8), active) << "what is there now is no counter";
  ASSERT_EQ(command(79, asked(), filterSelector(other)), 0u);
  EXPECT_NE(get64(reply, 80), 0u);
  ASSERT_EQ(command(78, configuration({{32, 1}}), filterSelector(other)), 0u);
  ASSERT_EQ(command(79, asked(), filterSelector(other)), 0u);
  EXPECT_EQ(get64(reply, 80), 0u);
}

TEST_F(LabFlood, ASettingsFileWithMoreBucketsThanThereAreRowsIsCut) {
  {
    const StoreLock lock(store);
    store.replace(
        "filters/0/settings",
        {std::as_bytes(std::span<const char>("flood.buckets 18446744073709551615\n", 35))});
  }
  ASSERT_EQ(command(79, asked(0, 512)), 0u);
  EXPECT_EQ(get32(reply, 40), 512u);
  EXPECT_EQ(get32(reply, 132), 512u);
}

TEST_F(LabFlood, RefusesWhatIsWrong) {
  const std::vector<std::pair<Record, std::string>> rows = {
      {configuration({{4, 0x80000000}}), "negative limit of icmp"},
      {configuration({{16, 2}}), "syncache 2"},
      {configuration({{20, 0}}), "0 buckets"},
      {configuration({{20, 48}}), "48 buckets"},
      {configuration({{20, 1024}}), "1024 buckets"},
      {configuration({{28, 2}}), "rst spoofing 2"},
      {configuration({{32, keep}}), "zero 4294967295"},
  };
  for (const auto& [body, why] : rows) {
    EXPECT_EQ(command(78, body), 3u) << why;
    EXPECT_EQ(note(), why);
  }
  EXPECT_EQ(command(78, configuration({{24, 0}})), 25u);
  EXPECT_EQ(command(78, Record().zero(35)), 25u);
  EXPECT_EQ(command(79, asked(2)), 3u);
  EXPECT_EQ(command(79, asked(0, 513)), 25u);
  EXPECT_EQ(note(), "513 rows of 24 bytes");
  EXPECT_EQ(command(79, asked().set(128, 24)), 25u);
  EXPECT_EQ(command(79, asked().set(4, 1)), 25u);
  EXPECT_EQ(command(79, Record().zero(12423)), 25u);
}

TEST_F(LabFlood, TheOldMachineOfANewHostHasNoLimits) {
  {
    const StoreLock lock(store);
    fillHost(store, Host::load(store));
  }
  ASSERT_EQ(command(79, asked(), filterSelector("nic-998214-eth0-kelpco-sfw.2")), 0u);
  for (const std::size_t at : {4u, 12u, 20u, 28u, 36u}) EXPECT_EQ(get32(reply, at), 0u) << at;
  const ByteVector watched =
      filterSelector("nic-998214-eth0-kelpco-spoof.guard.1", "kelpco-spoof.guard");
  ASSERT_EQ(command(79, asked(), watched), 0u);
  EXPECT_EQ(get32(reply, 36), 1u);
  EXPECT_EQ(get32(reply, 52), 0u) << "a cache without spoofing";
}

}  // namespace
}  // namespace TarnLab
