#include <gtest/gtest.h>

#include <ctime>

#include "Expect.h"
#include "TarnFWIDList.h"

using namespace TarnFirewall;

TEST(TarnFWIDList, AnIdThatIsThereAlreadyChangesNothing) {
  CTarnFWIDList list;
  EXPECT_TRUE(list.addID(7));
  EXPECT_TRUE(list.addID(7));
  EXPECT_EQ(list.size(), 1u);
  EXPECT_EQ(list.getMsgSize(), 4u);
  EXPECT_EQ(list.getType(), 130);
}

TEST(TarnFWIDList, WritesItsIdsAscendingAsHostOrderWords) {
  CTarnFWIDList list;
  for (const std::uint32_t id : {0x01020304u, 3u, 0xffffffffu, 1u}) list.addID(id);
  Bytes bytes(20, 0xcd);
  unsigned int written = 0;
  EXPECT_TRUE(list.toMessage(bytes.data(), 16, &written));
  EXPECT_EQ(written, 16u);
  EXPECT_EQ(bytes, Bytes({1, 0, 0,    0,    3,    0,    0,    0,    4,    3,
                          2, 1, 0xff, 0xff, 0xff, 0xff, 0xcd, 0xcd, 0xcd, 0xcd}));
  EXPECT_EQ(list.toString(), "{1,3,16909060,-1}") << "ids print as signed numbers";
}

TEST(TarnFWIDList, RefusesARoomThatIsTooSmallAndWritesNothing) {
  CTarnFWIDList list;
  list.addID(1);
  list.addID(2);
  for (unsigned int room = 0; room < 8; ++room) {
    Bytes bytes(8, 0xcd);
    unsigned int written = 99;
    EXPECT_FALSE(list.toMessage(bytes.data(), room, &written)) << room;
    EXPECT_EQ(written, 99u);
    EXPECT_EQ(bytes, Bytes(8, 0xcd));
  }
}

TEST(TarnFWIDList, AnEmptyListIsTwoBracesAndNoBytes) {
  CTarnFWIDList list;
  unsigned int written = 99;
  EXPECT_TRUE(list.toMessage(nullptr, 0, &written));
  EXPECT_EQ(written, 0u);
  EXPECT_EQ(list.toString(), "{}");
}

TEST(TarnFWIDList, ACountWithOneOfTheTopTwoBitsOverflows) {
  EXPECT_EQ(CTarnFWIDList::sizeOf(0x3fffffff), 0xfffffffcu);
  EXPECT_THROW_WITH((void)CTarnFWIDList::sizeOf(0x40000000), CIntegerOverflowException, 17,
                    "connection count overflows: 1073741824");
  EXPECT_THROW_WITH((void)CTarnFWIDList::sizeOf(0x80000000), CIntegerOverflowException, 17,
                    "connection count overflows: -2147483648");
}

TEST(TarnFWIDList, ListsCompareBySizeAndEqualSizesHaveNoOrder) {
  CTarnFWIDList small;
  CTarnFWIDList large;
  small.addID(9);
  large.addID(1);
  large.addID(2);
  EXPECT_TRUE(small < large);
  EXPECT_FALSE(large < small);
  small.addID(3);
  EXPECT_THROW_WITH((void)(small < large), CUnsupportedException, 7, "compare two connection list");
}

TEST(TarnFWIDList, IdsThatComeDescendingCostLittleMoreThanAscendingOnes) {
  constexpr std::uint32_t kIds = 100000;
  CTarnFWIDList ascending;
  CTarnFWIDList descending;
  const std::clock_t start = std::clock();
  for (std::uint32_t id = 1; id <= kIds; ++id) ascending.addID(id);
  const std::clock_t middle = std::clock();
  for (std::uint32_t id = kIds; id >= 1; --id) descending.addID(id);
  const std::clock_t end = std::clock();
  EXPECT_EQ(descending.toString(), ascending.toString());
  EXPECT_LT(end - middle, 10 * (middle - start) + CLOCKS_PER_SEC / 10);
}
