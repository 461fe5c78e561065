// A flow as one line, for every kind, protocol, family and translation, and its attributes.

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netdb.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "FlowBytes.h"
#include "FlowDpi.h"
#include "FlowNames.h"
#include "FlowRecord.h"
#include "FlowStates.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "TimeZone.h"

namespace {

/// The line of a record that stands in memory of its own size, so that the address sanitizer sees
/// what is read past the end.
std::string line(const Bytes& flow, const FlowView& view = {.attributes = true}) {
  const std::unique_ptr<std::byte[]> block(new std::byte[flow.size()]);
  std::memcpy(block.get(), flow.data(), flow.size());
  return captured([&] { return PrintRecord({block.get(), flow.size()}, view), 0; }).out;
}

/// What stands around the connection of a record of `ipv4Flow` and `ipv6Flow`.
std::string active(const std::string& protocol, const std::string& ethertype,
                   const std::string& connection) {
  return "102030405060708 Active " + protocol + " " + ethertype + " IN 1003 4 5  " + connection +
         " 11 22 33 44\n";
}
std::string ipv4Line(const std::string& protocol, const std::string& connection) {
  return active(protocol, "0800", connection);
}
std::string ipv6Line(const std::string& protocol, const std::string& connection) {
  return active(protocol, "86dd", connection);
}

const std::string kTcp4 = "10.0.0.1:Unknown(1024) -> 10.0.0.2:https(443)";
const std::string kTcp6 = "2001:db8::1:Unknown(1024) -> 2001:db8::2:https(443)";
const std::string kTcpRest = " 7 EST:TIMEWAIT  rtt 120 retrans 5/6";

/// A translation to 192.0.2.9 port 80 or 2001:db8::9 port 80.
Bytes translated4(Bytes flow) { return flow.at(153, {192, 0, 2, 9}).at(177, {0, 80}); }
Bytes translated6(Bytes flow) {
  return flow.at(177, {0x20, 0x01, 0x0d, 0xb8}).at(192, {9}).at(229, {0, 80});
}

/// A flow with attributes after it.
Bytes withAttributes(Bytes flow, const std::vector<Bytes>& attributes) {
  flow.at(2, {static_cast<int>(attributes.size())});
  for (const Bytes& attribute : attributes)
    flow.insert(flow.end(), attribute.begin(), attribute.end());
  return put16(flow, 0, static_cast<std::uint16_t>(flow.size()));
}

/// An attribute with a value of `size` bytes, cleared.
Bytes attribute(int key, int type, std::size_t size) {
  Bytes bytes(10 + size);
  put16(put16(bytes, 0, static_cast<std::uint16_t>(key)), 2, static_cast<std::uint16_t>(type));
  return put32(bytes, 4, static_cast<std::uint32_t>(bytes.size()));
}
Bytes number(int key, int type, std::uint64_t value) {
  Bytes bytes = attribute(key, type, 8);
  return put64(bytes, 10, value);
}

/// How attributes print.
std::string attributesText(const std::vector<Bytes>& attributes) {
  const std::string text = line(withAttributes(ipv4Flow(47), attributes));
  const std::string before = " attr: ";
  const std::size_t place = text.find(before);
  if (place == std::string::npos) return text;
  return text.substr(place + before.size(), text.size() - 1 - place - before.size());
}

}  // namespace

TEST(PrintRecord, WithoutARecordThereIsAWordForIt) {
  EXPECT_EQ(captured([] { return PrintRecord({}, {}), 0; }).out, "!!!Empty!!!\n");
}

TEST(PrintRecord, TcpHasPortsStatesAndTimes) {
  EXPECT_EQ(line(ipv4Flow(6)), ipv4Line("tcp", kTcp4 + kTcpRest));
  EXPECT_EQ(line(ipv6Flow(6)), ipv6Line("tcp", kTcp6 + kTcpRest));
  EXPECT_EQ(line(translated4(ipv4Flow(6))),
            ipv4Line("tcp", kTcp4 + " [192.0.2.9:http(80)]" + kTcpRest));
  EXPECT_EQ(line(translated6(ipv6Flow(6))),
            ipv6Line("tcp", kTcp6 + " [2001:db8::9:http(80)]" + kTcpRest));
}

TEST(PrintRecord, UdpHasPorts) {
  const std::string udp4 = "10.0.0.1:Unknown(1024) -> 10.0.0.2:domain(53)";
  EXPECT_EQ(line(ipv4Flow(17).at(175, {0, 53})), ipv4Line("udp", udp4 + " "));
  EXPECT_EQ(line(translated4(ipv4Flow(17)).at(175, {0, 53}).at(177, {0, 123})),
            ipv4Line("udp", udp4 + " [192.0.2.9:ntp(123)] "));
  EXPECT_EQ(line(ipv6Flow(17).at(227, {0, 53})),
            ipv6Line("udp", "2001:db8::1:Unknown(1024) -> 2001:db8::2:domain(53) "));
  EXPECT_EQ(
      line(translated6(ipv6Flow(17)).at(227, {0, 53}).at(229, {0, 123})),
      ipv6Line("udp",
               "2001:db8::1:Unknown(1024) -> 2001:db8::2:domain(53) [2001:db8::9:ntp(123)] "));
}

TEST(PrintRecord, AnUnknownFamilyOfTcpAndUdpEndsTheLineInItsMiddle) {
  EXPECT_EQ(line(ipv4Flow(6).at(90, {10})), ipv4Line("tcp", "Unknown Address family 10\n"));
  EXPECT_EQ(line(ipv4Flow(17).at(90, {0})), ipv4Line("udp", "Unknown Address family 0\n"));
}

TEST(PrintRecord, IcmpHasItsTypeAndCodeInItsOwnFormWhateverTheFamily) {
  EXPECT_EQ(line(ipv4Flow(1).at(157, {8, 255})), ipv4Line("icmp", "10.0.0.1 -> 10.0.0.2 8 255"));
  EXPECT_EQ(line(translated4(ipv4Flow(1)).at(157, {3, 1}).at(90, {28})),
            ipv4Line("icmp", "10.0.0.1 -> 10.0.0.2 [192.0.2.9] 3 1"));
  EXPECT_EQ(line(ipv6Flow(58).at(209, {128, 4})),
            ipv6Line("ipv6-icmp", "2001:db8::1 -> 2001:db8::2 128 4"));
  EXPECT_EQ(line(translated6(ipv6Flow(58)).at(209, {1, 2}).at(90, {2})),
            ipv6Line("ipv6-icmp", "2001:db8::1 -> 2001:db8::2 [2001:db8::9] 1 2"));
}

TEST(PrintRecord, OtherProtocolsHaveTheAddressesOfTheirFamily) {
  EXPECT_EQ(line(ipv4Flow(47)), ipv4Line("gre", "10.0.0.1 -> 10.0.0.2"));
  EXPECT_EQ(line(translated4(ipv4Flow(47))), ipv4Line("gre", "10.0.0.1 -> 10.0.0.2 [192.0.2.9]"));
  EXPECT_EQ(line(ipv6Flow(47)), ipv6Line("gre", "2001:db8::1 -> 2001:db8::2"));
  EXPECT_EQ(line(translated6(ipv6Flow(47))),
            ipv6Line("gre", "2001:db8::1 -> 2001:db8::2 [2001:db8::9]"));
  EXPECT_EQ(
      line(ipv4Flow(47).at(90, {10}).at(209, {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88})),
      ipv4Line("gre", "Other(1122334455667788)"));
  // Two of them have one form whatever the family says.
  EXPECT_EQ(line(ipv4Flow(0).at(90, {28})), ipv4Line("ip", "10.0.0.1 -> 10.0.0.2"));
  EXPECT_EQ(line(ipv6Flow(41).at(90, {2})), ipv6Line("ipv6", "2001:db8::1 -> 2001:db8::2"));
}

TEST(PrintRecord, AProtocolWithoutANameHasItsNumber) {
  EXPECT_EQ(line(ipv4Flow(254)), ipv4Line("other(254)", "10.0.0.1 -> 10.0.0.2"));
}

TEST(PrintRecord, AProtocolsNameHas15CharactersOfRoom) {
  EXPECT_EQ(line(ipv4Flow(135)), ipv4Line("mobility-header", "10.0.0.1 -> 10.0.0.2"));
}

TEST(PrintRecord, AnyByteOfATranslatedAddressMakesItOne) {
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_NE(line(ipv4Flow(47).at(153 + i, {1})).find(" [" + std::string(i == 0 ? "1." : "0.")),
              std::string::npos)
        << i;
  }
  for (std::size_t i = 0; i < 16; ++i)
    EXPECT_NE(line(ipv6Flow(47).at(177 + i, {1})).find(" ["), std::string::npos) << i;
  // What stands around the field does not.
  EXPECT_EQ(line(ipv4Flow(47).at(157, {1})), ipv4Line("gre", "10.0.0.1 -> 10.0.0.2"));
  EXPECT_EQ(line(ipv6Flow(47).at(193, {1})), ipv6Line("gre", "2001:db8::1 -> 2001:db8::2"));
}

TEST(PrintRecord, FlowsOfLayerTwoHaveMacAddressesAndNoProtocol) {
  EXPECT_EQ(line(ipv4Flow(6, 4)),
            "102030405060708 L2 pass  0800 IN 1003   02:00:00:00:00:0a 02:00:00:00:00:0b 11 22 33 "
            "44\n");
  EXPECT_EQ(line(ipv4Flow(6, 5)),
            "102030405060708 L2 drop  0800 IN 1003   02:00:00:00:00:0a 02:00:00:00:00:0b 11 22 33 "
            "44\n");
}

TEST(PrintRecord, KindsWithoutAStateLeaveTheirBlanks) {
  EXPECT_EQ(line(ipv4Flow(47, 3).at(144, {7})),
            "102030405060708 Drop gre 0800 IN 1003   10.0.0.1 -> 10.0.0.2 11 22 33 44\n");
  EXPECT_EQ(line(ipv4Flow(47, 0)),
            "102030405060708 Invalid gre 0800 IN 1003   10.0.0.1 -> 10.0.0.2 11 22 33 44\n");
  EXPECT_EQ(line(ipv4Flow(47, 6)),
            "102030405060708 Invalid gre 0800 IN 1003   10.0.0.1 -> 10.0.0.2 11 22 33 44\n");
  Bytes zero(251);
  zero.at(87, {3});
  EXPECT_EQ(line(zero), "0 Drop ip 0000 N/A 0   0.0.0.0 -> 0.0.0.0 0 0 0 0\n");
}

TEST(PrintRecord, FlagsAndDirectionHaveTheirWords) {
  const std::vector<std::string> flags = {"",      "(blocked)",     "(S)",     "(blocked,S)",
                                          "(est)", "(blocked,est)", "(S,est)", "(blocked,S,est)",
                                          ""};
  for (int bits = 0; bits < 9; ++bits) {
    EXPECT_EQ(line(ipv4Flow(47, 2).at(144, {bits}).at(141, {2})),
              "102030405060708 Inactive gre 0800 OUT 1003 4 5 " +
                  flags[static_cast<std::size_t>(bits)] + " 10.0.0.1 -> 10.0.0.2 11 22 33 44\n");
  }
  EXPECT_EQ(line(ipv4Flow(47).at(141, {3})).find(" 0800 N/A 1003 "), 26u);
}

TEST(PrintRecord, GatewaysStandBeforeTheRoundTripTime) {
  Bytes flow = ipv4Flow(6);
  EXPECT_EQ(line(putAlg(flow, kIPv4Alg, 1, 1, 21)),
            ipv4Line("tcp", kTcp4 + " 7 EST:TIMEWAIT  alg ctrl(FTP) 21 rtt 120 retrans 5/6"));
  Bytes udp = ipv6Flow(17);
  EXPECT_EQ(line(putAlg(udp, kIPv6Alg, 5, 2, 69)),
            ipv6Line("udp",
                     "2001:db8::1:Unknown(1024) -> 2001:db8::2:https(443)  alg data(TFTP) "
                     "69 1122334455667788"));
  // 39 characters of it are printed.
  Bytes longest = ipv4Flow(17);
  EXPECT_EQ(line(putAlg(longest, kIPv4Alg, 4, 2, 65535)),
            ipv4Line("udp", kTcp4 + "  alg data(DCERPC) 65535 112233445566778"));
}

TEST(PrintRecord, AConnectionIsCutAfter155Characters) {
  Bytes flow(251, 0xff);
  put16(flow, 0, 251).at(2, {0}).at(87, {1}).at(89, {6, 28});
  const std::string end = "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff:Unknown(65535)";
  const std::string whole = end + " -> " + end + " [" + end + "] 65535";
  EXPECT_EQ(line(flow), "ffffffffffffffff Active tcp ffff N/A 4294967295 255 255 (blocked,S,est) " +
                            whole.substr(0, 155) +
                            " 18446744073709551615 18446744073709551615 18446744073709551615 "
                            "18446744073709551615\n");
}

TEST(PrintRecord, TimesAreLocal) {
  const TimeZone zone("TST-02:30");
  EXPECT_EQ(line(ipv4Flow(47), {.times = true}),
            "102030405060708 Active gre 0800 IN 1003 4 5  10.0.0.1 -> 10.0.0.2 11 22 33 44 Start: "
            "Wed, 15 Nov 2023 00:43:20 +0230, End: Wed, 15 Nov 2023 00:44:20 +0230\n");
}

TEST(TCPStateStr, NamesItsStates) {
  char room[16];
  const std::vector<std::string> names = {"CLOSED",  "LISTEN",    "SYNSENT",  "SYNRECV",
                                          "EST",     "CLOSEWAIT", "FINWAIT1", "CLOSING",
                                          "LASTACK", "FINWAIT2",  "TIMEWAIT", "other(11)"};
  for (std::uint16_t state = 0; state < names.size(); ++state)
    EXPECT_EQ(TCPStateStr(state, room), names[state]);
  EXPECT_STREQ(TCPStateStr(65535, room), "other(65535)");
}

TEST(PortStr, NamesEveryServiceAsTheCLibraryDoes) {
  std::set<std::pair<std::string, int>> ports;
  setservent(0);
  while (const servent* const entry = getservent()) {
    for (const char* const protocol : {"tcp", "udp"}) {
      for (const int step : {-1, 0, 1})
        ports.insert(
            {protocol, (ntohs(static_cast<std::uint16_t>(entry->s_port)) + step) & 0xffff});
    }
  }
  endservent();
  for (const auto& [protocol, port] : ports) {
    const auto number = static_cast<std::uint16_t>(port);
    const servent* const entry = getservbyport(htons(number), protocol.c_str());
    char room[32];
    EXPECT_STREQ(PortStr(protocol.c_str(), number, room),
                 entry != nullptr ? entry->s_name : "Unknown")
        << protocol << " " << port;
  }
}

TEST(PortStr, CutsANameToItsRoom) {
  char room[32];
  EXPECT_STREQ(PortStr("tcp", 443, room), "https");
  EXPECT_STREQ(PortStr("udp", 53, room), "domain");
  EXPECT_STREQ(PortStr("tcp", 1, {room, 3}), "tc");  // tcpmux
  EXPECT_STREQ(PortStr("tcp", 0, room), "Unknown");
}

// --- Attributes

TEST(FlowAttributes, NumbersPrintByTheirType) {
  EXPECT_EQ(attributesText({number(9, 0, ~0ull), number(9, 1, ~0ull), number(9, 0, 5)}),
            "-1,18446744073709551615,5");
}

TEST(FlowAttributes, EncodedNumbersPrintTheirName) {
  EXPECT_EQ(attributesText({number(1, 2, 768), number(1, 2, 767), number(3, 2, 2), number(4, 2, 0),
                            number(6, 2, 3)}),
            "SSL_V3,UNKNOWN,CIFS_SMB_V2,GET,PUT");
  EXPECT_EQ(attributesText({number(1, 2, 772), number(1, 2, 773), number(1, 2, 766),
                            number(3, 2, 3), number(4, 2, 7), number(4, 2, 8), number(6, 2, 4)}),
            "TLS_V13,UNK(1/2/18),UNK(1/2/18),UNK(3/2/18),TRACE,UNK(4/2/18),UNK(6/2/18)");
  EXPECT_EQ(attributesText({number(5, 2, 0), number(7, 2, 0), number(65535, 2, 0)}),
            "UNK(5/2/18),UNK(7/2/18),UNK(65535/2/18)");
}

TEST(FlowAttributes, NumbersOfApplicationsAndCipherSuitesHaveTheirLimits) {
  const auto text = [](int key, std::uint64_t value) {
    return attributesText({number(key, 2, value)});
  };
  // 1977 applications, the first of which has the number -1.
  EXPECT_NE(text(0, ~0ull), "UNK(0/2/18)");
  EXPECT_NE(text(0, 1975), "UNK(0/2/18)");
  EXPECT_EQ(text(0, 1976), "UNK(0/2/18)");
  EXPECT_EQ(text(0, ~0ull - 1), "UNK(0/2/18)");
  EXPECT_EQ(text(2, 186), "UNK(2/2/18)");
  EXPECT_EQ(text(2, 49152), "UNK(2/2/18)");
  EXPECT_EQ(text(2, 49212), "UNK(2/2/18)");
  EXPECT_NE(text(2, 0), "UNK(2/2/18)");
  EXPECT_NE(text(2, 185), "UNK(2/2/18)");
  EXPECT_EQ(text(2, 49153), "TLS_ECDH_ECDSA_WITH_NULL_SHA");
  EXPECT_NE(text(2, 49211), "UNK(2/2/18)");
}

TEST(FlowAttributes, AnIdentifierMayHaveAName) {
  Bytes plain = attribute(11, 3, 18);
  for (int i = 0; i < 16; ++i) plain.at(10 + static_cast<std::size_t>(i), {0xa0 + i});
  Bytes named = attribute(11, 3, 18 + 5);
  named.at(26, {5}).text(28, "mail");
  Bytes full = attribute(11, 3, 18 + 2);
  full.at(26, {0, 1}).text(28, "ab");
  EXPECT_EQ(attributesText({plain, named, full}),
            "(a0a1a2a3-a4a5-a6a7-a8a9-aaabacadaeaf),mail(00000000-0000-0000-0000-000000000000),"
            "ab(00000000-0000-0000-0000-000000000000)");
}

TEST(FlowAttributes, ASecurityIdentifierPrintsItsParts) {
  Bytes sid = attribute(8, 4, 72);
  sid.at(14, {1, 2}).at(16, {0, 0, 0, 0, 0, 5});
  put32(put32(sid, 22, 21), 26, 0xffffffff);
  Bytes small = attribute(8, 4, 12);
  small.at(14, {1, 0}).at(16, {1, 0, 0, 0, 0, 0});
  Bytes revision = sid, count = sid, cut = attribute(8, 4, 19);
  revision.at(14, {2});
  count.at(15, {16});
  cut.at(14, {1, 2});
  EXPECT_EQ(attributesText({sid, small, revision, count, cut}),
            "S-1-5-21-4294967295,S-1-1099511627776,UNK(8/4/82),UNK(8/4/82),UNK(8/4/29)");
}

TEST(FlowAttributes, AValueThatIsNotThereOrHasNoTypeIsUnknown) {
  EXPECT_EQ(attributesText({attribute(1, 5, 8), attribute(1, 65535, 0), attribute(9, 0, 7),
                            attribute(9, 1, 0), attribute(1, 2, 7), attribute(11, 3, 17),
                            attribute(8, 4, 0)}),
            "UNK(1/5/18),UNK(1/65535/10),UNK(9/0/17),UNK(9/1/10),UNK(1/2/17),UNK(11/3/27),"
            "UNK(8/4/10)");
}

TEST(FlowAttributes, ALengthThatLeadsOutOfTheRecordEndsThem) {
  for (const std::uint32_t length : {0u, 9u, 19u, 0x7fffffffu, ~0u}) {
    const LogCapture log;
    Bytes last = number(9, 1, 8);
    put32(last, 4, length);
    EXPECT_EQ(attributesText({number(9, 1, 7), last, number(9, 1, 9)}), length == 19 ? "7,8" : "7")
        << length;
    EXPECT_EQ(log.lines().size(), 1u) << length;
    if (length != 19) {
      EXPECT_TRUE(log.has(4, "attribute 2 of 3 has " + std::to_string(length) +
                                 " bytes, of its flow 36 are left\n"));
    }
  }
}

TEST(FlowAttributes, MoreThanThereAreEndWithTheRecord) {
  for (std::size_t size = 0; size < 18; ++size) {
    const LogCapture log;
    Bytes flow = withAttributes(ipv4Flow(47), {number(9, 1, 7)});
    const Bytes cut(flow.begin(), flow.begin() + static_cast<std::ptrdiff_t>(251 + size));
    EXPECT_EQ(line(cut),
              "102030405060708 Active gre 0800 IN 1003 4 5  10.0.0.1 -> 10.0.0.2 11 22 33 44 attr: "
              "\n");
    EXPECT_EQ(log.lines().size(), 1u);
  }
}

TEST(FlowAttributes, AreNotLookedAtWhereNoneArrive) {
  const LogCapture log;
  EXPECT_EQ(line(ipv4Flow(47).at(2, {9}), {}), ipv4Line("gre", "10.0.0.1 -> 10.0.0.2"));
  EXPECT_TRUE(log.lines().empty());
}

// --- Texts of deep inspection

TEST(DpiString, AFlowHasTheTextThatWasStored) {
  EXPECT_EQ(DpiString(5), "");
  attrmap()[5] = " dpi";
  EXPECT_EQ(DpiString(5), " dpi");
  EXPECT_EQ(DpiString(6), "");
  attrmap()[0x0102030405060708] = " seen";
  EXPECT_EQ(line(ipv4Flow(47)), ipv4Line("gre", "10.0.0.1 -> 10.0.0.2 seen"));
  attrmap().clear();
}

TEST(PopulateFlows, EveryRecordMakesOrEmptiesAnEntry) {
  Bytes records(3 * 136);
  put64(put64(records, 0, 7), 136, 8).text(8, "whatever the kernel says");
  attrmap()[7] = "old";
  populateFlows(std::as_bytes(std::span(records.data(), records.size() - 1)), 99);
  EXPECT_EQ(attrmap(), (std::map<std::uint64_t, std::string>{{7, ""}, {8, ""}}))
      << "the third is not whole";
  attrmap().clear();
}
