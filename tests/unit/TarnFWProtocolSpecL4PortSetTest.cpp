#include <gtest/gtest.h>

#include "Expect.h"
#include "LibcShim.h"
#include "Message.h"
#include "TarnFWProtocolSpecL4PortSet.h"

using namespace TarnFirewall;

using PortSet = CTarnFWProtocolSpecL4PortSet;

namespace {

/// "1,2,...,count"
std::string ports(int count) {
  std::string text;
  for (int i = 1; i <= count; ++i) text += (i > 1 ? "," : "") + std::to_string(i);
  return text;
}

constexpr unsigned int key(unsigned int low, unsigned int high) { return (high << 16) | low; }

}  // namespace

TEST(TarnFWProtocolSpecL4PortSet, HasItsKindAndSize) {
  const PortSet spec(1, false);
  EXPECT_EQ(spec.getSpecType(), 3u);
  EXPECT_EQ(spec.getType(), 118);
  EXPECT_EQ(spec.getMsgSize(), 36u);
}

TEST(TarnFWProtocolSpecL4PortSet, TextOfASetWithoutMembersIsEmptyEvenWhenNegated) {
  EXPECT_EQ(PortSet(1, false).toString(), "");
  EXPECT_EQ(PortSet(1, true).toString(), "");
}

TEST(TarnFWProtocolSpecL4PortSet, TextHasRangesFirstInTheOrderOfTheirHighPort) {
  PortSet spec(1, false);
  spec.addPort(443);
  spec.addPort(80);
  EXPECT_EQ(spec.toString(), "port {80, 443}");
  spec.addPortRange(1, 300);
  spec.addPortRange(200, 250);
  spec.addPortRange(100, 250);
  EXPECT_EQ(spec.toString(), "port {100-250, 200-250, 1-300, 80, 443}");
  spec.setNegated(true);
  EXPECT_EQ(spec.toString(), "not port {100-250, 200-250, 1-300, 80, 443}");
  PortSet ranges(1, false);
  ranges.addPortRange(key(5, 6));
  EXPECT_EQ(ranges.toString(), "port {5-6}");
}

TEST(TarnFWProtocolSpecL4PortSet, WireFormHasRangesOfTwoEntriesThenPorts) {
  PortSet spec(2, false);
  spec.addPort(0x1122);
  spec.addPort(80);
  spec.addPortRange(0x0102, 0x0304);
  spec.addPortRange(5, 6);
  EXPECT_EQ(messageOf(spec),
            Bytes(36)
                .at(0, {6})
                .at(2, {0, 5, 0, 6, 0x01, 0x02, 0x03, 0x04, 0x00, 0x50, 0x11, 0x22})
                .at(32, {0x05, 0x00}));
  expectShortBuffersRefused(spec);
}

TEST(TarnFWProtocolSpecL4PortSet, WireFormOfFullSets) {
  PortSet all(1, ports(15).c_str());
  Bytes expected(36);
  expected.at(0, {15});
  for (std::size_t i = 0; i < 15; ++i) expected.at(3 + 2 * i, {static_cast<int>(i) + 1});
  EXPECT_EQ(messageOf(all), expected);

  PortSet ranges(1, false);
  for (unsigned short i = 0; i < 7; ++i)
    ranges.addPortRange(i, static_cast<unsigned short>(i + 100));
  ranges.addPort(9);
  Bytes two(36);
  two.at(0, {15}).at(32, {0x55, 0x15});
  for (std::size_t i = 0; i < 7; ++i)
    two.at(3 + 4 * i, {static_cast<int>(i), 0, static_cast<int>(i) + 100});
  two.at(30, {0, 9});
  EXPECT_EQ(messageOf(ranges), two);
}

TEST(TarnFWProtocolSpecL4PortSet, ReadsTextWithCommasBlanksAndTabs) {
  EXPECT_EQ(PortSet(1, "80,90").toString(), "port {80, 90}");
  EXPECT_EQ(PortSet(2, " 90\t80 ,, 100-200").toString(), "port {100-200, 80, 90}");
  EXPECT_EQ(PortSet(2, "").toString(), "");
  EXPECT_EQ(PortSet(2, "80").getDir(), 2);
}

TEST(TarnFWProtocolSpecL4PortSet, ATokenThatDoesNotReadNamesTheWholeText) {
  for (const char* text : {"80,x", "80,90-80", "80,80-80", "80,65536", "80:90,100", "1,-5"}) {
    EXPECT_THROW_WITH(PortSet(1, text), CInvalidL4PortException, 38,
                      std::string("invalid TCP/UDP port: ") + text);
  }
  EXPECT_THROW_WITH(PortSet(1, static_cast<const char*>(nullptr)), CInvalidL4PortException, 38,
                    "invalid TCP/UDP port: ");
}

TEST(TarnFWProtocolSpecL4PortSet, ATextThatCannotBeCopiedIsRefusedWhole) {
  const LibcShim::FailingCopies failing;
  EXPECT_THROW_WITH(PortSet(1, "80,90"), CInvalidL4PortException, 38,
                    "invalid TCP/UDP port: 80,90");
}

TEST(TarnFWProtocolSpecL4PortSet, FifteenPortsAreTakenAndASixteenthThrows) {
  EXPECT_EQ(PortSet(1, ports(15).c_str()).toString(),
            "port {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}");
  EXPECT_THROW_WITH(PortSet(1, ports(16).c_str()), CTooManyL4PortException, 39,
                    "too many TCP/UDP port: 16");
  EXPECT_THROW_WITH(PortSet(1, (ports(15) + ",junk").c_str()), CTooManyL4PortException, 39,
                    "too many TCP/UDP port: 16");
}

TEST(TarnFWProtocolSpecL4PortSet, ARangeAsFifteenthEntryThrows) {
  EXPECT_EQ(PortSet(1, (ports(13) + ",100-200").c_str()).toString(),
            "port {100-200, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}");
  EXPECT_THROW_WITH(PortSet(1, (ports(14) + ",100-200").c_str()), CTooManyL4PortException, 39,
                    "too many TCP/UDP port: 16");
}

TEST(TarnFWProtocolSpecL4PortSet, ARangeCountsAsTwoEntriesOfAText) {
  EXPECT_EQ(PortSet(1, ("100-200," + ports(13)).c_str()).toString(),
            "port {100-200, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}");
  EXPECT_THROW_WITH(PortSet(1, ("100-200," + ports(14)).c_str()), CTooManyL4PortException, 39,
                    "too many TCP/UDP port: 16");
  EXPECT_EQ(PortSet(1, "1-2,2-3,3-4,4-5,5-6,6-7,7-8,9").toString(),
            "port {1-2, 2-3, 3-4, 4-5, 5-6, 6-7, 7-8, 9}");
}

TEST(TarnFWProtocolSpecL4PortSet, ReadingCountsWhatTheTextNamesAndStopsWithoutErrorAtSixteen) {
  std::string text;
  for (int i = 0; i < 14; ++i) text += "80,";
  EXPECT_EQ(PortSet(1, (text + "90-95,junk,7").c_str()).toString(), "port {90-95, 80}");
  EXPECT_THROW_WITH(PortSet(1, (text + "80,80").c_str()), CTooManyL4PortException, 39,
                    "too many TCP/UDP port: 16");
}

TEST(TarnFWProtocolSpecL4PortSet, AMemberAddedTwiceIsThereOnce) {
  PortSet spec(1, false);
  spec.addPort(80);
  spec.addPort(80);
  spec.addPortRange(1, 2);
  spec.addPortRange(key(1, 2));
  EXPECT_EQ(spec.toString(), "port {1-2, 80}");
}

TEST(TarnFWProtocolSpecL4PortSet, TheLimitIsTestedBeforeTheSetIsLookedAt) {
  PortSet spec(1, ports(15).c_str());
  EXPECT_THROW_WITH(spec.addPort(1), CTooManyL4PortException, 39, "too many TCP/UDP port: 16");
  EXPECT_THROW_WITH(spec.addPortRange(1, 2), CTooManyL4PortException, 39,
                    "too many TCP/UDP port: 17");
  PortSet ranges(1, false);
  for (unsigned short i = 0; i < 7; ++i) ranges.addPortRange(i, 100);
  EXPECT_THROW_WITH(ranges.addPortRange(0, 100), CTooManyL4PortException, 39,
                    "too many TCP/UDP port: 16");
  ranges.addPort(1);
  EXPECT_THROW_WITH(ranges.addPort(2), CTooManyL4PortException, 39, "too many TCP/UDP port: 16");
}

TEST(TarnFWProtocolSpecL4PortSet, TakesUpToSevenRangeKeys) {
  std::vector<unsigned int> keys;
  for (unsigned int i = 0; i < 7; ++i) keys.push_back(key(i, i + 1));
  EXPECT_EQ(PortSet(1, std::span<const unsigned int>(keys), true).toString(),
            "not port {0-1, 1-2, 2-3, 3-4, 4-5, 5-6, 6-7}");
  keys.push_back(key(0, 1));
  EXPECT_THROW_WITH(PortSet(1, std::span<const unsigned int>(keys), false), CTooManyL4PortException,
                    39, "too many TCP/UDP port: 8");
}

TEST(TarnFWProtocolSpecL4PortSet, ReadsWireEntriesWithTheirRangeBits) {
  const net16 entries[] = {80, 90, 443, 7, 9};
  EXPECT_EQ(PortSet(1, std::span<const net16>(entries), 0, false).toString(),
            "port {7, 9, 80, 90, 443}");
  EXPECT_EQ(PortSet(1, std::span<const net16>(entries), 0x1, true).toString(),
            "not port {80-90, 7, 9, 443}");
  EXPECT_EQ(PortSet(1, std::span<const net16>(entries), 0x9, false).toString(),
            "port {7-9, 80-90, 443}");
  // A bit after the last entry means nothing.
  EXPECT_EQ(PortSet(1, std::span<const net16>(entries, 2), 0xfffd, false).toString(),
            "port {80-90}");
}

TEST(TarnFWProtocolSpecL4PortSet, RefusesWireRangesThatAreNone) {
  const net16 entries[] = {80, 90, 100, 100, 50};
  const std::span<const net16> all(entries);
  EXPECT_THROW_WITH(PortSet(1, all, 0x3, false), CInvalidL4PortException, 38,
                    "invalid TCP/UDP port: 80");
  EXPECT_THROW_WITH(PortSet(1, all, 0x4, false), CInvalidL4PortException, 38,
                    "invalid TCP/UDP port: 100");
  EXPECT_THROW_WITH(PortSet(1, all, 0x8, false), CInvalidL4PortException, 38,
                    "invalid TCP/UDP port: 100");
  EXPECT_THROW_WITH(PortSet(1, all, 0x10, false), CInvalidL4PortException, 38,
                    "invalid TCP/UDP port: 50");
  const net16 many[16] = {};
  EXPECT_THROW_WITH(PortSet(1, std::span<const net16>(many), 0, false), CTooManyL4PortException, 39,
                    "too many TCP/UDP port: 16");
}
