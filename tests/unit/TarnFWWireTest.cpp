#include <gtest/gtest.h>

#include "TarnFWWire.h"

using namespace TarnFirewall;

TEST(WireInteger, NetworkOrderPutsTheHighByteFirst) {
  net16 port = 0x1234;
  std::uint8_t bytes[2];
  std::memcpy(bytes, &port, 2);
  EXPECT_EQ(bytes[0], 0x12);
  EXPECT_EQ(bytes[1], 0x34);
  EXPECT_EQ(port, 0x1234);
  net32 word = 0x01020304u;
  std::uint8_t four[4];
  std::memcpy(four, &word, 4);
  EXPECT_EQ(four[0], 1);
  EXPECT_EQ(four[3], 4);
  EXPECT_EQ(word, 0x01020304u);
}

TEST(WireInteger, HostOrderIsTheMachinesOwn) {
  host32 word = 0x01020304u;
  const std::uint32_t plain = 0x01020304u;
  EXPECT_EQ(std::memcmp(&word, &plain, 4), 0);
  hosti32 negative = -1;
  EXPECT_EQ(negative, -1);
}

TEST(ItemsFit, DividesSoThatNoCountWraps) {
  EXPECT_TRUE(itemsFit(2, 144, 288));
  EXPECT_FALSE(itemsFit(3, 144, 431));
  EXPECT_FALSE(itemsFit(0xffffffffu, 0xffffffffu, 1000));
  EXPECT_TRUE(itemsFit(0, 892, 0));
}

TEST(FieldLength, StopsAtTheFieldsEnd) {
  const char full[3] = {'a', 'b', 'c'};
  EXPECT_EQ(fieldLength(full, 3), 3u);
  EXPECT_EQ(fieldLength("ab", 3), 2u);
}
