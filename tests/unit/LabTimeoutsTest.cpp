#include <gtest/gtest.h>

#include <set>

#include "LabBench.h"
#include "LabDecode.h"

namespace TarnLab {
namespace {

class LabTimeouts : public LabBench {
 protected:
  /// A record with these marks, and the values at the same places.
  static Record record(std::initializer_list<std::pair<unsigned, std::uint32_t>> marked) {
    Record body = Record().zero(112);
    for (const auto& [id, value] : marked) {
      for (unsigned i = 0; i < 4; ++i) body.set(4 * id + i, value >> (8 * i) & 0xff);
      body.set(88 + id, 1);
    }
    return body;
  }
  static Record all() {
    Record body = Record().zero(112);
    for (unsigned id = 0; id < 22; ++id) body.set(88 + id, 1);
    return body;
  }
};

TEST_F(LabTimeouts, AllTwentyTwoDiffer) {
  ASSERT_EQ(command(42, all()), 0u);
  std::set<std::uint32_t> seen;
  for (std::size_t id = 0; id < 22; ++id) {
    EXPECT_NE(get32(reply, 4 * id), 0u) << id;
    EXPECT_TRUE(seen.insert(get32(reply, 4 * id)).second) << id;
    EXPECT_EQ(get8(reply, 88 + id), 1u) << id;
  }
}

TEST_F(LabTimeouts, OnlyWhatIsMarkedIsSetAndRead) {
  ASSERT_EQ(command(41, record({{1, 7}, {21, 0xffffffff}}).set(0, 99)), 0u);
  ASSERT_EQ(command(42, record({{0, 0}, {1, 0}, {21, 0}})), 0u);
  EXPECT_EQ(get32(reply, 0), 120u) << "a value without its mark is not taken";
  EXPECT_EQ(get32(reply, 4), 7u);
  EXPECT_EQ(get32(reply, 84), 0xffffffffu);
  EXPECT_EQ(get32(reply, 8), 0u) << "not asked for";
  EXPECT_EQ(get8(reply, 90), 0u);
  ASSERT_EQ(command(42, record({{1, 0}}), filterSelector(other)), 0u);
  EXPECT_EQ(get32(reply, 4), 30u);
}

TEST_F(LabTimeouts, TheLogNamesThoseThatAreMarked) {
  ASSERT_EQ(command(41, record({{1, 7}, {14, 8}})), 0u);
  EXPECT_EQ(decodeRecords(journal().back()), "    dfw.tcp.opening 7\n    dfw.ip.frag 8\n");
  ASSERT_EQ(command(42, record({{1, 0}})), 0u);
  EXPECT_EQ(decodeRecords(journal().back()), "    dfw.tcp.opening 7\n");
}

TEST_F(LabTimeouts, RefusesWhatIsReserved) {
  EXPECT_EQ(command(41, record({}).set(111, 1)), 25u);
  EXPECT_EQ(command(42, record({}).set(0, 1)), 25u);
  EXPECT_EQ(command(42, Record().zero(111)), 25u);
}

}  // namespace
}  // namespace TarnLab
