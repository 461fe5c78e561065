#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <string>

#include "TarnFWUtil.h"

using namespace TarnFirewall;

TEST(TarnFWUtilNumbers, Str2LongReadsAWholeNumber) {
  long value = 0;
  EXPECT_TRUE(Str2Long("-42", 10, &value));
  EXPECT_EQ(value, -42);
  EXPECT_TRUE(Str2Long("0x1f", 0, &value));
  EXPECT_EQ(value, 31);
  EXPECT_TRUE(Str2Long(" 7", 10, &value));
  EXPECT_EQ(value, 7);
  EXPECT_TRUE(Str2Long("9223372036854775807", 10, &value));
  EXPECT_EQ(value, LONG_MAX);
  EXPECT_TRUE(Str2Long("-9223372036854775808", 10, &value));
  EXPECT_EQ(value, LONG_MIN);
}

TEST(TarnFWUtilNumbers, Str2LongReadsAsTheCLibraryDoes) {
  for (const char* text : {"0", "00", "7", "07", "08", "010", "999999999", "1000000000",
                           "0000000000", "12345678901", "0x10", "+5", "-5", "5 ", "5x", "x", ""}) {
    for (const int base : {0, 8, 10, 16}) {
      char* end = nullptr;
      const long wanted = std::strtol(text, &end, base);
      long value = -1;
      errno = ERANGE;
      EXPECT_EQ(Str2Long(text, base, &value), end != text && *end == '\0') << text << ' ' << base;
      EXPECT_EQ(value, wanted) << text << ' ' << base;
      EXPECT_EQ(errno, 0) << text << ' ' << base;
    }
  }
}

TEST(TarnFWUtilNumbers, Str2LongStoresTheValueOfARefusedNumberToo) {
  long value = 5;
  EXPECT_FALSE(Str2Long("12x", 10, &value));
  EXPECT_EQ(value, 12);
  EXPECT_FALSE(Str2Long("", 10, &value));
  EXPECT_EQ(value, 0);
  EXPECT_FALSE(Str2Long("9223372036854775808", 10, &value));
  EXPECT_EQ(value, LONG_MAX);
}

TEST(TarnFWUtilNumbers, Str2LongRefusesEmptyAndTrailingAndLongNumbers) {
  long value = 0;
  for (const char* text : {"", " ", "x", "-", "1 ", "1.", "0x", "99999999999999999999"}) {
    EXPECT_FALSE(Str2Long(text, 10, &value)) << text;
  }
  EXPECT_FALSE(Str2Long(std::string(100000, '9').c_str(), 10, &value));
  EXPECT_FALSE(Str2Long("1", 99, &value));
  EXPECT_FALSE(Str2Long(nullptr, 10, &value));
  EXPECT_FALSE(Str2Long("1", 10, nullptr));
}

TEST(TarnFWUtilNumbers, AnErrorLeftFromBeforeDoesNotMatter) {
  long value = 0;
  errno = ERANGE;
  EXPECT_TRUE(Str2Long("1", 10, &value));
  unsigned long number = 0;
  errno = ERANGE;
  EXPECT_TRUE(Str2ULong("1", 10, &number));
}

TEST(TarnFWUtilNumbers, Str2ULongReadsUpToItsLimit) {
  unsigned long value = 0;
  EXPECT_TRUE(Str2ULong("18446744073709551615", 10, &value));
  EXPECT_EQ(value, ULONG_MAX);
  EXPECT_FALSE(Str2ULong("18446744073709551616", 10, &value));
  EXPECT_EQ(value, ULONG_MAX);
  EXPECT_TRUE(Str2ULong("ff", 16, &value));
  EXPECT_EQ(value, 255u);
  EXPECT_FALSE(Str2ULong("fg", 16, &value));
  EXPECT_EQ(value, 15u);
  EXPECT_FALSE(Str2ULong("", 10, &value));
  EXPECT_FALSE(Str2ULong("1", 99, &value));
  EXPECT_FALSE(Str2ULong(nullptr, 10, &value));
  EXPECT_FALSE(Str2ULong("1", 10, nullptr));
}

TEST(TarnFWUtilNumbers, Str2UintStoresOnSuccessOnlyAndCutsTo32Bits) {
  unsigned int value = 77;
  EXPECT_FALSE(Str2Uint("12x", 10, &value));
  EXPECT_FALSE(Str2Uint("9223372036854775808", 10, &value));
  EXPECT_FALSE(Str2Uint("", 10, &value));
  EXPECT_EQ(value, 77u);
  EXPECT_TRUE(Str2Uint("4294967295", 10, &value));
  EXPECT_EQ(value, 4294967295u);
  EXPECT_TRUE(Str2Uint("4294967297", 10, &value));
  EXPECT_EQ(value, 1u);
  EXPECT_TRUE(Str2Uint("-1", 10, &value));
  EXPECT_EQ(value, 4294967295u);
  EXPECT_FALSE(Str2Uint(nullptr, 10, &value));
  EXPECT_FALSE(Str2Uint("1", 10, nullptr));
}

TEST(TarnFWUtilNumbers, PortsArePastNothingAndBelow65536) {
  long value = 0;
  EXPECT_TRUE(Str2Port("0", &value));
  EXPECT_EQ(value, 0);
  EXPECT_TRUE(Str2Port("65535", &value));
  EXPECT_EQ(value, 65535);
  for (const char* text : {"65536", "-1", "-5", "", "22 ", "0x16", "http"}) {
    EXPECT_FALSE(Str2Port(text, &value)) << text;
  }
  EXPECT_FALSE(Str2Port(nullptr, &value));
  EXPECT_FALSE(Str2Port("1", nullptr));
}

TEST(TarnFWUtilNumbers, PrefixLengthsEndAt32And128) {
  long value = -1;
  EXPECT_TRUE(Str2CIDR4("0", &value));
  EXPECT_EQ(value, 0);
  EXPECT_TRUE(Str2CIDR4("32", &value));
  EXPECT_EQ(value, 32);
  EXPECT_FALSE(Str2CIDR4("33", &value));
  EXPECT_FALSE(Str2CIDR4("-1", &value));
  EXPECT_TRUE(Str2CIDR6("0", &value));
  EXPECT_TRUE(Str2CIDR6("128", &value));
  EXPECT_EQ(value, 128);
  EXPECT_FALSE(Str2CIDR6("129", &value));
  EXPECT_FALSE(Str2CIDR6("-1", &value));
  EXPECT_FALSE(Str2CIDR4(nullptr, &value));
  EXPECT_FALSE(Str2CIDR6(nullptr, &value));
}
