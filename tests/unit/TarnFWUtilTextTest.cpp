#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "TarnFWUtil.h"

using namespace TarnFirewall;

TEST(TarnFWUtilText, StrncpyAlwaysEndsTheText) {
  char buffer[5] = {'x', 'x', 'x', 'x', 'x'};
  EXPECT_TRUE(Strncpy(buffer, "abcdef", 4));
  EXPECT_STREQ(buffer, "abc");
  EXPECT_EQ(buffer[4], 'x');
  EXPECT_TRUE(Strncpy(buffer, "a", 4));
  EXPECT_EQ(std::string(buffer, 5), std::string("a\0\0\0x", 5));
  EXPECT_TRUE(Strncpy(buffer, "abc", 1));
  EXPECT_STREQ(buffer, "");
  EXPECT_FALSE(Strncpy(buffer, "abc", 0));
  EXPECT_FALSE(Strncpy(nullptr, "abc", 4));
  EXPECT_FALSE(Strncpy(buffer, nullptr, 4));
}
