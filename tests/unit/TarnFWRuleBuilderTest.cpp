#include <arpa/inet.h>
#include <gtest/gtest.h>

#include "Expect.h"
#include "LogCapture.h"
#include "Message.h"
#include "TarnFWAddressEther.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressIPv6.h"
#include "TarnFWProtocolSpecFactory.h"
#include "TarnFWProtocolSpecL4Port.h"
#include "TarnFWProtocolSpecStrict.h"
#include "TarnFWProtocolSpecTCPFlags.h"
#include "TarnFWRuleActionAccept.h"
#include "TarnFWRuleActionDrop.h"
#include "TarnFWRuleActionSNAT.h"
#include "TarnFWRuleBuilder.h"

using namespace TarnFirewall;

namespace {

constexpr unsigned short kTCP = 6;
constexpr unsigned short kUDP = 17;

/// A builder with a protocol and accept; id 7 and position -1 keep the texts short.
CTarnFWRuleBuilder started(unsigned short protocol) {
  CTarnFWRuleBuilder builder;
  builder.setId(7);
  builder.setPosition(-1);
  builder.setType(true);
  builder.setProtocol(protocol, false);
  builder.setAction(FW_ACTION_ACCEPT, "");
  return builder;
}

std::string textOf(CTarnFWRuleBuilder& builder) {
  const auto rule = builder.buildRule();
  return rule ? rule->toString() : "no rule";
}

unsigned int ip(const char* text) {
  in_addr address{};
  inet_pton(AF_INET, text, &address);
  return address.s_addr;
}

const char* const kFlagsText =
    "cannot accept tcp flags/options while tcp protocol is not specified";

}  // namespace

TEST(TarnFWRuleBuilder, BuildsARuleFromItsParts) {
  CTarnFWRuleBuilder builder;
  builder.setId(12);
  builder.setPosition(3);
  builder.setDirection(FW_DIRECTION_OUT);
  builder.setType(true);
  builder.setProtocol(kTCP, false);
  builder.setSource(ip("10.0.0.1"), 32);
  builder.setSourcePort(1024, 65535, false);
  builder.setDest(ip("10.1.0.0"), 16);
  builder.setDestPort(80, false);
  builder.setInetAF(false);
  builder.setTag("tag");
  builder.setInternal();
  builder.setAction(FW_ACTION_DROP, "");
  builder.setEnableLog();
  builder.setStrict();
  EXPECT_EQ(textOf(builder),
            "# internal # rule 12 at 3 out inet protocol tcp strict from ip 10.0.0.1 port "
            "1024-65535 to ip 10.1.0.0/16 port 80 drop with log tag 'tag';");
}

TEST(TarnFWRuleBuilder, StartsWithIdAndPositionZero) {
  CTarnFWRuleBuilder builder;
  builder.setType(false);
  EXPECT_FALSE(builder.isLayer3());
  builder.setAction(FW_ACTION_ACCEPT, "");
  EXPECT_EQ(textOf(builder), "rule 0 at 0 inout ethertype any from any to any accept;");
}

TEST(TarnFWRuleBuilder, ASourcePortIsOneListInPortMode) {
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.setSourcePort(80, false);
  const auto rule = builder.buildRule();
  ASSERT_NE(rule, nullptr);
  EXPECT_EQ(messageOf(*rule), Bytes(892)
                                  .at(0, {7, 0, 0, 0, 0xff, 0xff, 0xff, 0xff})
                                  .at(300, {0x09, 0, 0, 80})
                                  .at(750, {1})
                                  .at(790, {0x14, 0, 0, 0, 6, 0})
                                  .at(884, {1}));
}

TEST(TarnFWRuleBuilder, IsLayer3AsItsProtocol) {
  CTarnFWRuleBuilder builder;
  EXPECT_FALSE(builder.isLayer3());
  builder.setType(true);
  EXPECT_TRUE(builder.isLayer3());
  builder.setProtocol(
      CTarnFWProtocol(FWProtocolLayer::ethernet, static_cast<unsigned short>(0x806), false));
  EXPECT_FALSE(builder.isLayer3());
}

TEST(TarnFWRuleBuilder, AProtocolNumberNeedsItsType) {
  CTarnFWRuleBuilder builder;
  EXPECT_THROW_WITH(builder.setProtocol(kTCP, false), CUnsupportedException, 7,
                    "no protocol is defined");
}

TEST(TarnFWRuleBuilder, DirectionsAboveTwoAreRefused) {
  CTarnFWRuleBuilder builder;
  EXPECT_THROW_WITH(builder.setDirection(static_cast<FWRuleDirection_t>(3)),
                    CInvalidRuleDirectionException, 42, "invalid rule action id: 3");
}

TEST(TarnFWRuleBuilder, MakesTheActionsWithoutData) {
  const struct {
    FWRuleAction_t code;
    const char* word;
  } rows[] = {{FW_ACTION_ACCEPT, "accept"}, {FW_ACTION_DROP, "drop"},
              {FW_ACTION_REJECT, "reject"}, {FW_ACTION_PUNT, "punt"},
              {FW_ACTION_DIVERT, "divert"}, {FW_ACTION_COPY, "copy"},
              {FW_ACTION_CLEAR, "clear"}};
  for (const auto& row : rows) {
    CTarnFWRuleBuilder builder = started(kTCP);
    builder.setAction(row.code, "");
    EXPECT_EQ(textOf(builder),
              std::string("rule 7 inout protocol tcp from any to any ") + row.word + ";");
  }
}

TEST(TarnFWRuleBuilder, MakesTheActionsWithAKeyPolicy) {
  LogCapture log;
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.setAction(FW_ACTION_ENCRYPT, "id");
  EXPECT_EQ(textOf(builder), "rule 7 inout protocol tcp from any to any encrypt keypolicy id;");
  CTarnFWRuleBuilder pbr = started(kTCP);
  pbr.setAction(FW_ACTION_PBR, "id");
  EXPECT_EQ(textOf(pbr), "rule 7 inout protocol tcp from any to any pbr keypolicy id;");
  EXPECT_TRUE(log.lines().empty());
}

TEST(TarnFWRuleBuilder, AnEmptyKeyPolicyIsTakenWithAWarning) {
  for (const FWRuleAction_t code : {FW_ACTION_ENCRYPT, FW_ACTION_PBR}) {
    LogCapture log;
    CTarnFWRuleBuilder builder = started(kTCP);
    builder.setAction(code, "");
    EXPECT_EQ(log.normalized(),
              std::vector<std::string>{
                  "4|tarnfw: TarnFWRuleBuilder:setAction():N Adding Empty Key Policy \n\n"});
    EXPECT_EQ(textOf(builder), std::string("rule 7 inout protocol tcp from any to any ") +
                                   std::string(rule_action_name[code]) + ";");
  }
}

TEST(TarnFWRuleBuilder, AnActionWithOtherDataIsLeftOutAndTheRuleHasNone) {
  for (const int code : {0, 4, 7, 8, 9, 13, 15}) {
    LogCapture log;
    CTarnFWRuleBuilder builder;
    builder.setType(true);
    builder.setAction(static_cast<FWRuleAction_t>(code), "");
    EXPECT_TRUE(log.lines().empty());
    EXPECT_EQ(builder.buildRule(), nullptr);
    EXPECT_EQ(log.normalized(),
              std::vector<std::string>{
                  "3|tarnfw: TarnFWRuleBuilder:buildRule():N buildRule error 7: no action is "
                  "defined\n"});
  }
}

TEST(TarnFWRuleBuilder, MakesALoadBalancerWithOptionsWhenThereAreSome) {
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.setAction(1, 30, 8, "a=b");
  EXPECT_EQ(textOf(builder),
            "rule 7 inout protocol tcp from any to any lb  lbtype L7 lbidletimeout 30 "
            "lbclosetimeout 8 lboptions a=b;");
  for (const char* options : {static_cast<const char*>(nullptr), ""}) {
    CTarnFWRuleBuilder plain = started(kTCP);
    plain.setAction(0, 0, 0, options);
    EXPECT_EQ(textOf(plain), "rule 7 inout protocol tcp from any to any lb  lbtype L4;");
  }
}

TEST(TarnFWRuleBuilder, PassesFlagsToTheAction) {
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.setEnableLog();
  builder.setEnableLBRule();
  builder.setDisableFlowRecord();
  builder.setALG(FW_DYNAMIC_SUNRPC, false);
  const auto rule = builder.buildRule();
  ASSERT_NE(rule, nullptr);
  EXPECT_EQ(rule->toString(),
            "rule 7 inout protocol tcp from any to any accept with {log,noflow,lbrule} as sunrpc;");
  EXPECT_EQ(messageOf(*rule)[748], 0x34);
}

TEST(TarnFWRuleBuilder, FlagsNeedAnAction) {
  CTarnFWRuleBuilder builder;
  EXPECT_THROW_WITH(builder.setEnableLog(), CUnsupportedException, 7, "no action is defined");
  EXPECT_THROW_WITH(builder.setEnableLBRule(), CUnsupportedException, 7, "no action is defined");
  EXPECT_THROW_WITH(builder.setDisableFlowRecord(), CUnsupportedException, 7,
                    "no action is defined");
  EXPECT_THROW_WITH(builder.setALG(FW_DYNAMIC_FTP, true), CUnsupportedException, 7,
                    "no action is defined");
}

TEST(TarnFWRuleBuilder, AddressesInEveryForm) {
  const unsigned char mac[] = {2, 0, 0, 0, 0, 0x1f};
  const std::uint64_t macNumber = 0x77661f0000000002;  // bytes 02 00 00 00 00 1f in memory
  in6_addr v6{};
  inet_pton(AF_INET6, "2001:db8::1", &v6);
  unsigned int words[4];
  std::memcpy(words, &v6, sizeof words);
  const auto layer3 = [](auto set) {
    CTarnFWRuleBuilder builder = started(kTCP);
    set(builder);
    return textOf(builder);
  };
  const auto layer2 = [](auto set) {
    CTarnFWRuleBuilder builder = started(kTCP);
    builder.setType(false);
    set(builder);
    return textOf(builder);
  };
  const std::string ipText = "rule 7 inout protocol tcp from ";
  const std::string etherText = "rule 7 inout ethertype any from ";
  EXPECT_EQ(
      layer3([](auto& b) { b.setSource(std::make_unique<CTarnFWAddressIPv4>("1.2.3.4", false)); }),
      ipText + "ip 1.2.3.4 to any accept;");
  EXPECT_EQ(layer3([](auto& b) { b.setSource("web"); }), ipText + "addrset web to any accept;");
  EXPECT_EQ(layer3([](auto& b) { b.setSource(ip("1.2.3.4"), 32); }),
            ipText + "ip 1.2.3.4 to any accept;");
  EXPECT_EQ(layer3([](auto& b) { b.setSource(ip("1.2.3.4"), 24); }),
            ipText + "ip 1.2.3.4/24 to any accept;");
  EXPECT_EQ(layer3([](auto& b) { b.setSource(ip("0.0.0.0"), 0); }),
            ipText + "ip 0.0.0.0/0 to any accept;");
  EXPECT_EQ(layer3([&](auto& b) { b.setSource(words, 128); }),
            ipText + "ip 2001:db8::1 to any accept;");
  EXPECT_EQ(layer3([&](auto& b) { b.setSource(words, 64); }),
            ipText + "ip 2001:db8::1/64 to any accept;");
  EXPECT_EQ(layer2([&](auto& b) { b.setSource(macNumber); }),
            etherText + "mac 02:00:00:00:00:1f to any accept;");
  EXPECT_EQ(layer2([&](auto& b) { b.setSource(mac); }),
            etherText + "mac 02:00:00:00:00:1f to any accept;");

  EXPECT_EQ(layer3([](auto& b) { b.setDest("web"); }), ipText + "any to addrset web accept;");
  EXPECT_EQ(layer3([](auto& b) { b.setDest(ip("1.2.3.4"), 8); }),
            ipText + "any to ip 1.2.3.4/8 accept;");
  EXPECT_EQ(layer2([&](auto& b) { b.setDest(mac); }),
            etherText + "any to mac 02:00:00:00:00:1f accept;");

  EXPECT_EQ(layer3([&](auto& b) {
              b.setRuleAddress(true, words, 64);
              b.setRuleAddress(false, "web");
              b.negateRuleAddress(false);
            }),
            ipText + "ip 2001:db8::1/64 to not addrset web accept;");
  EXPECT_EQ(layer2([&](auto& b) {
              b.setRuleAddress(true, mac);
              b.setRuleAddress(false, macNumber);
              b.negateRuleAddress(true);
            }),
            etherText + "not mac 02:00:00:00:00:1f to mac 02:00:00:00:00:1f accept;");
  EXPECT_EQ(layer3([](auto& b) {
              b.setRuleAddress(false, ip("1.2.3.4"), 32);
              b.setRuleAddress(true, std::make_unique<CTarnFWAddressIPv4>("1.2.3.5", true));
            }),
            ipText + "not ip 1.2.3.5 to ip 1.2.3.4 accept;");
}

TEST(TarnFWRuleBuilder, ARuleKeepsABlockOfPrefixLength0ThatAListWouldSplit) {
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.setSource(ip("0.0.0.0"), 0);
  const auto rule = builder.buildRule();
  ASSERT_NE(rule, nullptr);
  EXPECT_EQ(rule->toString(), "rule 7 inout protocol tcp from ip 0.0.0.0/0 to any accept;");
  EXPECT_EQ(messageOf(*rule), Bytes(892)
                                  .at(0, {7, 0, 0, 0, 0xff, 0xff, 0xff, 0xff})
                                  .at(12, {5})
                                  .at(750, {1})
                                  .at(790, {0x95, 0, 0, 0x10, 6, 0})
                                  .at(884, {1}));
}

TEST(TarnFWRuleBuilder, NegatesOnlyAnAddressThatIsThere) {
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.negateSource();
  builder.negateDest();
  builder.setSource("a");
  builder.setDest("b");
  builder.negateSource();
  builder.negateDest();
  EXPECT_EQ(textOf(builder),
            "rule 7 inout protocol tcp from not addrset a to not addrset b accept;");
}

TEST(TarnFWRuleBuilder, ABadAddressIsRefusedByItsClass) {
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.setSource("kept");
  EXPECT_THROW_WITH(builder.setSource(ip("1.2.3.4"), 33), CInvalidAddressException, 33,
                    "invalid ipv4 cidr: 33");
  const std::string name(38, 'n');
  EXPECT_THROW_WITH(builder.setSource(name.c_str()), CIDTooLongException, 32,
                    "id is too long: " + name);
  EXPECT_EQ(textOf(builder), "rule 7 inout protocol tcp from addrset kept to any accept;");
}

TEST(TarnFWRuleBuilder, PortsInEveryForm) {
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.setSourcePort(CTarnFWProtocolSpecFactory::newL4PortSpecFromString(1, "1,2"));
  builder.setDestPort(CTarnFWProtocolSpecFactory::newL4PortSpecFromString(2, "1-2"));
  EXPECT_EQ(textOf(builder),
            "rule 7 inout protocol tcp from any port {1, 2} to any port 1-2 accept;");
  CTarnFWRuleBuilder ranges = started(kTCP);
  ranges.setSourcePort(1, 2, true);
  ranges.setDestPort(3, 4, false);
  EXPECT_EQ(textOf(ranges),
            "rule 7 inout protocol tcp from any not port 1-2 to any port 3-4 accept;");
  CTarnFWRuleBuilder singles = started(kUDP);
  singles.setSourcePort(1, false);
  singles.setDestPort(2, true);
  const auto rule = singles.buildRule();
  EXPECT_EQ(rule->toString(),
            "rule 7 inout protocol udp from any port 1 to any not port 2 accept;");
  const Bytes record = messageOf(*rule);
  EXPECT_EQ(record[300], 0x09);
  EXPECT_EQ(record[338], 0x0e);
}

TEST(TarnFWRuleBuilder, APortAddedTwiceIsOneMember) {
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.addSourcePort(80);
  builder.addSourcePort(80);
  builder.addDestPort(443);
  builder.addDestPort(1, 2);
  const auto rule = builder.buildRule();
  EXPECT_EQ(rule->toString(),
            "rule 7 inout protocol tcp from any port {80} to any port {1-2, 443} accept;");
  const Bytes record = messageOf(*rule);
  EXPECT_EQ(record[300], 0x19);
  EXPECT_EQ(record[302], 1);
  EXPECT_EQ(record[338], 0x1a);
  EXPECT_EQ(record[340], 3);
  CTarnFWRuleBuilder range = started(kTCP);
  range.addSourcePort(5, 6);
  EXPECT_EQ(textOf(range), "rule 7 inout protocol tcp from any port {5-6} to any accept;");
}

TEST(TarnFWRuleBuilder, PortsAreAddedToASetOnly) {
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.setSourcePort(80, false);
  builder.setDestPort(1, 2, false);
  EXPECT_THROW_WITH(builder.addSourcePort(81), CUnsupportedException, 7,
                    "cannot add a port to what is no port set");
  EXPECT_THROW_WITH(builder.addDestPort(81, 82), CUnsupportedException, 7,
                    "cannot add a port to what is no port set");
  EXPECT_EQ(textOf(builder), "rule 7 inout protocol tcp from any port 80 to any port 1-2 accept;");
}

TEST(TarnFWRuleBuilder, NegatesAPortThatIsThere) {
  CTarnFWRuleBuilder builder = started(kTCP);
  EXPECT_THROW_WITH(builder.negateSourcePort(), CUnsupportedException, 7, "no port is defined");
  EXPECT_THROW_WITH(builder.negateDestPort(), CUnsupportedException, 7, "no port is defined");
  builder.addSourcePort(80);
  builder.setDestPort(90, false);
  builder.negateSourcePort();
  builder.negateDestPort();
  EXPECT_EQ(textOf(builder),
            "rule 7 inout protocol tcp from any not port {80} to any not port 90 accept;");
}

TEST(TarnFWRuleBuilder, ConnectionSpecsInEveryForm) {
  CTarnFWRuleBuilder tcp = started(kTCP);
  tcp.setStateless();
  tcp.setSloppy();
  tcp.setStrict();
  tcp.addTCPFlags(0xff, true);
  EXPECT_EQ(textOf(tcp),
            "rule 7 inout protocol tcp with {stateless, sloppy, strict, not flag 0x00ff} from any "
            "to any accept;");
  CTarnFWRuleBuilder type = started(1);
  type.addICMPType(8, true);
  EXPECT_EQ(textOf(type), "rule 7 inout protocol icmp not icmptype 8 from any to any accept;");
  CTarnFWRuleBuilder code = started(58);
  code.addICMPTypeCode(1, 4, false);
  EXPECT_EQ(textOf(code), "rule 7 inout protocol ipv6-icmp typecode 1:4 from any to any accept;");
  CTarnFWRuleBuilder twice = started(kTCP);
  twice.setStrict();
  EXPECT_THROW_WITH(twice.addProtocolSpec(std::make_unique<CTarnFWProtocolSpecStrict>()),
                    CDuplicateProtocolSpecException, 43,
                    "duplicate definition of protocol spec of tcp strict");
}

TEST(TarnFWRuleBuilder, Profiles) {
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.setExtendedSource(std::make_unique<CTarnFWContainerID>(std::string("ext")));
  builder.setAttributeProfile(std::make_unique<CTarnFWContainerID>(std::string("prof")));
  EXPECT_EQ(textOf(builder),
            "rule 7 inout protocol tcp from any to any with extended src ext with attribute "
            "profile prof accept;");
}

TEST(TarnFWRuleBuilder, LongTagsAreCutWithAWarning) {
  const std::string tag(40, 't');
  LogCapture log;
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.setTag(std::string(31, 't'));
  EXPECT_TRUE(log.lines().empty());
  builder.setTag(tag);
  EXPECT_EQ(log.normalized(),
            std::vector<std::string>{
                "4|tarnfw: TarnFWRuleBuilder:setTag():N rule tag is longer than 31 chars: " + tag +
                "\n\n"});
  EXPECT_EQ(textOf(builder),
            "rule 7 inout protocol tcp from any to any accept tag '" + std::string(31, 't') + "';");
  builder.setTag(static_cast<const char*>(nullptr));
  builder.setType(true);
  builder.setAction(FW_ACTION_DROP, "");
  EXPECT_EQ(textOf(builder), "rule 0 at 0 inout protocol any from any to any drop;");
}

TEST(TarnFWRuleBuilder, TheTagStaysForTheNextRule) {
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.setTag("first");
  EXPECT_EQ(textOf(builder), "rule 7 inout protocol tcp from any to any accept tag 'first';");
  builder.init();
  builder.setType(true);
  builder.setAction(FW_ACTION_ACCEPT, "");
  EXPECT_EQ(textOf(builder), "rule 0 at 0 inout protocol any from any to any accept tag 'first';");
  builder.setType(true);
  builder.setAction(FW_ACTION_ACCEPT, "");
  builder.setTag("second");
  EXPECT_EQ(textOf(builder), "rule 0 at 0 inout protocol any from any to any accept tag 'second';");
}

TEST(TarnFWRuleBuilder, EverythingElseIsResetAfterARule) {
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.setDirection(FW_DIRECTION_IN);
  builder.setInternal();
  builder.setInetAF(true);
  builder.setSource("a");
  builder.setDest("b");
  builder.addSourcePort(1);
  builder.addDestPort(2);
  builder.setStrict();
  builder.setExtendedSource(std::make_unique<CTarnFWContainerID>(std::string("ext")));
  builder.setAttributeProfile(std::make_unique<CTarnFWContainerID>(std::string("prof")));
  EXPECT_NE(builder.buildRule(), nullptr);
  builder.setType(true);
  builder.setAction(FW_ACTION_ACCEPT, "");
  EXPECT_EQ(textOf(builder), "rule 0 at 0 inout protocol any from any to any accept;");
}

TEST(TarnFWRuleBuilder, ASecondBuildHasNoProtocol) {
  CTarnFWRuleBuilder builder = started(kTCP);
  EXPECT_NE(builder.buildRule(), nullptr);
  LogCapture log;
  EXPECT_EQ(builder.buildRule(), nullptr);
  EXPECT_EQ(log.normalized(),
            std::vector<std::string>{
                "3|tarnfw: TarnFWRuleBuilder:buildRule():N buildRule error 7: no protocol is "
                "defined\n"});
}

TEST(TarnFWRuleBuilder, ValidateRuleMakesTheChecksOfTheRuleInOrder) {
  CTarnFWRuleBuilder builder;
  EXPECT_THROW_WITH(builder.validateRule(), CUnsupportedException, 7, "no protocol is defined");
  EXPECT_THROW_WITH(builder.validateProtocolSpec(), CUnsupportedException, 7,
                    "no protocol is defined");
  builder.setType(false);
  EXPECT_THROW_WITH(builder.validateRule(), CUnsupportedException, 7, "no action is defined");
  builder.setAction(std::make_unique<CTarnFWRuleActionSNAT>(
      std::make_unique<CTarnFWAddressIPv4>("1.2.3.4", false)));
  EXPECT_THROW_WITH(builder.validateRule(), CUnsupportedException, 7,
                    "cannot accept layer2 NAT rule!");
  builder.setType(true);
  builder.setSource(std::make_unique<CTarnFWAddressEther>("02:00:00:00:00:01", false));
  EXPECT_THROW_WITH(builder.validateRule(), CUnsupportedException, 7,
                    "SNAT rule direction is not out!");
  builder.setDirection(FW_DIRECTION_OUT);
  EXPECT_THROW_WITH(builder.validateRule(), CUnsupportedException, 53,
                    "layer3 rule src address is MAC");
  builder.setSource(std::make_unique<CTarnFWAddressIPv4>("1.2.3.4", false));
  builder.setDest(std::make_unique<CTarnFWAddressIPv6>("::1", false));
  EXPECT_THROW_WITH(builder.validateRule(), CUnsupportedException, 53,
                    "rule src and dst are different version of IP addresses");
  builder.setDest("set");
  builder.addICMPType(8, false);
  EXPECT_THROW_WITH(builder.validateRule(), CUnsupportedException, 7,
                    "cannot accept icmp type while icmp protocol is not specified");
  builder.setProtocol(1, false);
  builder.setSourcePort(80, false);
  EXPECT_THROW_WITH(builder.validateRule(), CUnsupportedException, 7,
                    "cannot accept tcp/udp port while tcp/udp protocol is not specified");
  builder.setSourcePort(nullptr);
  builder.addTCPFlags(2, false);
  EXPECT_THROW_WITH(builder.validateRule(), CUnsupportedException, 7, kFlagsText);
}

TEST(TarnFWRuleBuilder, AnyObjectAtAPortFieldCountsAsAPortHere) {
  CTarnFWRuleBuilder builder = started(1);
  builder.setDestPort(std::make_unique<CTarnFWProtocolSpecTCPFlags>(2, 2, false));
  EXPECT_THROW_WITH(builder.validateProtocolSpec(), CUnsupportedException, 7,
                    "cannot accept tcp/udp port while tcp/udp protocol is not specified");
}

TEST(TarnFWRuleBuilder, StrictOnUDPPassesHereAndIsRefusedByTheRule) {
  CTarnFWRuleBuilder builder = started(kUDP);
  builder.setStrict();
  builder.addSourcePort(80);
  builder.setDestPort(90, false);
  builder.setSource("a");
  EXPECT_NO_THROW(builder.validateRule());
  LogCapture log;
  EXPECT_EQ(builder.buildRule(), nullptr);
  EXPECT_EQ(log.normalized(),
            std::vector<std::string>{
                std::string("3|tarnfw: TarnFWRuleBuilder:buildRule():N buildRule error 7: ") +
                kFlagsText + "\n"});
  // The objects are still the builder's.
  builder.setProtocol(kTCP, false);
  EXPECT_EQ(textOf(builder),
            "rule 7 inout protocol tcp strict from addrset a port {80} to any port 90 accept;");
}

TEST(TarnFWRuleBuilder, PortsOfConnectionAndEndPassHereAndAreRefusedByTheRule) {
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.addProtocolSpec(std::make_unique<CTarnFWProtocolSpecL4Port>(
      static_cast<unsigned char>(0), static_cast<unsigned short>(80), false));
  builder.setSourcePort(80, false);
  EXPECT_NO_THROW(builder.validateRule());
  LogCapture log;
  EXPECT_EQ(builder.buildRule(), nullptr);
  EXPECT_TRUE(log.has(3,
                      "buildRule error 7: cannot accept both connection-level and direction-level "
                      "specification for port\n"));
}

TEST(TarnFWRuleBuilder, AFamilyAgainstTheAddressesFailsAfterTheRuleTookThem) {
  CTarnFWRuleBuilder builder = started(kTCP);
  builder.setSource(ip("1.2.3.4"), 32);
  builder.setInetAF(true);
  LogCapture log;
  EXPECT_EQ(builder.buildRule(), nullptr);
  EXPECT_TRUE(log.has(3, "buildRule error 57: af conflicts with rule address\n"));
  EXPECT_EQ(builder.buildRule(), nullptr);
  EXPECT_TRUE(log.has(3, "buildRule error 7: no protocol is defined\n"));
  // The builder is usable again.
  builder.init();
  builder.setType(true);
  builder.setStateless();
  builder.setAction(FW_ACTION_ACCEPT, "");
  EXPECT_EQ(textOf(builder), "rule 0 at 0 inout protocol any stateless from any to any accept;");
}
