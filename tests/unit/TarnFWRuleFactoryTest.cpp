#include <gtest/gtest.h>

#include "Expect.h"
#include "FullRule.h"
#include "LogCapture.h"
#include "Message.h"
#include "TarnFWLog.h"
#include "TarnFWRuleBuilder.h"
#include "TarnFWRuleFactory.h"

using namespace TarnFirewall;

namespace {

std::unique_ptr<CTarnFWRule> read(const Bytes& bytes) {
  const auto record = loadRecord<FWRule_>(bytes.data());
  return CTarnFWRuleFactory::newFromMsgBuf(&record);
}

std::string textOf(const Bytes& bytes) {
  const auto rule = read(bytes);
  return rule ? rule->toString() : "no rule";
}

/// Record of "rule 7 inout protocol tcp from any to any accept;".
Bytes tcpRecord() {
  return Bytes(892)
      .at(0, {7, 0, 0, 0, 0xff, 0xff, 0xff, 0xff})
      .at(750, {1})
      .at(790, {0x14, 0, 0, 0, 6, 0})
      .at(884, {1});
}

const std::string kHead = "rule 7 inout protocol tcp ";

}  // namespace

TEST(TarnFWRuleFactory, ReadsAPlainRule) {
  EXPECT_EQ(textOf(tcpRecord()), kHead + "from any to any accept;");
}

TEST(TarnFWRuleFactory, ReadsARuleWithEverything) {
  const Bytes bytes = fullRuleRecord();
  const auto rule = read(bytes);
  ASSERT_NE(rule, nullptr);
  EXPECT_EQ(rule->toString(),
            "rule 16909060 at 5 out inet protocol tcp with {stateless, sloppy, strict, flag 0x0002}"
            " from not ip 10.1.2.0/24 port 1024-65535 to ip 10.9.8.7 port {80-90, 443}"
            " with extended src ext with attribute profile prof"
            " dnat ip 10.0.0.1 port 8080-8090 poolopt round-robin 60 with {log,rtt} as ftp"
            " tag 'tagged';");
  EXPECT_EQ(messageOf(*rule), bytes);
}

TEST(TarnFWRuleFactory, ReadsBothLayersAndEveryDirection) {
  EXPECT_EQ(textOf(tcpRecord().at(790, {0x1c})),
            "rule 7 inout not protocol tcp from any to any accept;");
  EXPECT_EQ(textOf(tcpRecord().at(790, {0x10})),
            "rule 7 inout protocol any from any to any accept;");
  EXPECT_EQ(textOf(tcpRecord().at(790, {0x04, 0, 0, 0, 0x08, 0x06})),
            "rule 7 inout ethertype 0x0806 from any to any accept;");
  EXPECT_EQ(textOf(tcpRecord().at(790, {0x00})),
            "rule 7 inout ethertype any from any to any accept;");
  EXPECT_EQ(textOf(tcpRecord().at(790, {0x34})), "rule 7 in protocol tcp from any to any accept;");
  EXPECT_EQ(textOf(tcpRecord().at(790, {0x54})), "rule 7 out protocol tcp from any to any accept;");
}

TEST(TarnFWRuleFactory, ADirectionOfThreeIsRefused) {
  EXPECT_THROW_WITH(read(tcpRecord().at(790, {0x74})), CInvalidRuleDirectionException, 42,
                    "invalid rule action id: 3");
}

TEST(TarnFWRuleFactory, AddressesAreReadOnlyWhenTheirBitIsSet) {
  const Bytes bytes = tcpRecord().at(12, {1, 0, 0, 0, 10, 0, 0, 1}).at(156, {8});
  EXPECT_EQ(textOf(bytes), kHead + "from any to any accept;");
  EXPECT_EQ(textOf(Bytes(bytes).at(790, {0x15})), kHead + "from ip 10.0.0.1 to any accept;");
  EXPECT_THROW_WITH(read(Bytes(bytes).at(790, {0x16})), CInvalidAddressException, 33,
                    "unknown address type: 8");
}

TEST(TarnFWRuleFactory, ADerivedFamilyIsNotReadBack) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_RULE].level = 1;
  const Bytes bytes = tcpRecord().at(12, {1, 0, 0, 0, 10, 0, 0, 1}).at(790, {0x95, 0, 0, 0x10});
  const auto rule = read(bytes);
  EXPECT_EQ(rule->toString(), kHead + "from ip 10.0.0.1 to any accept;");
  EXPECT_EQ(log.normalized(),
            std::vector<std::string>{
                "7|tarnfw:rule TarnFWRuleFactory:newFromMsgBuf():N ignoring rule af: 1\n"});
  EXPECT_EQ(messageOf(*rule), bytes);
}

TEST(TarnFWRuleFactory, AFamilyThatWasSetIsReadBack) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_RULE].level = 1;
  EXPECT_EQ(textOf(tcpRecord().at(790, {0x94})),
            "rule 7 inout inet protocol tcp from any to any accept;");
  EXPECT_EQ(textOf(tcpRecord().at(790, {0x14, 0x01})),
            "rule 7 inout inet6 protocol tcp from any to any accept;");
  EXPECT_EQ(log.normalized(),
            (std::vector<std::string>{
                "7|tarnfw:rule TarnFWRuleFactory:newFromMsgBuf():N reading rule af: 1\n",
                "7|tarnfw:rule TarnFWRuleFactory:newFromMsgBuf():N reading rule af: 2\n"}));
}

TEST(TarnFWRuleFactory, AFamilyThatDoesNotFitIsRefused) {
  EXPECT_THROW_WITH(read(tcpRecord().at(790, {0x94, 0x01})), CUnsupportedException, 57,
                    "unsupported address family 3");
  EXPECT_THROW_WITH(read(tcpRecord().at(12, {1, 0, 0, 0, 10, 0, 0, 1}).at(790, {0x15, 0x01})),
                    CUnsupportedException, 57, "af conflicts with rule address");
}

TEST(TarnFWRuleFactory, TheKernelsInternalMarkIsReadAndNotWritten) {
  const auto rule = read(tcpRecord().at(793, {0x40}));
  EXPECT_EQ(rule->toString(), "# internal # " + kHead + "from any to any accept;");
  EXPECT_EQ(messageOf(*rule), tcpRecord());
}

TEST(TarnFWRuleFactory, DSCPIsNotReadBack) {
  const auto rule = read(tcpRecord().at(796, {0xe0, 0x07}));
  EXPECT_EQ(rule->toString(), kHead + "from any to any accept;");
  EXPECT_EQ(messageOf(*rule), tcpRecord());
}

TEST(TarnFWRuleFactory, ReadsTheSessionBits) {
  EXPECT_EQ(textOf(tcpRecord().at(796, {0x01})), kHead + "stateless from any to any accept;");
  EXPECT_EQ(textOf(tcpRecord().at(797, {0x08})), kHead + "strict from any to any accept;");
  EXPECT_EQ(textOf(tcpRecord().at(797, {0x10})), kHead + "sloppy from any to any accept;");
}

TEST(TarnFWRuleFactory, ReadsAnICMPSpec) {
  EXPECT_EQ(textOf(tcpRecord().at(794, {1, 0}).at(800, {0x30, 0, 3, 0, 0, 0, 3, 1})),
            "rule 7 inout protocol icmp typecode 3:1 from any to any accept;");
}

TEST(TarnFWRuleFactory, TCPOptionsOfLessThanEightBytesAreNotReadBack) {
  for (int length = 0; length < 8; ++length) {
    EXPECT_EQ(textOf(tcpRecord().at(808, {0x28, 0, length, 0}).text(812, "1234567")),
              kHead + "from any to any accept;");
  }
}

TEST(TarnFWRuleFactory, TheLengthOfTCPOptionsIsReadAsASpecHeader) {
  // 8 is the header of a port, whose number are the first two bytes of the options.
  EXPECT_EQ(textOf(tcpRecord().at(808, {0x28, 0, 8, 0, 0x1f, 0x90})),
            kHead + "port 8080 from any to any accept;");
  // 40 is the header of TCP options; the length is then the first two bytes of the options, and the
  // last two bytes reach into the tag.
  EXPECT_EQ(textOf(tcpRecord().at(808, {0x28, 0, 40, 0, 2, 0, 0xab, 0xcd})),
            kHead + "tcpoptions 0xabcd from any to any accept;");
  EXPECT_THROW_WITH(read(tcpRecord().at(808, {0x28, 0, 40, 0, 41, 0})), CTCPOptionsTooLongException,
                    41, "TCP options is too long: 41");
  EXPECT_THROW_WITH(read(tcpRecord().at(808, {0x28, 0, 11, 0})), CInvalidProtocolSpecDirException,
                    43, "invalid protocol spec dir (0-2): 3");
}

TEST(TarnFWRuleFactory, BadSpecsOfARecordAreRefused) {
  EXPECT_THROW_WITH(read(tcpRecord().at(300, {0x38, 0})), CUnknownProtocolSpecTypeException, 43,
                    "unknown protocol spec type: 7");
  EXPECT_THROW_WITH(read(tcpRecord().at(300, {0x28, 0})), CInsufficientMsgBufException, 9,
                    "expect 42 byte in message buffer, but only get 36 bytes");
  EXPECT_THROW_WITH(read(tcpRecord().at(338, {0x12, 0, 0, 9, 0, 8})), CInvalidL4PortRangeException,
                    38, "invalid TCP/UDP port range: 9 - 8");
  EXPECT_THROW_WITH(read(tcpRecord().at(800, {0x50, 0})), CUnknownProtocolSpecTypeException, 43,
                    "unknown protocol spec type: 10");
}

TEST(TarnFWRuleFactory, OneKindAtBothPlacesOfTheConnectionIsRefused) {
  // 32 options: their length is the header of TCP flags, which stand at 800 already.
  EXPECT_THROW_WITH(read(tcpRecord().at(800, {0x20, 0, 0x02, 0}).at(808, {0x28, 0, 32, 0, 1, 0})),
                    CDuplicateProtocolSpecException, 43,
                    "duplicate definition of protocol spec of tcp flags");
}

TEST(TarnFWRuleFactory, TheFirstOfSeveralFaultsOfARecordIsReported) {
  // From the direction over addresses, ports, connection and action: each is mended in turn.
  Bytes bytes = tcpRecord()
                    .at(12, {8})
                    .at(156, {10})
                    .at(300, {0x38})
                    .at(338, {0x40})
                    .at(800, {0x48})
                    .at(810, {0x50})
                    .at(750, {15})
                    .at(790, {0x77, 0x01});
  EXPECT_THROW_WITH(read(bytes), CInvalidRuleDirectionException, 42, "invalid rule action id: 3");
  bytes.at(790, {0x97});
  EXPECT_THROW_WITH(read(bytes), CInvalidAddressException, 33, "unknown address type: 8");
  bytes.at(12, {11});
  EXPECT_THROW_WITH(read(bytes), CInvalidAddressException, 33, "unknown address type: 10");
  bytes.at(156, {11});
  for (const auto& [place, kind] : {std::pair{300, "7"}, {338, "8"}, {800, "9"}, {810, "10"}}) {
    EXPECT_THROW_WITH(read(bytes), CUnknownProtocolSpecTypeException, 43,
                      std::string("unknown protocol spec type: ") + kind);
    bytes.at(static_cast<std::size_t>(place), {0});
  }
  EXPECT_THROW_WITH(read(bytes), CInvalidRuleActionException, 37, "invalid rule action: 15");
  bytes.at(750, {7}).at(460, {11}).at(796, {0, 0x08}).at(794, {17});
  LogCapture log;
  EXPECT_EQ(read(bytes), nullptr);  // and its family is no longer looked at
  EXPECT_TRUE(log.has(3, "buildRule error 7: SNAT rule direction is not out!\n"));
  bytes.at(790, {0xd7});
  EXPECT_EQ(read(bytes), nullptr);
  EXPECT_TRUE(log.has(3,
                      "buildRule error 7: cannot accept tcp flags/options while tcp protocol is "
                      "not specified\n"));
  bytes.at(796, {0, 0});
  EXPECT_THROW_WITH(read(bytes), CUnsupportedException, 57, "unsupported address family 3");
}

TEST(TarnFWRuleFactory, ASpecAtAPortPlaceThatIsNoPortIsLostOnTheWire) {
  const auto rule = read(tcpRecord().at(300, {0x21, 0, 0x02, 0}));
  EXPECT_EQ(rule->toString(), kHead + "from any flag 0x0002 to any accept;");
  EXPECT_EQ(messageOf(*rule), tcpRecord());
}

namespace {

/// A protocol as it stands in a record: the flags at 790 and the two bytes at 794, and what it
/// counts as for the checks.
struct ProtocolRow {
  int flags, low, high;
  bool tcp, udp, icmp;
};

constexpr ProtocolRow kProtocolRows[] = {
    {0x10, 0, 0, false, false, false},        // protocol any
    {0x14, 6, 0, true, false, false},         // tcp
    {0x14, 17, 0, false, true, false},        // udp
    {0x14, 1, 0, false, false, true},         // icmp
    {0x14, 58, 0, false, false, true},        // icmpv6
    {0x14, 47, 0, false, false, false},       // gre
    {0x1c, 6, 0, false, false, false},        // not tcp
    {0x1c, 17, 0, false, false, false},       // not udp
    {0x1c, 1, 0, false, false, false},        // not icmp
    {0x00, 0, 0, false, false, false},        // ethertype any
    {0x04, 0, 6, false, false, false},        // ethertype 6
    {0x04, 0x08, 0x06, false, false, false},  // ethertype 0x806
    {0x0c, 0x08, 0x06, false, false, false},  // not ethertype 0x806
};

/// A good body of each kind of spec, from 0 to 6.
const std::vector<std::uint8_t> kSpecBodies[] = {{0, 0},    {0, 80}, {0, 80, 0, 90}, {1, 0, 0, 80},
                                                 {0x47, 0}, {0, 0},  {1, 0, 0, 0, 8}};

/// What a record with one spec at an offset is refused for; empty when it is a rule. Of ports, a
/// place at 300 or 338 counts whatever it holds; the places at 800 and 810 are judged by kind.
std::string expectedRefusal(const ProtocolRow& protocol, int offset, int kind) {
  if (kind == 0) return "";
  const bool atEnd = offset == 300 || offset == 338;
  if (!atEnd && kind == 6 && !protocol.icmp)
    return "cannot accept icmp type while icmp protocol is not specified";
  if ((atEnd || kind <= 3) && !protocol.tcp && !protocol.udp)
    return "cannot accept tcp/udp port while tcp/udp protocol is not specified";
  if (!atEnd && (kind == 4 || kind == 5) && !protocol.tcp)
    return "cannot accept tcp flags/options while tcp protocol is not specified";
  return "";
}

}  // namespace

TEST(TarnFWRuleFactory, ARecordIsARuleWhenTheChecksOfBuilderAndRuleBothPass) {
  for (const ProtocolRow& protocol : kProtocolRows) {
    for (const int offset : {300, 338, 800, 810}) {
      for (int kind = 0; kind <= 6; ++kind) {
        // The 36 bytes of a port's place are too few for TCP options.
        if (kind == 5 && offset < 800) continue;
        const auto place = static_cast<std::size_t>(offset);
        Bytes bytes = tcpRecord()
                          .at(790, {protocol.flags, 0, 0, 0, protocol.low, protocol.high})
                          .at(place, {kind << 3, 0});
        std::copy(kSpecBodies[kind].begin(), kSpecBodies[kind].end(), bytes.begin() + offset + 2);
        LogCapture log;
        const auto rule = read(bytes);
        const std::string refusal = expectedRefusal(protocol, offset, kind);
        const std::string what = "flags " + std::to_string(protocol.flags) + " number " +
                                 std::to_string(protocol.low) + " offset " +
                                 std::to_string(offset) + " kind " + std::to_string(kind);
        EXPECT_EQ(rule == nullptr, !refusal.empty()) << what;
        if (!refusal.empty()) {
          EXPECT_TRUE(log.has(3, "buildRule error 7: " + refusal + "\n")) << what;
        } else {
          EXPECT_TRUE(log.lines().empty()) << what;
        }
      }
    }
  }
}

TEST(TarnFWRuleFactory, ASpecAtAPortPlaceThatIsNoPortMakesNoRuleOfAnyProtocol) {
  LogCapture log;
  EXPECT_EQ(read(Bytes(892).at(750, {1}).at(790, {0x10}).at(300, {0x20, 0, 0x47})), nullptr);
  EXPECT_TRUE(log.has(3,
                      "buildRule error 7: cannot accept tcp/udp port while tcp/udp protocol is not "
                      "specified\n"));
}

TEST(TarnFWRuleFactory, AJumpTargetThatFillsItsFieldIsRefused) {
  EXPECT_EQ(textOf(tcpRecord().text(460, std::string(63, 'r')).at(750, {4})),
            kHead + "from any to any jumpto " + std::string(63, 'r') + ";");
  EXPECT_THROW_WITH(read(tcpRecord().text(460, std::string(64, 'r')).at(750, {4})),
                    CIDTooLongException, 32, "id is too long: " + std::string(64, 'r'));
}

TEST(TarnFWRuleFactory, BadActionsOfARecordAreRefused) {
  EXPECT_THROW_WITH(read(tcpRecord().at(750, {0})), CInvalidRuleActionException, 37,
                    "invalid rule action: 0");
  EXPECT_THROW_WITH(read(tcpRecord().at(751, {0x20})), CInvalidRuleActionException, 37,
                    "invalid rule action: 1");
}

TEST(TarnFWRuleFactory, PartsThatMakeNoRuleGiveNull) {
  LogCapture log;
  EXPECT_EQ(read(tcpRecord().at(794, {17, 0}).at(797, {0x08})), nullptr);
  EXPECT_TRUE(log.has(3,
                      "buildRule error 7: cannot accept tcp flags/options while tcp protocol is "
                      "not specified\n"));
  EXPECT_EQ(read(tcpRecord().at(460, {1, 0, 0, 0, 1, 2, 3, 4}).at(750, {7}).at(793, {0x40})),
            nullptr);
  EXPECT_TRUE(log.has(3, "buildRule error 7: SNAT rule direction is not out!\n"));
}

TEST(TarnFWRuleFactory, ATagWithoutANulIsCut) {
  EXPECT_EQ(textOf(tcpRecord().text(852, std::string(32, 't'))),
            kHead + "from any to any accept tag '" + std::string(31, 't') + "';");
  EXPECT_EQ(textOf(tcpRecord().text(853, "hidden")), kHead + "from any to any accept;");
}

TEST(TarnFWRuleFactory, ProfilesAreReadByTheirModeBits) {
  const Bytes bytes = tcpRecord().text(380, "ext").text(422, std::string(38, 'p'));
  EXPECT_EQ(textOf(bytes), kHead + "from any to any accept;");
  EXPECT_EQ(textOf(Bytes(bytes).at(884, {2})), kHead + "from any to any accept;");
  EXPECT_EQ(textOf(Bytes(bytes).at(884, {4})),
            kHead + "from any to any with extended src ext accept;");
  EXPECT_EQ(textOf(Bytes(bytes).at(884, {8})),
            kHead + "from any to any with attribute profile " + std::string(38, 'p') + " accept;");
}

TEST(TarnFWRuleFactory, ARuleJustReadWritesARecordOfItsOwn) {
  EXPECT_EQ(messageOf(*read(tcpRecord().at(8, {1, 2, 3, 4}).at(376, {1, 0, 1, 0}).at(888, {9}))),
            tcpRecord());
}

TEST(TarnFWRuleFactory, ARecordIsReadIntoAnEmptyBuilderButForItsTag) {
  CTarnFWRuleBuilder builder;
  builder.setSource("left over");
  builder.setInternal();
  builder.setTag("kept");
  const auto record = loadRecord<FWRule_>(tcpRecord().data());
  builder.init(&record);
  EXPECT_EQ(builder.buildRule()->toString(), kHead + "from any to any accept tag 'kept';");
}
