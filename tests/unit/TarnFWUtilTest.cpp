#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netdb.h>

#include <array>
#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "LibcShim.h"
#include "LogCapture.h"
#include "TarnFWLog.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

using Octets = std::array<std::uint8_t, 6>;
using IPv6 = std::array<std::uint8_t, 16>;

IPv6 bytesOf(const in6_addr& address) {
  IPv6 bytes;
  std::memcpy(bytes.data(), &address, bytes.size());
  return bytes;
}

in6_addr ipv6(const char* text) {
  in6_addr address;
  EXPECT_EQ(inet_pton(AF_INET6, text, &address), 1) << text;
  return address;
}

}  // namespace

// --- Numbers

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

TEST(TarnFWUtilNumbers, StrncpyAlwaysEndsTheText) {
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

// --- Ports

TEST(TarnFWUtilPorts, APairOfPortsHasADashOrAColonBetweenThem) {
  long low = 0;
  long high = 0;
  EXPECT_TRUE(Str2PortOrRange("22-30", &low, &high));
  EXPECT_EQ(low, 22);
  EXPECT_EQ(high, 30);
  EXPECT_TRUE(Str2PortOrRange("0:65535", &low, &high));
  EXPECT_EQ(low, 0);
  EXPECT_EQ(high, 65535);
  EXPECT_TRUE(Str2PortOrRange("22-22", &low, &high));
}

TEST(TarnFWUtilPorts, RefusesWhatIsNoPairOfPorts) {
  long low = 0;
  long high = 0;
  for (const char* text : {"22", "", "22-", "22:", "-5", "-", "22--30", "22- 30", "22-+30", "30-22",
                           "22-65536", "65536-65537", "22:30-40", "22-30:40", "a-30", "22-3a"}) {
    EXPECT_FALSE(Str2PortOrRange(text, &low, &high)) << text;
  }
  EXPECT_FALSE(Str2PortOrRange(nullptr, &low, &high));
  EXPECT_FALSE(Str2PortOrRange("1-2", nullptr, &high));
  EXPECT_FALSE(Str2PortOrRange("1-2", &low, nullptr));
}

TEST(TarnFWUtilPorts, ARangeHasAtLeastTwoPorts) {
  long low = 0;
  long high = 0;
  EXPECT_TRUE(Str2PortRange("22-23", &low, &high));
  EXPECT_FALSE(Str2PortRange("22-22", &low, &high));
  EXPECT_FALSE(Str2PortRange("23-22", &low, &high));
  EXPECT_FALSE(Str2PortRange(nullptr, &low, &high));
}

TEST(TarnFWUtilPorts, ParsePortStringGivesNetworkOrder) {
  std::uint16_t low = 1;
  std::uint16_t high = 1;
  EXPECT_TRUE(ParsePortString("22", &low, &high));
  EXPECT_EQ(low, htons(22));
  EXPECT_EQ(high, 0);
  EXPECT_TRUE(ParsePortString("22:30", &low, &high));
  EXPECT_EQ(low, htons(22));
  EXPECT_EQ(high, htons(30));
}

TEST(TarnFWUtilPorts, ParsePortStringRefusesARangeOfOnePort) {
  std::uint16_t low = 1;
  std::uint16_t high = 1;
  for (const char* text : {"22-22", "22-", "-5", "65536", "", "x"}) {
    low = high = 1;
    EXPECT_FALSE(ParsePortString(text, &low, &high)) << text;
    EXPECT_EQ(low, 0) << text;
    EXPECT_EQ(high, 0) << text;
  }
  EXPECT_FALSE(ParsePortString(nullptr, &low, &high));
  EXPECT_FALSE(ParsePortString("22", nullptr, &high));
  EXPECT_FALSE(ParsePortString("22", &low, nullptr));
}

// --- Lists and names

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

TEST(TarnFWUtilLists, TimeoutsHaveTheirNamesWhateverTheCase) {
  const char* const names[] = {
      "dfw.tcp.first_packet",  "dfw.tcp.opening",      "dfw.tcp.established",
      "dfw.tcp.closing",       "dfw.tcp.fin_wait",     "dfw.tcp.closed",
      "dfw.udp.first_packet",  "dfw.udp.single",       "dfw.udp.multiple",
      "dfw.icmp.first_packet", "dfw.icmp.error_reply", "dfw.other.first_packet",
      "dfw.other.single",      "dfw.other.multiple",   "dfw.ip.frag",
      "dfw.interval",          "dfw.adaptive_start",   "dfw.adaptive_end",
      "dfw.src_node",          "dfw.ts_diff",          "dfw.invalid_state",
      "dfw.invalid_l7"};
  ASSERT_EQ(std::size(names), kTimeouts);
  for (unsigned int i = 0; i < kTimeouts; ++i) {
    EXPECT_STREQ(g_tarnfw_timeout_name[i], names[i]);
    EXPECT_EQ(TimeoutName2ID(names[i]), i);
  }
  EXPECT_EQ(TimeoutName2ID("DFW.TCP.Opening"), 1u);
}

TEST(TarnFWUtilLists, AnUnknownTimeoutIsOnePastTheCount) {
  EXPECT_EQ(TimeoutName2ID("dfw.tcp"), 23u);
  EXPECT_EQ(TimeoutName2ID(""), 23u);
  EXPECT_EQ(TimeoutName2ID(nullptr), 23u);
}

TEST(TarnFWUtilLists, TimeoutListsHaveExactlyTheirCount) {
  std::uint32_t values[4] = {9, 9, 9, 9};
  EXPECT_TRUE(ParseTimeoutList("1 2\t3", values, 3));
  EXPECT_EQ(values[2], 3u);
  EXPECT_EQ(values[3], 9u);
  EXPECT_TRUE(ParseTimeoutList("4,5:6", values, 3));
  EXPECT_EQ(values[0], 4u);
  EXPECT_EQ(values[2], 6u);
  EXPECT_TRUE(ParseTimeoutList("0,4294967295,4294967296", values, 3));
  EXPECT_EQ(values[1], 4294967295u);
  EXPECT_EQ(values[2], 0u);
  EXPECT_TRUE(ParseTimeoutList("", values, 0));
  EXPECT_FALSE(ParseTimeoutList(nullptr, values, 3));
  EXPECT_FALSE(ParseTimeoutList("1", nullptr, 1));
}

TEST(TarnFWUtilLists, AMissingTimeoutLogsHowManyAreWanted) {
  LogCapture log;
  std::uint32_t values[22];
  EXPECT_FALSE(ParseTimeoutList("1 2 3", values, 22));
  ASSERT_EQ(log.normalized().size(), 1u);
  EXPECT_EQ(log.normalized()[0],
            "4|tarnfw: TarnFWUtil:ParseTimeoutList():N missing 19 timeout values\n\n");
}

TEST(TarnFWUtilLists, ABadTimeoutIsLogged) {
  std::uint32_t values[2];
  for (const std::string text : {"x", "-1", "9223372036854775808"}) {
    LogCapture log;
    EXPECT_FALSE(ParseTimeoutList(("1," + text).c_str(), values, 2));
    ASSERT_EQ(log.normalized().size(), 1u);
    EXPECT_EQ(log.normalized()[0],
              "4|tarnfw: TarnFWUtil:ParseTimeoutList():N bad timeout value: " + text + "\n\n");
  }
}

TEST(TarnFWUtilLists, OneTimeoutTooManyIsLogged) {
  LogCapture log;
  std::uint32_t values[3] = {0, 0, 9};
  EXPECT_FALSE(ParseTimeoutList("1,2,3", values, 2));
  ASSERT_EQ(log.normalized().size(), 1u);
  EXPECT_EQ(log.normalized()[0],
            "4|tarnfw: TarnFWUtil:ParseTimeoutList():N too many timeout values\n\n");
  EXPECT_EQ(values[2], 9u);
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

// --- Addresses

TEST(TarnFWUtilAddresses, AMacAddressWithoutAMaskCountsWhole) {
  for (const char* text : {"00:11:22:aa:Bb:ff", "00-11-22-aa-Bb-ff", "0:11:22:aa:bb:ff and more"}) {
    Octets address{};
    Octets mask{};
    EXPECT_TRUE(ParseMACString(text, address.data(), mask.data())) << text;
    EXPECT_EQ(address, (Octets{0x00, 0x11, 0x22, 0xaa, 0xbb, 0xff})) << text;
    EXPECT_EQ(mask, (Octets{0xff, 0xff, 0xff, 0xff, 0xff, 0xff})) << text;
  }
}

TEST(TarnFWUtilAddresses, AMacAddressIsMasked) {
  for (const char* text :
       {"00:11:22:33:44:55/ff:ff:0f:00:00:00", "00-11-22-33-44-55/ff-ff-0f-00-00-00"}) {
    Octets address{};
    Octets mask{};
    EXPECT_TRUE(ParseMACString(text, address.data(), mask.data())) << text;
    EXPECT_EQ(address, (Octets{0x00, 0x11, 0x02, 0x00, 0x00, 0x00})) << text;
    EXPECT_EQ(mask, (Octets{0xff, 0xff, 0x0f, 0x00, 0x00, 0x00})) << text;
  }
}

TEST(TarnFWUtilAddresses, OnlyTheLowBitsOfALongOctetCount) {
  // The scan cuts a number to its byte, so that no octet is out of range here.
  Octets address{};
  Octets mask{};
  EXPECT_TRUE(ParseMACString("100:1ff:2:3:4:5", address.data(), mask.data()));
  EXPECT_EQ(address, (Octets{0x00, 0xff, 0x02, 0x03, 0x04, 0x05}));
}

TEST(TarnFWUtilAddresses, RefusesWhatIsNoMacAddress) {
  Octets address{};
  Octets mask{};
  for (const char* text :
       {"", "00:11:22:33:44", "00:11:22:33:44:zz", "00:11-22:33:44:55", "00:11:22:33:44:55/",
        "00:11:22:33:44:55/ff:ff:ff:ff:ff", "00:11:22:33:44:55/ff-ff-ff-ff-ff-ff", "/"}) {
    EXPECT_FALSE(ParseMACString(text, address.data(), mask.data())) << text;
  }
  EXPECT_FALSE(ParseMACString(nullptr, address.data(), mask.data()));
  EXPECT_FALSE(ParseMACString("0:0:0:0:0:0", nullptr, mask.data()));
  EXPECT_FALSE(ParseMACString("0:0:0:0:0:0", address.data(), nullptr));
}

TEST(TarnFWUtilAddresses, AnIdentifierIsAVnicOrAVm) {
  const std::string normal = "00010203-0405-0607-0809-0a0b0c0d0e0f";
  const std::string gfy = "00 01 02 03 04 05 06 07-08 09 0a 0b 0c 0d 0e 0f";
  struct Case {
    std::string text;
    int index;
    int isVnic;
  };
  for (const Case& c : {Case{normal + ".004", 4, 1}, Case{gfy + ":005", 5, 1}, Case{gfy, 0, 0},
                        Case{normal, 0, 0}, Case{normal + ":004", 0, 0}}) {
    std::array<std::uint8_t, 16> uuid{};
    int index = 9;
    int isVnic = 9;
    EXPECT_TRUE(ParseUUIDString(c.text.c_str(), uuid.data(), &index, &isVnic)) << c.text;
    EXPECT_EQ(index, c.index) << c.text;
    EXPECT_EQ(isVnic, c.isVnic) << c.text;
    EXPECT_EQ(uuid[15], 0x0f) << c.text;
  }
}

TEST(TarnFWUtilAddresses, RefusesWhatIsNoIdentifier) {
  std::array<std::uint8_t, 16> uuid{};
  int index = 9;
  int isVnic = 9;
  EXPECT_FALSE(ParseUUIDString("no identifier", uuid.data(), &index, &isVnic));
  EXPECT_EQ(index, 0);
  EXPECT_EQ(isVnic, 0);
  EXPECT_FALSE(ParseUUIDString(nullptr, uuid.data(), &index, &isVnic));
  EXPECT_FALSE(ParseUUIDString("x", nullptr, &index, &isVnic));
  EXPECT_FALSE(ParseUUIDString("x", uuid.data(), nullptr, &isVnic));
  EXPECT_FALSE(ParseUUIDString("x", uuid.data(), &index, nullptr));
}

TEST(TarnFWUtilAddresses, InetPtonTakesTheFirstWord) {
  in_addr address{};
  EXPECT_EQ(tarn_inet_pton(AF_INET, " \t\n\v\f\r10.0.0.1 junk", &address), 1);
  EXPECT_EQ(address.s_addr, htonl(0x0a000001));
  EXPECT_EQ(tarn_inet_pton(AF_INET, "10.0.0.2\n", &address), 1);
  EXPECT_EQ(address.s_addr, htonl(0x0a000002));
  EXPECT_EQ(tarn_inet_pton(AF_INET, "", &address), 0);
  EXPECT_EQ(tarn_inet_pton(AF_INET, "  ", &address), 0);
  EXPECT_EQ(tarn_inet_pton(AF_INET, "10.0.0", &address), 0);
  EXPECT_EQ(tarn_inet_pton(AF_INET, nullptr, &address), 0);
  EXPECT_EQ(tarn_inet_pton(AF_INET, "10.0.0.1", nullptr), 0);
  EXPECT_EQ(tarn_inet_pton(AF_UNIX, "10.0.0.1", &address), -1);
}

TEST(TarnFWUtilAddresses, AWordOf46CharactersIsNotParsed) {
  in6_addr address;
  const std::string longest = "0000:0000:0000:0000:0000:ffff:255.255.255.255";
  ASSERT_EQ(longest.size(), 45u);
  EXPECT_EQ(tarn_inet_pton(AF_INET6, longest.c_str(), &address), 1);
  EXPECT_EQ(tarn_inet_pton(AF_INET6, ("  " + longest + " " + longest).c_str(), &address), 1);
  EXPECT_EQ(tarn_inet_pton(AF_INET6, std::string(46, '1').c_str(), &address), 0);
  // Even a family that inet_pton would refuse by -1 is not looked at.
  EXPECT_EQ(tarn_inet_pton(AF_UNIX, std::string(46, '1').c_str(), &address), 0);
  EXPECT_EQ(tarn_inet_pton(AF_UNIX, std::string(45, '1').c_str(), &address), -1);
  EXPECT_EQ(tarn_inet_pton(AF_INET6, std::string(1000000, ':').c_str(), &address), 0);
}

TEST(TarnFWUtilAddresses, ParseIPv4StringMasksTheAddress) {
  struct Case {
    const char* text;
    std::uint32_t address;
    std::uint32_t mask;
  };
  for (const Case& c :
       {Case{"192.168.1.5", 0xc0a80105, 0xffffffff}, Case{"192.168.1.5/24", 0xc0a80100, 0xffffff00},
        Case{"192.168.1.0/255.255.255.0", 0xc0a80100, 0xffffff00}, Case{"192.168.1.5/0", 0, 0},
        Case{"192.168.1.5/32", 0xc0a80105, 0xffffffff},
        Case{"192.168.1.5/255.0.255.0", 0xc0000100, 0xff00ff00}}) {
    in_addr address{};
    in_addr mask{};
    int isRange = 9;
    EXPECT_TRUE(ParseIPv4String(c.text, &address, &mask, &isRange)) << c.text;
    EXPECT_EQ(ntohl(address.s_addr), c.address) << c.text;
    EXPECT_EQ(ntohl(mask.s_addr), c.mask) << c.text;
    EXPECT_EQ(isRange, 0) << c.text;
  }
}

TEST(TarnFWUtilAddresses, AnIPv4RangeRises) {
  in_addr first{};
  in_addr last{};
  int isRange = 0;
  EXPECT_TRUE(ParseIPv4String("10.0.0.9-10.0.0.10", &first, &last, &isRange));
  EXPECT_EQ(ntohl(first.s_addr), 0x0a000009u);
  EXPECT_EQ(ntohl(last.s_addr), 0x0a00000au);
  EXPECT_EQ(isRange, 1);
  EXPECT_FALSE(ParseIPv4String("10.0.0.9-10.0.0.9", &first, &last, &isRange));
  EXPECT_FALSE(ParseIPv4String("10.0.0.9-10.0.0.8", &first, &last, &isRange));
}

TEST(TarnFWUtilAddresses, RefusesWhatIsNoIPv4Address) {
  in_addr address{};
  in_addr mask{};
  int isRange = 0;
  for (const char* text :
       {"", "1.2.3", "1.2.3.4/33", "1.2.3.4/-1", "1.2.3.4/", "1.2.3.4/24x", "1.2.3.4-24",
        "1.2.3.4-", "-1.2.3.4", "1.2.3.4-1.2.3.9/24", "/24", "2001:db8::1"}) {
    EXPECT_FALSE(ParseIPv4String(text, &address, &mask, &isRange)) << text;
  }
  EXPECT_FALSE(ParseIPv4String(nullptr, &address, &mask, &isRange));
  EXPECT_FALSE(ParseIPv4String("1.2.3.4", nullptr, &mask, &isRange));
  EXPECT_FALSE(ParseIPv4String("1.2.3.4", &address, nullptr, &isRange));
  EXPECT_FALSE(ParseIPv4String("1.2.3.4", &address, &mask, nullptr));
}

TEST(TarnFWUtilAddresses, ParseIPv6StringMasksTheAddress) {
  struct Case {
    const char* text;
    const char* address;
    const char* mask;
  };
  for (const Case& c :
       {Case{"2001:db8::5", "2001:db8::5", "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"},
        Case{"2001:db8::5/32", "2001:db8::", "ffff:ffff::"},
        Case{"2001:db8::5/ffff::ffff", "2001::5", "ffff::ffff"}, Case{"2001:db8::5/0", "::", "::"},
        Case{"2001:db8::5/128", "2001:db8::5", "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"}}) {
    in6_addr address{};
    in6_addr mask{};
    int isRange = 9;
    EXPECT_TRUE(ParseIPv6String(c.text, &address, &mask, &isRange)) << c.text;
    EXPECT_EQ(bytesOf(address), bytesOf(ipv6(c.address))) << c.text;
    EXPECT_EQ(bytesOf(mask), bytesOf(ipv6(c.mask))) << c.text;
    EXPECT_EQ(isRange, 0) << c.text;
  }
}

TEST(TarnFWUtilAddresses, AnIPv6RangeRisesInOneNetworkOf64Bits) {
  in6_addr first{};
  in6_addr last{};
  int isRange = 0;
  EXPECT_TRUE(ParseIPv6String("2001:db8::1:ffff-2001:db8::2:0", &first, &last, &isRange));
  EXPECT_EQ(isRange, 1);
  EXPECT_EQ(bytesOf(last), bytesOf(ipv6("2001:db8::2:0")));
  EXPECT_TRUE(ParseIPv6String("::-::ffff:ffff:ffff:ffff", &first, &last, &isRange));
  for (const char* text :
       {"2001:db8::1-2001:db8::1", "2001:db8::2-2001:db8::1", "2001:db8:0:1::1-2001:db8:0:2::2",
        "2001:db8::1-2001:db9::2", "2001:db8::1-64", "2001:db8::1-"}) {
    EXPECT_FALSE(ParseIPv6String(text, &first, &last, &isRange)) << text;
  }
}

TEST(TarnFWUtilAddresses, RefusesWhatIsNoIPv6Address) {
  in6_addr address{};
  in6_addr mask{};
  int isRange = 0;
  for (const char* text : {"", "1.2.3.4", "2001:db8::1/129", "2001:db8::1/-1", "2001:db8::1/",
                           "2001:db8::1/64x", "/64", "2001:db8:::1"}) {
    EXPECT_FALSE(ParseIPv6String(text, &address, &mask, &isRange)) << text;
  }
  EXPECT_FALSE(ParseIPv6String(nullptr, &address, &mask, &isRange));
  EXPECT_FALSE(ParseIPv6String("::", nullptr, &mask, &isRange));
  EXPECT_FALSE(ParseIPv6String("::", &address, nullptr, &isRange));
  EXPECT_FALSE(ParseIPv6String("::", &address, &mask, nullptr));
}

TEST(TarnFWUtilAddresses, AColonTellsTheFamily) {
  in_addr ipv4[2] = {};
  in6_addr v6[2] = {};
  int isRange = 0;
  int isV6 = 9;
  EXPECT_TRUE(ParseIPString("10.0.0.5/24", ipv4, v6, &isRange, &isV6));
  EXPECT_EQ(isV6, 0);
  EXPECT_EQ(ntohl(ipv4[0].s_addr), 0x0a000000u);
  EXPECT_EQ(ntohl(ipv4[1].s_addr), 0xffffff00u);
  EXPECT_TRUE(ParseIPString("2001:db8::1-2001:db8::2", ipv4, v6, &isRange, &isV6));
  EXPECT_EQ(isV6, 1);
  EXPECT_EQ(isRange, 1);
  EXPECT_EQ(bytesOf(v6[1]), bytesOf(ipv6("2001:db8::2")));
  EXPECT_FALSE(ParseIPString("10.0.0.5:80", ipv4, v6, &isRange, &isV6));
  EXPECT_FALSE(ParseIPString(nullptr, ipv4, v6, &isRange, &isV6));
  EXPECT_FALSE(ParseIPString("::", nullptr, v6, &isRange, &isV6));
  EXPECT_FALSE(ParseIPString("::", ipv4, nullptr, &isRange, &isV6));
  EXPECT_FALSE(ParseIPString("::", ipv4, v6, nullptr, &isV6));
  EXPECT_FALSE(ParseIPString("::", ipv4, v6, &isRange, nullptr));
}

TEST(TarnInetPton, ReadsAQuadAsTheCLibraryDoes) {
  // Texts of random characters, and quads that may have one of them changed.
  std::uint64_t state = 1;
  const auto next = [&state] {
    state = state * 6364136223846793005u + 1442695040888963407u;
    return static_cast<unsigned int>(state >> 33);
  };
  const std::string characters = "0125.9 3.6x";
  unsigned int good = 0;
  for (int i = 0; i < 400000; ++i) {
    std::string text;
    if (i % 2 == 0) {
      for (unsigned int n = next() % 16; n > 0; --n) text += characters[next() % characters.size()];
    } else {
      for (int octet = 0; octet < 4; ++octet) {
        text += (octet == 0 ? "" : ".") + std::to_string(next() % 300);
      }
      if (next() % 4 == 0) text[next() % text.size()] = characters[next() % characters.size()];
    }
    const std::size_t start = text.find_first_not_of(' ');
    const std::string word =
        start == std::string::npos ? "" : text.substr(start, text.find(' ', start) - start);
    in_addr ours{};
    in_addr theirs{};
    const int expected = inet_pton(AF_INET, word.c_str(), &theirs);
    ASSERT_EQ(tarn_inet_pton(AF_INET, text.c_str(), &ours), expected) << "'" << text << "'";
    if (expected == 1) {
      ASSERT_EQ(ours.s_addr, theirs.s_addr) << text;
      ++good;
    }
  }
  EXPECT_GT(good, 50000u);
}
