#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netdb.h>

#include <string>
#include <vector>

#include "LibcShim.h"
#include "LogCapture.h"
#include "TarnFWLog.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

TEST(TarnFWUtilLists, ComponentsAreNumbersAllOrNames) {
  constexpr const char* names[] = {"misc", "api", "63"};
  unsigned int component = 0;
  const auto parse = [&](const char* text) { return ParseCompString(text, &component, names, 3); };
  EXPECT_TRUE(parse("255"));
  EXPECT_EQ(component, 255u);
  EXPECT_TRUE(parse("63"));
  EXPECT_EQ(component, 63u);
  EXPECT_TRUE(parse("0x10"));
  EXPECT_EQ(component, 16u);
  EXPECT_TRUE(parse("ALL"));
  EXPECT_EQ(component, 255u);
  EXPECT_TRUE(parse("API"));
  EXPECT_EQ(component, 1u);
  EXPECT_FALSE(parse("64"));
  EXPECT_FALSE(parse("254"));
  EXPECT_FALSE(parse("256"));
  EXPECT_FALSE(parse("nothing"));
  EXPECT_FALSE(parse(""));
}

TEST(TarnFWUtilLists, ALeadingDigitNeverReachesTheNames) {
  constexpr const char* names[] = {"2nd", "64"};
  unsigned int component = 0;
  EXPECT_FALSE(ParseCompString("2nd", &component, names, 2));
  EXPECT_FALSE(ParseCompString("64", &component, names, 2));
  constexpr const char* digits[] = {"9", "0"};
  EXPECT_TRUE(ParseCompString("9", &component, digits, 2));
  EXPECT_EQ(component, 9u);
  EXPECT_TRUE(ParseCompString("0", &component, digits, 2));
  EXPECT_EQ(component, 0u);
}

TEST(TarnFWUtilLists, NoNamesMeansNoName) {
  constexpr const char* names[] = {"misc"};
  unsigned int component = 0;
  EXPECT_FALSE(ParseCompString("misc", &component, names, 0));
  EXPECT_TRUE(ParseCompString("all", &component, names, 0));
  EXPECT_FALSE(ParseCompString(nullptr, &component, names, 1));
  EXPECT_FALSE(ParseCompString("misc", nullptr, names, 1));
  EXPECT_FALSE(ParseCompString("misc", &component, nullptr, 1));
}

TEST(TarnFWUtilLists, EthertypesComeInNetworkOrder) {
  std::uint16_t types[4] = {};
  unsigned int count = 0;
  EXPECT_TRUE(ParseEtherTypeString("0x0800,0x8000", types, 4, &count));
  EXPECT_EQ(count, 2u);
  EXPECT_EQ(types[0], htons(0x0800));
  EXPECT_EQ(types[1], htons(0x8000));
  EXPECT_TRUE(ParseEtherTypeString(" 1,\t2 , 010", types, 4, &count));
  EXPECT_EQ(count, 3u);
  EXPECT_EQ(types[2], htons(8));
  EXPECT_TRUE(ParseEtherTypeString("65535", types, 4, &count));
  EXPECT_TRUE(ParseEtherTypeString("", types, 4, &count));
  EXPECT_EQ(count, 0u);
}

TEST(TarnFWUtilLists, AnEthertypePastTheLastOneIsDroppedUnread) {
  std::uint16_t types[5] = {0, 0, 0, 0, 0xaaaa};
  unsigned int count = 0;
  EXPECT_TRUE(ParseEtherTypeString("1,2,3,4,5", types, 4, &count));
  EXPECT_EQ(count, 4u);
  EXPECT_EQ(types[4], 0xaaaa);
  EXPECT_TRUE(ParseEtherTypeString("1,2,3,4,nonsense", types, 4, &count));
  EXPECT_TRUE(ParseEtherTypeString("1", types, 0, &count));
  EXPECT_EQ(count, 0u);
}

TEST(TarnFWUtilLists, OneBadEthertypeRefusesTheList) {
  std::uint16_t types[4] = {};
  unsigned int count = 0;
  for (const char* text : {"65536", "-1", "x", "1,65536", "1;2"}) {
    EXPECT_FALSE(ParseEtherTypeString(text, types, 4, &count)) << text;
  }
  EXPECT_FALSE(ParseEtherTypeString(nullptr, types, 4, &count));
  EXPECT_FALSE(ParseEtherTypeString("1", nullptr, 4, &count));
  EXPECT_FALSE(ParseEtherTypeString("1", types, 4, nullptr));
}

TEST(TarnFWUtilLists, ProtocolsAreNamesOfTheHostOrNumbers) {
  if (getprotobyname("tcp") == nullptr) GTEST_SKIP() << "the host has no protocol table";
  std::uint8_t protocols[8] = {};
  unsigned int count = 0;
  EXPECT_TRUE(ParseProtocolString("tcp,udp,2", protocols, 8, &count));
  EXPECT_EQ(count, 3u);
  EXPECT_EQ(protocols[0], 6);
  EXPECT_EQ(protocols[1], 17);
  EXPECT_EQ(protocols[2], 2);
}

TEST(TarnFWUtilLists, ProtocolNumbersEndAt255) {
  std::uint8_t protocols[9] = {0, 0, 0, 0, 0, 0, 0, 0, 0xaa};
  unsigned int count = 0;
  EXPECT_TRUE(ParseProtocolString("0 255", protocols, 8, &count));
  EXPECT_EQ(count, 2u);
  EXPECT_EQ(protocols[1], 255);
  for (const char* text : {"256", "-1", "0x6", "no-such-protocol", "1,256"}) {
    EXPECT_FALSE(ParseProtocolString(text, protocols, 8, &count)) << text;
  }
  EXPECT_TRUE(ParseProtocolString("1,2,3,4,5,6,7,8,999", protocols, 8, &count));
  EXPECT_EQ(count, 8u);
  EXPECT_EQ(protocols[8], 0xaa);
  EXPECT_FALSE(ParseProtocolString(nullptr, protocols, 8, &count));
  EXPECT_FALSE(ParseProtocolString("1", nullptr, 8, &count));
  EXPECT_FALSE(ParseProtocolString("1", protocols, 8, nullptr));
}

TEST(TarnFWUtilLists, ACopyThatCannotBeMadeIsLogged) {
  LogCapture log;
  std::uint16_t types[1];
  std::uint8_t protocols[1];
  std::uint32_t values[1];
  unsigned int count = 0;
  {
    const LibcShim::FailingCopies failing;
    EXPECT_FALSE(ParseEtherTypeString("1", types, 1, &count));
    EXPECT_FALSE(ParseProtocolString("2", protocols, 1, &count));
    EXPECT_FALSE(ParseTimeoutList("3", values, 1));
  }
  EXPECT_EQ(log.normalized(),
            (std::vector<std::string>{
                "4|tarnfw: TarnFWUtil:ParseEtherTypeString():N invalid ethertype: 1\n",
                "4|tarnfw: TarnFWUtil:ParseProtocolString():N invalid protocol: 2\n",
                "4|tarnfw: TarnFWUtil:ParseTimeoutList():N out of memory\n\n",
            }));
}
