// The record that a rule writes.
#include <gtest/gtest.h>

#include "FullRule.h"
#include "RuleOfParts.h"
#include "TarnFWAddressAny.h"
#include "TarnFWAddressIPv4CIDR.h"
#include "TarnFWAddressList.h"
#include "TarnFWRuleActionDNAT.h"
#include "TarnFWRuleActionDrop.h"

using namespace RuleOfParts;

TEST(TarnFWRule, HasItsTypeAndSize) {
  CTarnFWRule rule = Parts().make();
  EXPECT_EQ(rule.getType(), 21);
  EXPECT_EQ(rule.getMsgSize(), 892u);
  expectShortBuffersRefused(rule);
}

TEST(TarnFWRule, ADefaultAcceptRuleHasTheCopyModeInItsRecordAlone) {
  CTarnFWRule rule = Parts().make();
  EXPECT_EQ(messageOf(rule), plainRecord().at(884, {2}));
  EXPECT_EQ(rule.toString(), "rule 7 inout protocol any from any to any accept;");
}

TEST(TarnFWRule, OnlyAPlainLayer3AcceptIsADefaultRule) {
  CTarnFWRule protocol = tcp().make();
  EXPECT_EQ(messageOf(protocol), tcpRecord());
  CTarnFWRule drop = Parts().act<CTarnFWRuleActionDrop>().make();
  EXPECT_EQ(messageOf(drop), plainRecord().at(750, {2}).at(884, {1}));
  CTarnFWRule source = Parts().src<SetID>("s", false).make();
  EXPECT_EQ(messageOf(source)[884], 1);
  CTarnFWRule destination = Parts().dst<SetID>("s", false).make();
  EXPECT_EQ(messageOf(destination)[884], 1);
  Parts ethernet;
  ethernet.protocol = CTarnFWProtocol(FWProtocolLayer::ethernet);
  CTarnFWRule layer2 = ethernet.make();
  EXPECT_EQ(messageOf(layer2), plainRecord().at(790, {0x00}).at(884, {1}));
  Parts profiled;
  profiled.makeExtras().attributeProfile = std::make_unique<CTarnFWContainerID>(std::string("p"));
  CTarnFWRule profile = profiled.make();
  EXPECT_EQ(messageOf(profile)[884], 8);
  // Specs, tags and flags don't matter.
  CTarnFWRule stateless = Parts().with<Stateless>().make();
  stateless.setTag("t");
  EXPECT_EQ(messageOf(stateless)[884], 2);
}

TEST(TarnFWRule, WithoutAnActionItAccepts) {
  Parts parts;
  parts.action = nullptr;
  CTarnFWRule rule = parts.make();
  EXPECT_EQ(messageOf(rule), plainRecord().at(884, {2}));
  EXPECT_EQ(rule.toString(), "rule 7 inout protocol any from any to any accept;");
}

TEST(TarnFWRule, NumbersOfBothLayersInTheRecord) {
  CTarnFWRule ip = Parts(0x1234).make();
  EXPECT_EQ(messageOf(ip), plainRecord().at(790, {0x14}).at(794, {0x34, 0x12}).at(884, {1}));
  CTarnFWRule negated = Parts().layer3(6, true).make();
  EXPECT_EQ(messageOf(negated), plainRecord().at(790, {0x1c}).at(794, {6, 0}).at(884, {1}));
  CTarnFWRule ethernet = Parts().layer2(0x806).make();
  EXPECT_EQ(messageOf(ethernet), plainRecord().at(790, {0x04}).at(794, {0x08, 0x06}).at(884, {1}));
  CTarnFWRule notEthernet = Parts().layer2(0x806, true).make();
  EXPECT_EQ(messageOf(notEthernet),
            plainRecord().at(790, {0x0c}).at(794, {0x08, 0x06}).at(884, {1}));
}

TEST(TarnFWRule, DirectionsInTheRecord) {
  for (const auto& [direction, bits] :
       {std::pair(FW_DIRECTION_INOUT, 0x14), std::pair(FW_DIRECTION_IN, 0x34),
        std::pair(FW_DIRECTION_OUT, 0x54)}) {
    Parts parts = tcp();
    parts.direction = direction;
    CTarnFWRule rule = parts.make();
    EXPECT_EQ(messageOf(rule), tcpRecord().at(790, {bits}));
  }
}

TEST(TarnFWRule, AnIPv4AddressGivesADerivedInet) {
  CTarnFWRule source = tcp().src<IPv4>("10.0.0.1", false).make();
  EXPECT_EQ(messageOf(source),
            tcpRecord().at(12, {1, 0, 0, 0, 10, 0, 0, 1}).at(790, {0x95, 0, 0, 0x10}));
  CTarnFWRule destination = tcp().dst<IPv4>("10.0.0.1", true).make();
  EXPECT_EQ(messageOf(destination),
            tcpRecord().at(156, {1, 0, 1, 0, 10, 0, 0, 1}).at(790, {0x96, 0, 0, 0x10}));
}

TEST(TarnFWRule, AnIPv6AddressGivesADerivedInet6) {
  CTarnFWRule rule = tcp().dst<IPv6>("2001:db8::1", false).src<SetID>("web", false).make();
  EXPECT_EQ(messageOf(rule), tcpRecord()
                                 .at(12, {11, 0, 0, 0})
                                 .text(16, "web")
                                 .at(156, {2, 0, 0, 0, 0x20, 0x01, 0x0d, 0xb8})
                                 .at(175, {1})
                                 .at(790, {0x17, 1, 0, 0x10}));
}

TEST(TarnFWRule, AFamilyThatWasSetIsNotDerived) {
  CTarnFWRule inet = tcp().src<IPv4>("10.0.0.1", false).make();
  inet.setAF(FW_AF_INET);
  EXPECT_EQ(messageOf(inet),
            tcpRecord().at(12, {1, 0, 0, 0, 10, 0, 0, 1}).at(790, {0x95, 0, 0, 0}));
  CTarnFWRule inet6 = tcp().make();
  inet6.setAF(FW_AF_INET6);
  EXPECT_EQ(messageOf(inet6), tcpRecord().at(790, {0x14, 1, 0, 0}));
}

TEST(TarnFWRule, AnAddressOfAnyIsLeftOutWithItsNegation) {
  Parts parts = tcp();
  parts.src<CTarnFWAddressAny>().dst<CTarnFWAddressAny>();
  parts.source->setNegated(true);
  CTarnFWRule rule = parts.make();
  EXPECT_EQ(messageOf(rule), tcpRecord());
}

TEST(TarnFWRule, EachPortFormOfEachEndInTheRecord) {
  CTarnFWRule ports = tcp().from<Port>(1, 0x1234, true).to<Port>(2, 80, false).make();
  EXPECT_EQ(messageOf(ports), tcpRecord().at(300, {0x0d, 0, 0x12, 0x34}).at(338, {0x0a, 0, 0, 80}));
  CTarnFWRule ranges = tcp().from<PortRange>(1, 1, 2, false).to<PortRange>(2, 80, 90, true).make();
  EXPECT_EQ(messageOf(ranges),
            tcpRecord().at(300, {0x11, 0, 0, 1, 0, 2}).at(338, {0x16, 0, 0, 80, 0, 90}));
  CTarnFWRule sets = tcp().from<PortSet>(1, "443,80-90").to<PortSet>(2, "1,2").make();
  EXPECT_EQ(messageOf(sets), tcpRecord()
                                 .at(300, {0x19, 0, 3, 0, 0, 80, 0, 90, 0x01, 0xbb})
                                 .at(334, {1, 0})
                                 .at(338, {0x1a, 0, 2, 0, 0, 1, 0, 2}));
}

TEST(TarnFWRule, APortOfTheConnectionIsNotInTheRecord) {
  CTarnFWRule rule = tcp().with<Port>(0, 80, false).make();
  EXPECT_EQ(messageOf(rule), tcpRecord());
  EXPECT_EQ(rule.toString(), "rule 7 inout protocol tcp port 80 from any to any accept;");
}

TEST(TarnFWRule, EachConnectionSpecInTheRecord) {
  CTarnFWRule all = tcp()
                        .with<TCPFlags>(0, 0x112, true)
                        .with<TCPOptions>(0, "\x02\x04", 2, false)
                        .with<Stateless>()
                        .with<DSCP>(46)
                        .with<Strict>()
                        .with<Sloppy>()
                        .make();
  EXPECT_EQ(messageOf(all), tcpRecord()
                                .at(796, {0xc1, 0x1d, 0, 0, 0x24, 0, 0x12, 0x01})
                                .at(808, {0x28, 0, 2, 0, 0x02, 0x04}));
  CTarnFWRule icmp = Parts(1).with<ICMPType>(0, 3, 1, false).make();
  EXPECT_EQ(messageOf(icmp),
            tcpRecord().at(794, {1, 0}).at(796, {0, 0, 0, 0, 0x30, 0, 3, 0, 0, 0, 3, 1}));
}

TEST(TarnFWRule, TagsHave31Characters) {
  CTarnFWRule rule = tcp().make();
  rule.setTag(std::string(40, 't').c_str());
  EXPECT_EQ(messageOf(rule), tcpRecord().text(852, std::string(31, 't')));
  EXPECT_EQ(rule.toString(),
            "rule 7 inout protocol tcp from any to any accept tag '" + std::string(31, 't') + "';");
  CTarnFWRule shorter = tcp().make();
  shorter.setTag("a long tag");
  shorter.setTag("t");
  EXPECT_EQ(messageOf(shorter), tcpRecord().text(852, "t"));
  CTarnFWRule none = tcp().make();
  none.setTag(nullptr);
  EXPECT_EQ(messageOf(none), tcpRecord());
}

TEST(TarnFWRule, ProfilesInTheRecord) {
  Parts both = tcp();
  both.makeExtras().extendedSource = std::make_unique<CTarnFWContainerID>(std::string("ext"));
  both.makeExtras().attributeProfile = std::make_unique<CTarnFWContainerID>(std::string(37, 'p'));
  CTarnFWRule rule = both.make();
  EXPECT_TRUE(rule.hasExtSrcProfile());
  EXPECT_TRUE(rule.hasAttributeProfile());
  EXPECT_EQ(rule.getExtSrcProfile()->getContainerID(), "ext");
  EXPECT_EQ(rule.getAttributeProfile()->getContainerID(), std::string(37, 'p'));
  EXPECT_EQ(messageOf(rule),
            tcpRecord().text(380, "ext").text(422, std::string(37, 'p')).at(884, {12}));

  Parts extended = tcp();
  extended.makeExtras().extendedSource = std::make_unique<CTarnFWContainerID>(std::string("ext"));
  CTarnFWRule one = extended.make();
  EXPECT_TRUE(one.hasExtSrcProfile());
  EXPECT_FALSE(one.hasAttributeProfile());
  EXPECT_EQ(one.getAttributeProfile(), nullptr);
  EXPECT_EQ(messageOf(one), tcpRecord().text(380, "ext").at(884, {4}));
}

TEST(TarnFWRule, AContainerNameWithoutANulIsCutInTheRecord) {
  FWAddrSetID_t id;
  std::memset(id.text, 'p', sizeof id.text);
  Parts parts = tcp();
  parts.makeExtras().attributeProfile = std::make_unique<CTarnFWContainerID>(id);
  CTarnFWRule rule = parts.make();
  EXPECT_EQ(messageOf(rule), tcpRecord().text(422, std::string(37, 'p')).at(884, {8}));
}

TEST(TarnFWRule, InternalIsNotWritten) {
  CTarnFWRule rule = tcp().make();
  rule.setInternal();
  EXPECT_EQ(messageOf(rule), tcpRecord());
}

TEST(TarnFWRule, ARuleWithEverything) {
  Parts parts = tcp();
  parts.id = 0x01020304;
  parts.position = 5;
  parts.direction = FW_DIRECTION_OUT;
  parts.src<CTarnFWAddressIPv4CIDR>("10.1.2.3/24", true)
      .dst<IPv4>("10.9.8.7", false)
      .from<PortRange>(1, 1024, 65535, false)
      .to<PortSet>(2, "443,80-90")
      .with<TCPFlags>(0, 0x02, false)
      .with<TCPOptions>(0, std::string(40, 'o').data(), 40, true)
      .with<DSCP>(63)
      .with<Strict>();
  auto dnat = std::make_unique<CTarnFWRuleActionDNAT>(std::make_unique<IPv4>("10.0.0.1", false),
                                                      FW_POOL_ROUND_ROBIN, 8080, 8090, 60);
  dnat->enableLogPacket();
  dnat->enableRtt();
  dnat->enableDynamic(1);
  parts.action = std::move(dnat);
  parts.makeExtras().extendedSource = std::make_unique<CTarnFWContainerID>(std::string("ext"));
  parts.makeExtras().attributeProfile = std::make_unique<CTarnFWContainerID>(std::string("prof"));
  CTarnFWRule rule = parts.make();
  rule.setAF(FW_AF_INET);
  rule.setTag("tagged");
  // Its session parts are those that are not read back, or not as they were.
  EXPECT_EQ(messageOf(rule), fullRuleRecord()
                                 .at(796, {0xe0, 0x0f})
                                 .at(808, {0x2c, 0, 40, 0})
                                 .text(812, std::string(40, 'o')));
  EXPECT_EQ(rule.toString(),
            "rule 16909060 at 5 out inet protocol tcp with {flag 0x0002, not tcpoptions 0x" +
                std::string("6f6f6f6f6f6f6f6f6f6f6f6f6f6f6f6f6f6f6f6f") +
                "6f6f6f6f6f6f6f6f6f6f6f6f6f6f6f6f6f6f6f6f, dscp 63, strict}"
                " from not ip 10.1.2.3/24 port 1024-65535 to ip 10.9.8.7 port {80-90, 443}"
                " with extended src ext with attribute profile prof"
                " dnat ip 10.0.0.1 port 8080-8090 poolopt round-robin 60 with {log,rtt} as ftp"
                " tag 'tagged';");
}

TEST(TarnFWRule, ABufferOfNoiseIsClearedFirst) {
  CTarnFWRule rule = tcp().make();
  EXPECT_EQ(messageOf(rule, 0xff), tcpRecord());
}

TEST(TarnFWRule, AnAddressThatNeedsMoreThanItsPlaceIsNotWritten) {
  auto list = std::make_unique<CTarnFWAddressList>(false);
  list->addAddress(std::make_unique<IPv4>("10.0.0.1", false));
  list->addAddress(std::make_unique<IPv4>("10.0.0.2", false));
  Parts parts = tcp();
  parts.source = std::move(list);
  CTarnFWRule rule = parts.make();
  Bytes bytes(892, 0xee);
  unsigned int written = 5;
  EXPECT_FALSE(rule.toMessage(bytes.data(), 892, &written));
  EXPECT_EQ(written, 5u);
  EXPECT_EQ(bytes, Bytes(892, 0xee));
}

TEST(TarnFWRule, TwoPortFormsOfOneEndAreRefusedWhenWritten) {
  CTarnFWRule rule = tcp().from<Port>(1, 80, false).from<PortRange>(1, 1, 2, false).make();
  Bytes bytes(892, 0xee);
  EXPECT_THROW_WITH(rule.toMessage(bytes.data(), 892, nullptr), CDuplicateProtocolSpecException, 43,
                    "duplicate definition of protocol spec of min protocol spec placeholder");
  EXPECT_EQ(bytes, Bytes(892, 0xee));
}

TEST(TarnFWRule, AFreshBufferGetsTheSameRecord) {
  CTarnFWRule rule =
      tcp().src<CTarnFWAddressIPv4CIDR>("10.1.2.3/24", true).to<Port>(2, 80, false).make();
  const Bytes record = messageOf(rule);
  for (int again = 0; again < 2; ++again) {
    CTarnFWRule first =
        tcp().src<CTarnFWAddressIPv4CIDR>("10.1.2.3/24", true).to<Port>(2, 80, false).make();
    CTarnFWRule& written = again == 0 ? first : rule;
    Bytes bytes(892);
    unsigned int size = 0;
    EXPECT_FALSE(written.toFreshMessage(bytes.data(), 891, &size));
    EXPECT_EQ(size, 0u);
    EXPECT_TRUE(written.toFreshMessage(bytes.data(), 892, &size));
    EXPECT_EQ(size, 892u);
    EXPECT_EQ(bytes, record);
  }
}

TEST(TarnFWRule, NothingIsWrittenIntoAFreshBufferWhereOnePartIsRefused) {
  CTarnFWRule ports = tcp().from<Port>(1, 80, false).from<PortRange>(1, 1, 2, false).make();
  CTarnFWRule flags = Parts(1).with<ICMPType>(0, 8, false).make();
  Bytes bytes(892);
  EXPECT_THROW_WITH(ports.toFreshMessage(bytes.data(), 892, nullptr),
                    CDuplicateProtocolSpecException, 43,
                    "duplicate definition of protocol spec of min protocol spec placeholder");
  EXPECT_EQ(bytes, Bytes(892));
  EXPECT_TRUE(flags.toFreshMessage(bytes.data(), 892, nullptr));
  EXPECT_EQ(bytes, messageOf(flags));
}

TEST(TarnFWRule, TakesLittleMemory) {
  EXPECT_LE(sizeof(CTarnFWRule), 168u);
  EXPECT_LE(sizeof(CTarnFWProtocolSpecList), 32u);
  EXPECT_LE(sizeof(Port), 16u);
  EXPECT_LE(sizeof(IPv4), 16u);
  EXPECT_LE(sizeof(CTarnFWAddressIPv4CIDR), 16u);
  EXPECT_LE(sizeof(CTarnFWRuleActionAccept), 16u);
}
