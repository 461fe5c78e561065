#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string_view>

#include "TarnFWText.h"

using namespace TarnFirewall;

namespace {

template <typename T>
std::string decimal(T value) {
  std::string text = "<";
  appendDecimal(text, value);
  return text + ">";
}

template <typename T>
std::string hex(T value, unsigned int width) {
  std::string text = "<";
  appendHex(text, value, width);
  return text + ">";
}

}  // namespace

TEST(Text, FormatsOfAnyLengthComeOutWhole) {
  EXPECT_EQ(formatText("%d-%s", 7, "x"), "7-x");
  const std::string longText(1000, 'a');
  EXPECT_EQ(formatText("%s!", longText.c_str()), longText + "!");
  std::string text = "a";
  appendText(text, "%s", std::string(255, 'b').c_str());
  appendText(text, "%s", std::string(256, 'c').c_str());
  EXPECT_EQ(text, "a" + std::string(255, 'b') + std::string(256, 'c'));
}

TEST(Text, AppendsDecimalNumbersUpToTheirLimits) {
  EXPECT_EQ(decimal(0), "<0>");
  EXPECT_EQ(decimal(-1), "<-1>");
  EXPECT_EQ(decimal(std::numeric_limits<std::int64_t>::min()), "<-9223372036854775808>");
  EXPECT_EQ(decimal(std::numeric_limits<std::uint64_t>::max()), "<18446744073709551615>");
  EXPECT_EQ(decimal(std::uint8_t{255}), "<255>");
}

TEST(Text, AppendsHexadecimalNumbersFilledToTheWidth) {
  EXPECT_EQ(hex(std::uint16_t{0x800}, 4), "<0800>");
  EXPECT_EQ(hex(std::uint16_t{0xabcd}, 2), "<abcd>");
  EXPECT_EQ(hex(0u, 1), "<0>");
  EXPECT_EQ(hex(std::numeric_limits<std::uint64_t>::max(), 16), "<ffffffffffffffff>");
}

TEST(Text, AShortTextIsAppendedInOnePieceAndMayFillItsRoom) {
  CTarnFWShortText<sizeof "not port 65535-x" - 1> pieces;
  pieces.add("not ");
  pieces.add(std::string_view("port "));
  pieces.addDecimal(std::uint16_t{65535});
  pieces.add('-');
  pieces.addBy([](char* to) {
    *to = 'x';
    return to + 1;
  });
  std::string text = "from any ";
  pieces.appendTo(text);
  EXPECT_EQ(text, "from any not port 65535-x");
  CTarnFWShortText<11> number;
  number.addDecimal(std::numeric_limits<std::int32_t>::min());
  number.appendTo(text);
  EXPECT_EQ(text, "from any not port 65535-x-2147483648");
  CTarnFWShortText<1>().appendTo(text);
  EXPECT_EQ(text, "from any not port 65535-x-2147483648");
}
