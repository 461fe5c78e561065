#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
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

TEST(MadeText, HasItsPiecesInOrder) {
  CTarnFWText text;
  EXPECT_EQ(text.view(), "");
  text += "not ";
  text += std::string("port ");
  text.appendDecimal(std::uint16_t{65535});
  text += '-';
  text.appendBy(1, [](char* to) {
    *to = 'x';
    return to + 1;
  });
  appendText(text, " %s%d", "in ", -1);
  appendHex(text, 0x1fu, 4);
  EXPECT_EQ(text.str(), "not port 65535-x in -1001f");
}

TEST(MadeText, DropsWhatStandsAnywhere) {
  CTarnFWText text;
  text += "not any";
  text.erase(6, 1);
  EXPECT_EQ(text.view(), "not an");
  text.erase(0, 4);
  EXPECT_EQ(text.view(), "an");
  text.erase(1, 100);
  EXPECT_EQ(text.view(), "a");
  EXPECT_EQ(text.size(), 1u);
}

TEST(MadeText, HasNumbersUpToTheirLimits) {
  CTarnFWText text;
  text.appendDecimal(std::numeric_limits<std::int64_t>::min());
  text.appendDecimal(std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(text.view(), "-922337203685477580818446744073709551615");
}

TEST(MadeText, GrowsWithWhateverPieceIsTooLongForItsPlace) {
  for (const std::size_t before : {0u, 511u, 512u, 513u, 5000u}) {
    for (const std::size_t piece : {1u, 512u, 513u, 100000u}) {
      CTarnFWText text;
      std::string expected;
      for (std::size_t i = 0; i < before; ++i) {
        const char mark = static_cast<char>('a' + i % 26);
        text += mark;
        expected += mark;
      }
      const std::string word(piece, '#');
      text += word;
      text.appendDecimal(std::numeric_limits<std::int32_t>::min());
      EXPECT_EQ(text.view(), expected + word + "-2147483648");
    }
  }
}

TEST(MadeText, StandsInTheCharactersThatItIsGivenAsLongAsItFits) {
  char room[8];
  std::memset(room, '.', sizeof room);
  CTarnFWText text(room);
  text += "port 80";
  EXPECT_EQ(text.view().data(), room);
  EXPECT_EQ(std::string_view(room, sizeof room), "port 80.");
  text += "80";
  EXPECT_EQ(text.view(), "port 8080");
  EXPECT_NE(text.view().data(), room);
}

TEST(MadeText, TakesAFormattedPieceOfAnyLength) {
  CTarnFWText text;
  appendText(text, "<%s>", std::string(3000, 'x').c_str());
  EXPECT_EQ(text.str(), "<" + std::string(3000, 'x') + ">");
}
