// Definitions of flow exclusion: text to record, record to text in both forms.

#include <gtest/gtest.h>
#include <netdb.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "Expect.h"
#include "FlowExclusionText.h"
#include "LibcShim.h"
#include "LogCapture.h"
#include "RunCommand.h"

namespace {

struct Parsed {
  bool ok = false;
  Bytes record = Bytes(162);
  std::string err;
};

Parsed parse(std::string text) {
  Parsed parsed;
  FWFlowExclusion_ record{};
  const CommandResult result = captured([&] {
    parsed.ok = ParseFlowExclusion(text.data(), record);
    return 0;
  });
  EXPECT_EQ(result.out, "");
  std::memcpy(parsed.record.data(), &record, sizeof record);
  parsed.err = result.err;
  return parsed;
}

/// The record of a definition that is right.
Bytes recordOf(const std::string& text) {
  const Parsed parsed = parse(text);
  EXPECT_TRUE(parsed.ok) << text;
  EXPECT_EQ(parsed.err, "") << text;
  return parsed.record;
}

/// The error line of one that is wrong.
std::string errorOf(const std::string& text) {
  const Parsed parsed = parse(text);
  EXPECT_FALSE(parsed.ok) << text;
  return parsed.err;
}

/// A record with these field and negate masks, of which nothing else is set.
Bytes record(std::uint32_t fields, std::uint32_t negated = 0) {
  const auto byte = [](std::uint32_t value, int place) {
    return static_cast<int>(value >> (8 * place) & 0xff);
  };
  return Bytes(162)
      .at(0, {byte(fields, 0), byte(fields, 1), byte(fields, 2), byte(fields, 3)})
      .at(4, {byte(negated, 0), byte(negated, 1), byte(negated, 2), byte(negated, 3)});
}

FWFlowExclusion_ fromBytes(const Bytes& bytes) {
  return TarnFirewall::loadRecord<FWFlowExclusion_>(bytes.data());
}

std::string shortForm(const Bytes& bytes) {
  return captured([&] {
           PrintFlowExclusion(std::fprintf, stdout, fromBytes(bytes));
           return 0;
         })
      .out;
}

std::string longForm(const Bytes& bytes) {
  return captured([&] {
           PrintLongFlowExclusion(std::fprintf, stdout, fromBytes(bytes));
           return 0;
         })
      .out;
}

/// A row of the table, of which each text stands in its column.
std::string row(const std::vector<std::string>& texts) {
  const std::vector<std::size_t> widths = {36, 36, 28, 78, 78, 33, 12, 12, 48, 48};
  std::string line;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    std::string cell = i < texts.size() ? texts[i] : "*";
    cell.resize(widths[i], ' ');
    line += cell + " ";
  }
  return line + "\n";
}

const char kVnic[] = "502e1f3a-c21a-7011-4ae1-005056991077";
const char kGfy[] = "50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77";

Bytes& putMachine(Bytes& record, std::size_t at) {
  return record.at(at, {0x50, 0x2e, 0x1f, 0x3a, 0xc2, 0x1a, 0x70, 0x11, 0x4a, 0xe1, 0x00, 0x50,
                        0x56, 0x99, 0x10, 0x77});
}

bool hostNamesProtocols() { return getprotobyname("tcp") != nullptr; }

}  // namespace

TEST(ParseFlowExclusion, ReadsMacAddressesWithAndWithoutAMask) {
  EXPECT_EQ(
      recordOf("00:50:56:99:10:78|||||||||"),
      record(0x1).at(26, {0, 0x50, 0x56, 0x99, 0x10, 0x78}).at(32, {255, 255, 255, 255, 255, 255}));
  EXPECT_EQ(recordOf("|01-00-5e-11-22-33/ff-ff-ff-80-00-00||||||||"),
            record(0x2).at(38, {1, 0, 0x5e, 0, 0, 0}).at(44, {255, 255, 255, 0x80, 0, 0}));
}

TEST(ParseFlowExclusion, ReadsUpToFourEthertypes) {
  EXPECT_EQ(recordOf("||0x0800|||||||"), record(0x100).at(9, {1}).at(18, {0x08, 0x00}));
  EXPECT_EQ(recordOf("||0x86dd 35020\t1,2,3|||||||"),
            record(0x100).at(9, {4}).at(18, {0x86, 0xdd, 0x88, 0xcc, 0, 1, 0, 2}));
}

TEST(ParseFlowExclusion, ReadsAddressesOfBothFamilies) {
  EXPECT_EQ(recordOf("|||10.20.7.5/24||||||"),
            record(0x4).at(50, {10, 20, 7, 0, 255, 255, 255, 0}));
  EXPECT_EQ(recordOf("||||10.20.7.16-10.20.7.23|||||"),
            record(0x30).at(82, {10, 20, 7, 16, 10, 20, 7, 23}));
  EXPECT_EQ(recordOf("|||10.20.7.16-10.20.7.23||||||"),
            record(0xc).at(50, {10, 20, 7, 16, 10, 20, 7, 23}));
  EXPECT_EQ(recordOf("|||fd00:20::7/32||||||"),
            record(0x80000004).at(50, {0xfd, 0, 0, 0x20}).at(66, {255, 255, 255, 255}));
  EXPECT_EQ(
      recordOf("||||fe80::1-fe80::1f|||||"),
      record(0x80000030).at(82, {0xfe, 0x80}).at(97, {1}).at(98, {0xfe, 0x80}).at(113, {0x1f}));
}

TEST(ParseFlowExclusion, OneBitSaysForBothAddressesThatTheyAreIpv6) {
  const Bytes wanted =
      record(0x80000014).at(50, {10, 20, 7, 1, 255, 255, 255, 255}).at(82, {0xfd}).at(98, {255});
  EXPECT_EQ(recordOf("|||10.20.7.1|fd00::/8|||||"), wanted);
}

TEST(ParseFlowExclusion, ReadsUpToEightProtocolsByNameAndNumber) {
  EXPECT_EQ(recordOf("|||||1,2,3,4,5,6,7,8,9||||"),
            record(0x200).at(8, {8}).at(10, {1, 2, 3, 4, 5, 6, 7, 8}));
  if (!hostNamesProtocols()) GTEST_SKIP() << "the host has no protocol table";
  EXPECT_EQ(recordOf("|||||tcp,udp,253||||"), record(0x200).at(8, {3}).at(10, {6, 17, 253}));
}

TEST(ParseFlowExclusion, ReadsPortsOfTcpAndUdp) {
  EXPECT_EQ(recordOf("|||||6|1024-65535|||"),
            record(0x240).at(8, {1}).at(10, {6}).at(114, {4, 0, 255, 255}));
  EXPECT_EQ(recordOf("|||||17,6||2049||"),
            record(0x280).at(8, {2}).at(10, {17, 6}).at(118, {8, 1, 0, 0}));
  EXPECT_EQ(recordOf("|||||6|0|20:21||"),
            record(0x2c0).at(8, {1}).at(10, {6}).at(118, {0, 20, 0, 21}));
}

TEST(ParseFlowExclusion, ReadsVnicsAndMachines) {
  Bytes wanted = record(0x400);
  EXPECT_EQ(recordOf(std::string("||||||||") + kVnic + ".003|"),
            putMachine(wanted, 122).at(138, {3}));
  wanted = record(0x400);
  EXPECT_EQ(recordOf(std::string("||||||||") + kGfy + ":999|"),
            putMachine(wanted, 122).at(138, {0xe7, 3}));
  wanted = record(0x1000);
  EXPECT_EQ(recordOf(std::string("||||||||") + kGfy + "|"), putMachine(wanted, 122));
  wanted = record(0x800);
  EXPECT_EQ(recordOf(std::string("|||||||||") + kVnic + ".012"),
            putMachine(wanted, 142).at(158, {12}));
  wanted = record(0x2000);
  EXPECT_EQ(recordOf(std::string("|||||||||") + kVnic), putMachine(wanted, 142));
}

TEST(ParseFlowExclusion, TheLastFieldIsAllThatFollowsTheNinthSeparator) {
  Bytes wanted = record(0x2000);
  EXPECT_EQ(recordOf(std::string("|||||||||") + kGfy + "|more"), putMachine(wanted, 142));
  EXPECT_EQ(errorOf("||||||||||"), "ERROR: invalid dest vnic/vm |\n");
}

TEST(ParseFlowExclusion, AnExclamationMarkNegatesItsFieldOnly) {
  EXPECT_EQ(recordOf("!00:50:56:99:10:78|||||||||"), record(0x1, 0x1)
                                                         .at(26, {0, 0x50, 0x56, 0x99, 0x10, 0x78})
                                                         .at(32, {255, 255, 255, 255, 255, 255}));
  EXPECT_EQ(recordOf("|!1:0:0:0:0:0||||||||"),
            record(0x2, 0x2).at(38, {1}).at(44, {255, 255, 255, 255, 255, 255}));
  EXPECT_EQ(recordOf("||!1|||||||"), record(0x100, 0x100).at(9, {1}).at(19, {1}));
  EXPECT_EQ(recordOf("|||!10.0.0.1-10.0.0.2||||||"),
            record(0xc, 0x4).at(50, {10, 0, 0, 1, 10, 0, 0, 2}));
  EXPECT_EQ(recordOf("||||!ff00::/8|||||"), record(0x80000010, 0x10).at(82, {255}).at(98, {255}));
  EXPECT_EQ(recordOf("|||||!1||||"), record(0x200, 0x200).at(8, {1}).at(10, {1}));
  EXPECT_EQ(recordOf("|||||6|!1|!2||"),
            record(0x2c0, 0xc0).at(8, {1}).at(10, {6}).at(115, {1}).at(119, {2}));
  Bytes wanted = record(0x2400, 0x2400);
  putMachine(wanted, 122).at(138, {1});
  EXPECT_EQ(recordOf(std::string("||||||||!") + kVnic + ".001|!" + kVnic), putMachine(wanted, 142));
  wanted = record(0x1800, 0x1800);
  putMachine(wanted, 122).at(158, {1});
  EXPECT_EQ(recordOf(std::string("||||||||!") + kVnic + "|!" + kVnic + ".001"),
            putMachine(wanted, 142));
}

TEST(ParseFlowExclusion, AnExclamationMarkAloneIsNotLookedAt) {
  EXPECT_EQ(recordOf("!|!|1|!|!|!|!|!|!|!"), record(0x100).at(9, {1}).at(19, {1}));
  EXPECT_EQ(errorOf("!|!|!|!|!|!|!|!|!|!"), "ERROR: empty flow exclusion definition\n");
}

TEST(ParseFlowExclusion, AListOfSeparatorsOnlyIsAnEmptyList) {
  EXPECT_EQ(recordOf("||,|||||||"), record(0x100));
  EXPECT_EQ(recordOf("||||| ||||"), record(0x200));
  EXPECT_EQ(recordOf("|||||,|80|||"), record(0x240).at(115, {80}));
}

TEST(ParseFlowExclusion, NineSeparatorsAloneAreEmpty) {
  EXPECT_EQ(errorOf("|||||||||"), "ERROR: empty flow exclusion definition\n");
}

TEST(ParseFlowExclusion, EverySeparatorIsMissed) {
  const std::vector<std::string> lines = {
      "ERROR: cannot find source mac address\n", "ERROR: cannot find dest mac address\n",
      "ERROR: cannot find ethertype\n",          "ERROR: cannot find source ip address\n",
      "ERROR: cannot find dest ip address\n",    "ERROR: cannot find ip protocol\n",
      "ERROR: cannot find source port\n",        "ERROR: cannot find dest port\n",
      "ERROR: cannot find source vnic/vm\n"};
  for (std::size_t count = 0; count < lines.size(); ++count) {
    EXPECT_EQ(errorOf(std::string(count, '|')), lines[count]);
    EXPECT_EQ(errorOf(std::string(count, '|') + "bad"), lines[count]) << "before the value is read";
    EXPECT_EQ(errorOf(std::string(count, '|') + "!"), lines[count]);
  }
}

TEST(ParseFlowExclusion, EveryBadValueIsNamedWithoutItsExclamationMark) {
  const std::vector<std::string> lines = {
      "ERROR: invalid source mac address b%sd\n", "ERROR: invalid dest mac address b%sd\n",
      "ERROR: invalid ethertype b%sd\n",          "ERROR: invalid source ip address b%sd\n",
      "ERROR: invalid dest ip address b%sd\n",    "ERROR: invalid ip protocol b%sd\n",
      "ERROR: invalid source port b%sd\n",        "ERROR: invalid dest port b%sd\n",
      "ERROR: invalid source vnic/vm b%sd\n",     "ERROR: invalid dest vnic/vm b%sd\n"};
  for (std::size_t place = 0; place < lines.size(); ++place) {
    const std::string before(place, '|');
    const std::string after(9 - place, '|');
    EXPECT_EQ(errorOf(before + "b%sd" + after), lines[place]);
    EXPECT_EQ(errorOf(before + "!b%sd" + after), lines[place]);
  }
  EXPECT_EQ(errorOf("||1,65536|||||||"), "ERROR: invalid ethertype 1,65536\n");
  EXPECT_EQ(errorOf("|||10.0.0.2-10.0.0.2||||||"),
            "ERROR: invalid source ip address 10.0.0.2-10.0.0.2\n");
  EXPECT_EQ(errorOf("|||||6|22-22|||"), "ERROR: invalid source port 22-22\n");
  EXPECT_EQ(errorOf("!!1:2:3:4:5:6|||||||||"), "ERROR: invalid source mac address !1:2:3:4:5:6\n");
}

TEST(ParseFlowExclusion, APortNeedsTheProtocolThatHasIt) {
  EXPECT_EQ(errorOf("||||||80|||"), "ERROR: source port is defined but protocol is not defined\n");
  EXPECT_EQ(errorOf("|||||||80||"), "ERROR: dest port is defined but protocol is not defined\n");
  EXPECT_EQ(errorOf("|||||!6|80|||"), "ERROR: source port is defined for negate protocol\n");
  EXPECT_EQ(errorOf("|||||!6||!80||"), "ERROR: dest port is defined for negate protocol\n");
  EXPECT_EQ(errorOf("|||||!1|80|||"), "ERROR: source port is defined for negate protocol\n")
      << "before its number is looked at";
  EXPECT_EQ(errorOf("|||||6,1|80|||"), "ERROR: source port is defined for protocol 1\n");
  EXPECT_EQ(errorOf("|||||6,17,255,1||80||"), "ERROR: dest port is defined for protocol 255\n");
}

TEST(ParseFlowExclusion, ReadsAPortBeforeItLooksForTheProtocol) {
  EXPECT_EQ(errorOf("||||||65536|||"), "ERROR: invalid source port 65536\n");
  EXPECT_EQ(errorOf("|||||1||-5||"), "ERROR: invalid dest port -5\n");
}

TEST(ParseFlowExclusion, StopsAtTheFirstError) {
  EXPECT_EQ(errorOf("x|y|z"), "ERROR: invalid source mac address x\n");
  EXPECT_EQ(errorOf("|x"), "ERROR: cannot find dest mac address\n");
}

TEST(ParseFlowExclusion, AListThatCannotBeCopiedIsABadValue) {
  const LogCapture log;
  const LibcShim::FailingCopies failing;
  EXPECT_EQ(errorOf("||1|||||||"), "ERROR: invalid ethertype 1\n");
  EXPECT_EQ(errorOf("|||||1||||"), "ERROR: invalid ip protocol 1\n");
}

TEST(PrintFlowExclusion, WritesEveryFieldAsItIsRead) {
  const struct {
    const char* read;
    const char* printed;
  } rows[] = {
      {"00:50:56:99:10:78|||||||||", "00:50:56:99:10:78/ff:ff:ff:ff:ff:ff|||||||||\n"},
      {"|!1:0:5e:1:2:3/ff:ff:ff:80:0:0||||||||", "|!01:00:5e:00:00:00/ff:ff:ff:80:00:00||||||||\n"},
      {"||0x800|||||||", "||0x0800|||||||\n"},
      {"||!34525,0xF|||||||", "||!0x86dd,0x000f|||||||\n"},
      {"|||10.20.7.5/24||||||", "|||10.20.7.0/255.255.255.0||||||\n"},
      {"|||10.20.7.5||||||", "|||10.20.7.5/255.255.255.255||||||\n"},
      {"||||!10.0.0.1-10.0.0.9|||||", "||||!10.0.0.1-10.0.0.9|||||\n"},
      {"|||fd00:20::7/32||||||", "|||fd00:20::/ffff:ffff::||||||\n"},
      {"||||fe80::1-fe80::1f|||||", "||||fe80::1-fe80::1f|||||\n"},
      {"|||||253,254||||", "|||||253,254||||\n"},
      {"||||||||50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77|",
       "||||||||50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77|\n"},
      {"||||||||!502e1f3a-c21a-7011-4ae1-005056991077.3|",
       "||||||||!502e1f3a-c21a-7011-4ae1-005056991077.003|\n"},
      {"|||||||||502e1f3a-c21a-7011-4ae1-005056991077",
       "|||||||||50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77\n"},
      {"|||||||||!50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77.12",
       "|||||||||!502e1f3a-c21a-7011-4ae1-005056991077.012\n"},
  };
  for (const auto& one : rows) {
    const Bytes bytes = recordOf(one.read);
    EXPECT_EQ(shortForm(bytes), one.printed);
    std::string again = one.printed;
    again.pop_back();
    EXPECT_EQ(recordOf(again), bytes) << one.printed;
  }
}

TEST(PrintFlowExclusion, NamesProtocolsAndWritesPorts) {
  if (!hostNamesProtocols()) GTEST_SKIP() << "the host has no protocol table";
  EXPECT_EQ(shortForm(recordOf("|||||6|80|||")), "|||||tcp|80|||\n");
  EXPECT_EQ(shortForm(recordOf("|||||6,17|0|65534-65535||")), "|||||tcp,udp|0|65534-65535||\n");
  EXPECT_EQ(shortForm(recordOf("|||||!1,253||||")), "|||||!icmp,253||||\n");
}

TEST(PrintFlowExclusion, AHighPortThatIsNotAboveTheLowOneIsNotPrinted) {
  EXPECT_EQ(shortForm(record(0x40).at(114, {0, 80, 0, 80})), "||||||80|||\n");
  EXPECT_EQ(shortForm(record(0x40).at(114, {0, 80, 0, 79})), "||||||80|||\n");
  EXPECT_EQ(shortForm(record(0x80).at(118, {0, 80, 0, 81})), "|||||||80-81||\n");
}

TEST(PrintFlowExclusion, AnEmptyRecordIsNineSeparators) {
  EXPECT_EQ(shortForm(Bytes(162)), "|||||||||\n");
  EXPECT_EQ(shortForm(record(0, 0xffffffff)), "|||||||||\n") << "nothing to negate";
}

TEST(PrintFlowExclusion, StaysInTheListsOfAHostileRecord) {
  Bytes hostile(162, 255);
  if (!hostNamesProtocols()) GTEST_SKIP() << "the host has no protocol table";
  const std::string mac = "!ff:ff:ff:ff:ff:ff/ff:ff:ff:ff:ff:ff|";
  const std::string ip =
      "!ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff-ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff|";
  EXPECT_EQ(shortForm(hostile), mac + mac + "!0xffff,0xffff,0xffff,0xffff|" + ip + ip +
                                    "!255,255,255,255,255,255,255,255|!65535|!65535|"
                                    "!ffffffff-ffff-ffff-ffff-ffffffffffff.-01|"
                                    "!ffffffff-ffff-ffff-ffff-ffffffffffff.-01\n");
  EXPECT_EQ(longForm(hostile),
            row({"!ff:ff:ff:ff:ff:ff/ff:ff:ff:ff:ff:ff", "!ff:ff:ff:ff:ff:ff/ff:ff:ff:ff:ff:ff",
                 "!0xffff,0xffff,0xffff,0xffff",
                 "!ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff-ffff:ffff:ffff:ffff:ffff:ffff:ffff:ff",
                 "!ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff-ffff:ffff:ffff:ffff:ffff:ffff:ffff:ff",
                 "!255,255,255,255,255,255,255,255", "!65535", "!65535",
                 "!ffffffff-ffff-ffff-ffff-ffffffffffff.-01",
                 "!ffffffff-ffff-ffff-ffff-ffffffffffff.-01"}));
}

TEST(PrintLongFlowExclusion, HasAStarForWhatIsNotNamed) {
  EXPECT_EQ(longForm(Bytes(162)), row({}));
}

TEST(PrintLongFlowExclusion, EndsTheMacAddressesDifferently) {
  // Scripts that cut the table know the blank and the bar.
  EXPECT_EQ(longForm(recordOf("1:2:3:4:5:6|1:2:3:4:5:7||||||||")),
            row({"01:02:03:04:05:06/ff:ff:ff:ff:ff:ff ", "01:02:03:04:05:07/ff:ff:ff:ff:ff:ff|"}));
}

TEST(PrintLongFlowExclusion, WritesTheTextsOfTheShortForm) {
  if (!hostNamesProtocols()) GTEST_SKIP() << "the host has no protocol table";
  EXPECT_EQ(longForm(recordOf(std::string("||0x88cc,0x8906|10.0.0.1/8|!10.0.0.1-10.0.0.2|tcp,udp|"
                                          "1024-65535|!80|!") +
                              kGfy + "|" + kVnic + ".001")),
            row({"*", "*", "0x88cc,0x8906", "10.0.0.0/255.0.0.0", "!10.0.0.1-10.0.0.2", "tcp,udp",
                 "1024-65535", "!80", std::string("!") + kGfy, std::string(kVnic) + ".001"}));
}

TEST(PrintLongFlowExclusion, HasAHeaderOverTheColumns) {
  const std::string header = captured([] {
                               PrintLongFlowExclusionHeader(std::fprintf, stdout);
                               return 0;
                             }).out;
  const auto dashes = [](std::size_t count) { return std::string(count, '-'); };
  EXPECT_EQ(header,
            "Source MAC Address                   Destination MAC Address              "
            "Ethertypes                   Source IP address                                   "
            "                           Destination IP address                              "
            "                           IP Protocols                      Source Port  "
            "Dest Port    Source VNic/VM                                   "
            "Destination VNic/VM                              \n" +
                row({dashes(36), dashes(36), dashes(28), dashes(78), dashes(78), dashes(33),
                     dashes(12), dashes(12), dashes(48), dashes(48)}));
}

namespace {

std::string g_printed;

int printToText(std::FILE* stream, const char* format, ...) __attribute__((format(printf, 2, 3)));
int printToText(std::FILE* stream, const char* format, ...) {
  EXPECT_EQ(stream, stderr);
  char text[1024];
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  g_printed += text;
  return length;
}

}  // namespace

TEST(PrintFlowExclusion, PrintsWithTheFunctionThatIsGiven) {
  g_printed.clear();
  PrintFlowExclusion(printToText, stderr, fromBytes(record(0x100).at(9, {1})));
  EXPECT_EQ(g_printed, "||0x0000|||||||\n");
  g_printed.clear();
  PrintLongFlowExclusion(printToText, stderr, fromBytes(Bytes(162)));
  EXPECT_EQ(g_printed, row({}));
}
