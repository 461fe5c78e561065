#include <gtest/gtest.h>

#include <string>

#include "TarnFWParserArena.h"

using TarnFirewall::CTarnFWParserArena;
using TarnFirewall::FWParserText;

TEST(TarnFWParserArena, KeepsTextsWhereTheyAreWhileItGrows) {
  CTarnFWParserArena arena;
  const FWParserText* first = arena.copy("first", 5);
  const std::string filler(255, 'x');
  for (int i = 0; i < 1000; ++i) ASSERT_NE(arena.copy(filler.data(), filler.size()), nullptr);
  EXPECT_STREQ(first->data, "first");
}

TEST(TarnFWParserArena, ReleasesToAMarkInAnEarlierBlockAndUsesTheRoomAgain) {
  CTarnFWParserArena arena;
  arena.copy("kept", 4);
  const auto mark = arena.mark();
  const FWParserText* after = arena.copy("a", 1);
  const std::string filler(255, 'x');
  for (int i = 0; i < 100; ++i) arena.copy(filler.data(), filler.size());
  arena.release(mark);
  EXPECT_EQ(arena.copy("b", 1), after);
}

TEST(TarnFWParserArena, TheZeroMarkEmptiesIt) {
  CTarnFWParserArena arena;
  arena.release({});
  const FWParserText* first = arena.copy("first", 5);
  const std::string filler(255, 'x');
  for (int i = 0; i < 100; ++i) arena.copy(filler.data(), filler.size());
  arena.release({});
  EXPECT_EQ(arena.copy("again", 5), first);
}

TEST(TarnFWParserArena, ReleaseLastFreesOnlyWhatNothingStandsBehind) {
  CTarnFWParserArena arena;
  const FWParserText* first = arena.copy("first", 5);
  const FWParserText* second = arena.copy("second", 6);
  arena.releaseLast(*first);
  EXPECT_STREQ(second->data, "second");
  const FWParserText* third = arena.copy("third", 5);
  EXPECT_GT(third, second);
  arena.releaseLast(*third);
  arena.releaseLast(*second);
  arena.releaseLast(*first);
  EXPECT_EQ(arena.copy("fourth", 6), first);
}

TEST(TarnFWParserArena, HandsOutAWholeBlockAndNothingLarger) {
  CTarnFWParserArena arena;
  EXPECT_NE(arena.allocate(CTarnFWParserArena::kBlockSize), nullptr);
  EXPECT_EQ(arena.allocate(CTarnFWParserArena::kBlockSize + 1), nullptr);
}

TEST(TarnFWParserArena, AlignsAValueAfterATextOfAnyLength) {
  CTarnFWParserArena arena;
  for (std::size_t length = 0; length < 40; ++length) {
    ASSERT_NE(arena.copy("0123456789012345678901234567890123456789", length), nullptr);
    void* room = arena.allocateFor<std::uint64_t>();
    ASSERT_NE(room, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(room) % alignof(std::uint64_t), 0u);
  }
}
