#include <gtest/gtest.h>

#include "Expect.h"
#include "FullRule.h"
#include "LibcShim.h"
#include "LogCapture.h"
#include "Message.h"
#include "TarnFWAddrSetID.h"
#include "TarnFWAddressAny.h"
#include "TarnFWAddressEther.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressIPv4CIDR.h"
#include "TarnFWAddressIPv6.h"
#include "TarnFWAddressIPv6CIDR.h"
#include "TarnFWAddressList.h"
#include "TarnFWLog.h"
#include "TarnFWProtocolSpecDSCP.h"
#include "TarnFWProtocolSpecICMPType.h"
#include "TarnFWProtocolSpecL4Port.h"
#include "TarnFWProtocolSpecL4PortRange.h"
#include "TarnFWProtocolSpecL4PortSet.h"
#include "TarnFWProtocolSpecSloppy.h"
#include "TarnFWProtocolSpecStateless.h"
#include "TarnFWProtocolSpecStrict.h"
#include "TarnFWProtocolSpecTCPFlags.h"
#include "TarnFWProtocolSpecTCPOptions.h"
#include "TarnFWRule.h"
#include "TarnFWRuleActionAccept.h"
#include "TarnFWRuleActionDNAT.h"
#include "TarnFWRuleActionDrop.h"
#include "TarnFWRuleActionJumpto.h"
#include "TarnFWRuleActionLB.h"
#include "TarnFWRuleActionSNAT.h"

using namespace TarnFirewall;

namespace {

/// The parts of a rule, by default of one that accepts everything on layer 3.
struct Parts : FWRuleParts {
  Parts() {
    id = 7;
    position = -1;
    protocol.emplace(FWProtocolLayer::ip);
    action = std::make_unique<CTarnFWRuleActionAccept>();
  }
  explicit Parts(unsigned short ipProtocol) : Parts() { layer3(ipProtocol); }

  Parts& layer3(unsigned short number, bool negated = false) {
    protocol = CTarnFWProtocol(FWProtocolLayer::ip, number, negated);
    return *this;
  }
  Parts& layer2(unsigned short number, bool negated = false) {
    protocol = CTarnFWProtocol(FWProtocolLayer::ethernet, number, negated);
    return *this;
  }
  template <typename Spec, typename... Arguments>
  Parts& with(Arguments... arguments) {
    return add<Spec>(connection, arguments...);
  }
  template <typename Spec, typename... Arguments>
  Parts& from(Arguments... arguments) {
    return add<Spec>(sourcePorts, arguments...);
  }
  template <typename Spec, typename... Arguments>
  Parts& to(Arguments... arguments) {
    return add<Spec>(destinationPorts, arguments...);
  }
  template <typename Address, typename... Arguments>
  Parts& src(Arguments... arguments) {
    source = std::make_unique<Address>(arguments...);
    return *this;
  }
  template <typename Address, typename... Arguments>
  Parts& dst(Arguments... arguments) {
    destination = std::make_unique<Address>(arguments...);
    return *this;
  }
  template <typename Action, typename... Arguments>
  Parts& act(Arguments&&... arguments) {
    action = std::make_unique<Action>(std::forward<Arguments>(arguments)...);
    return *this;
  }
  template <typename Rule = CTarnFWRule>
  Rule make() {
    return Rule(std::move(*this));
  }

 private:
  template <typename Spec, typename... Arguments>
  Parts& add(CTarnFWProtocolSpecList& list, Arguments... arguments) {
    list.addSpec(std::make_unique<Spec>(arguments...));
    return *this;
  }
};

/// The record of the default parts without its mode: id 7, position -1, layer 3, accept.
Bytes plainRecord() {
  return Bytes(892).at(0, {7, 0, 0, 0, 0xff, 0xff, 0xff, 0xff}).at(750, {1}).at(790, {0x10});
}

/// A TCP rule with its usual record: flags has protocol and layer 3, number 6, mode 1.
Parts tcp() { return Parts(6); }
Bytes tcpRecord() { return plainRecord().at(790, {0x14}).at(794, {6, 0}).at(884, {1}); }

using Port = CTarnFWProtocolSpecL4Port;
using PortRange = CTarnFWProtocolSpecL4PortRange;
using PortSet = CTarnFWProtocolSpecL4PortSet;
using ICMPType = CTarnFWProtocolSpecICMPType;
using TCPFlags = CTarnFWProtocolSpecTCPFlags;
using TCPOptions = CTarnFWProtocolSpecTCPOptions;
using Stateless = CTarnFWProtocolSpecStateless;
using Strict = CTarnFWProtocolSpecStrict;
using Sloppy = CTarnFWProtocolSpecSloppy;
using DSCP = CTarnFWProtocolSpecDSCP;
using IPv4 = CTarnFWAddressIPv4;
using IPv6 = CTarnFWAddressIPv6;
using Ether = CTarnFWAddressEther;
using SetID = CTarnFWAddrSetID;

const char* const kFlagsText =
    "cannot accept tcp flags/options while tcp protocol is not specified";
const char* const kPortText = "cannot accept tcp/udp port while tcp/udp protocol is not specified";
const char* const kICMPText = "cannot accept icmp type while icmp protocol is not specified";
const char* const kBothText =
    "cannot accept both connection-level and direction-level specification for port";

}  // namespace

// ---- wire form

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

// ---- what was written once

TEST(TarnFWRule, ChangesAfterTheFirstWriteDoNotReachTheWire) {
  CTarnFWRule rule = tcp().make();
  EXPECT_EQ(messageOf(rule), tcpRecord());
  rule.setTag("late");
  rule.setDirection(FW_DIRECTION_OUT);
  rule.setAF(FW_AF_INET);
  rule.setInternal();
  EXPECT_EQ(rule.toString(),
            "# internal # rule 7 out inet protocol tcp from any to any accept tag 'late';");
  EXPECT_EQ(messageOf(rule), tcpRecord());
  EXPECT_EQ(messageOf(rule), tcpRecord());
}

TEST(TarnFWRule, ChangesBeforeTheFirstWriteReachIt) {
  CTarnFWRule rule = tcp().make();
  rule.setTag("tag");
  rule.setDirection(FW_DIRECTION_IN);
  EXPECT_EQ(rule.getDirection(), FW_DIRECTION_IN);
  const Bytes expected = tcpRecord().at(790, {0x34}).text(852, "tag");
  EXPECT_EQ(messageOf(rule), expected);
  EXPECT_EQ(messageOf(rule), expected);
}

TEST(TarnFWRule, ARefusedWriteDoesNotCount) {
  CTarnFWRule rule = tcp().make();
  Bytes bytes(891);
  EXPECT_FALSE(rule.toMessage(bytes.data(), 891, nullptr));
  rule.setTag("tag");
  EXPECT_EQ(messageOf(rule), tcpRecord().text(852, "tag"));
}

TEST(TarnFWRule, SetTCPStrictReachesTheWireOfAWrittenRule) {
  CTarnFWRule rule = tcp().make();
  EXPECT_EQ(messageOf(rule), tcpRecord());
  rule.setTCPStrict(true);
  EXPECT_EQ(messageOf(rule), tcpRecord().at(797, {0x08}));
  EXPECT_EQ(rule.toString(), "rule 7 inout protocol tcp strict from any to any accept;");
  rule.setTag("late");
  rule.setTCPStrict(true);
  rule.setTCPStrict(false);
  EXPECT_EQ(messageOf(rule), tcpRecord());
  EXPECT_EQ(rule.toString(), "rule 7 inout protocol tcp from any to any accept tag 'late';");
}

TEST(TarnFWRule, SetTCPStrictOnAgainAfterOffEditsTheRecordAndThrows) {
  CTarnFWRule rule = tcp().with<Strict>().make();
  messageOf(rule);
  rule.setTCPStrict(false);
  EXPECT_EQ(messageOf(rule), tcpRecord());
  EXPECT_THROW_WITH(rule.setTCPStrict(true), CDuplicateProtocolSpecException, 43,
                    "duplicate definition of protocol spec of tcp strict");
  EXPECT_EQ(messageOf(rule), tcpRecord().at(797, {0x08}));
  EXPECT_EQ(rule.toString(), "rule 7 inout protocol tcp from any to any accept;");
}

TEST(TarnFWRule, SetTCPStrictBeforeTheFirstWriteChangesTheRule) {
  CTarnFWRule rule = tcp().with<DSCP>(1).make();
  rule.setTCPStrict(true);
  EXPECT_EQ(messageOf(rule), tcpRecord().at(796, {0x20, 0x08}));
  CTarnFWRule off = tcp().with<Strict>().make();
  off.setTCPStrict(false);
  EXPECT_EQ(messageOf(off), tcpRecord());
}

TEST(TarnFWRule, SetTCPStrictOfWhatItIsAlreadyChangesNothing) {
  CTarnFWRule strict = tcp().with<Strict>().make();
  strict.setTCPStrict(true);
  EXPECT_EQ(messageOf(strict), tcpRecord().at(797, {0x08}));
  strict.setTCPStrict(true);
  EXPECT_EQ(messageOf(strict), tcpRecord().at(797, {0x08}));
  CTarnFWRule loose = tcp().make();
  loose.setTCPStrict(false);
  EXPECT_EQ(messageOf(loose), tcpRecord());
}

TEST(TarnFWRule, SetTCPStrictLeavesEveryOtherProtocolAlone) {
  const auto unchanged = [](Parts parts) {
    CTarnFWRule rule = parts.make();
    const std::string text = rule.toString();
    const Bytes record = messageOf(rule);
    rule.setTag("late");  // the record is kept from here on
    rule.setTCPStrict(true);
    EXPECT_EQ(messageOf(rule), record);
    EXPECT_EQ(rule.toString(), text.substr(0, text.size() - 1) + " tag 'late';");
  };
  unchanged(Parts(17));
  unchanged(Parts());
  unchanged(std::move(Parts().layer3(6, true)));
  unchanged(std::move(Parts().layer2(6)));
}

TEST(TarnFWRule, TracesWhatItWrites) {
  CTarnFWRule rule = Parts().make();
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_RULE].level = 1;
  messageOf(rule);
  messageOf(rule);
  rule.setTag("late");
  messageOf(rule);
  EXPECT_EQ(
      log.normalized(),
      (std::vector<std::string>{
          "7|tarnfw:rule TarnFWRule:toMessage():N     fixing af\n",
          "7|tarnfw:rule TarnFWRule:toMessage():N      rule qualifies as default rule, set copy "
          "mode\n\n",
          "7|tarnfw:rule TarnFWRule:toMessage():N     wrote rule: 7.\n",
          "7|tarnfw:rule TarnFWRule:toMessage():N     copy cached rule: 7.\n",
          "7|tarnfw:rule TarnFWRule:toMessage():N     copy cached rule: 7.\n"}));
}

TEST(TarnFWRule, TracesOfItsSpecsAreOfTheFirstWriteAlone) {
  CTarnFWRule rule = tcp()
                         .with<Strict>()
                         .with<TCPFlags>(0, 2, false)
                         .from<Port>(1, 1024, false)
                         .to<PortRange>(2, 80, 90, false)
                         .make();
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_PROTOCOL].level = 1;
  const Bytes first = messageOf(rule);
  EXPECT_EQ(log.lines().size(), 4u);
  log.clear();
  EXPECT_EQ(messageOf(rule), first);
  rule.setTag("late");
  EXPECT_EQ(messageOf(rule), first);
  EXPECT_TRUE(log.lines().empty());
}

// ---- construction

TEST(TarnFWRule, TranslationsAreOfLayer3) {
  const auto address = [] { return std::make_unique<IPv4>("10.0.0.1", false); };
  const char* const text = "cannot accept layer2 NAT rule!";
  Parts snat;
  snat.layer2(0x800).act<CTarnFWRuleActionSNAT>(address());
  EXPECT_THROW_WITH(snat.make(), CUnsupportedException, 7, text);
  Parts dnat;
  dnat.layer2(0x800).act<CTarnFWRuleActionDNAT>(address(), FW_POOL_NONE, 0);
  EXPECT_THROW_WITH(dnat.make(), CUnsupportedException, 7, text);
  Parts lb;
  lb.layer2(0x800).act<CTarnFWRuleActionLB>(0);
  EXPECT_THROW_WITH(lb.make(), CUnsupportedException, 7, text);
  CTarnFWRule jump = Parts().layer2(0x800).act<CTarnFWRuleActionJumpto>("web").make();
  EXPECT_EQ(jump.toString(), "rule 7 inout ethertype 0x0800 from any to any jumpto web;");
}

TEST(TarnFWRule, ASourceTranslationIsForOutgoingTraffic) {
  for (const FWRuleDirection_t direction : {FW_DIRECTION_INOUT, FW_DIRECTION_IN}) {
    Parts parts;
    parts.direction = direction;
    parts.act<CTarnFWRuleActionSNAT>(std::make_unique<IPv4>("10.0.0.1", false));
    EXPECT_THROW_WITH(parts.make(), CUnsupportedException, 7, "SNAT rule direction is not out!");
  }
  Parts parts;
  parts.direction = FW_DIRECTION_OUT;
  parts.act<CTarnFWRuleActionSNAT>(std::make_unique<IPv4>("10.0.0.1", false));
  EXPECT_EQ(parts.make().toString(), "rule 7 out protocol any from any to any snat ip 10.0.0.1;");
}

TEST(TarnFWRule, AddressesAreOfTheRulesLayer) {
  const char* const mac = "02:00:00:00:00:01";
  Parts macs;
  macs.src<Ether>(mac, false).dst<Ether>(mac, false);
  EXPECT_THROW_WITH(macs.make(), CUnsupportedException, 53, "layer3 rule src address is MAC");
  EXPECT_THROW_WITH(Parts().dst<Ether>(mac, false).make(), CUnsupportedException, 53,
                    "layer3 rule dst address is MAC");
  Parts addresses;
  addresses.layer2(0x800).src<IPv4>("10.0.0.1", false).dst<IPv4>("10.0.0.1", false);
  EXPECT_THROW_WITH(addresses.make(), CUnsupportedException, 53, "layer2 rule src address is IP");
  EXPECT_THROW_WITH(Parts().layer2(0x800).dst<IPv6>("2001:db8::1", false).make(),
                    CUnsupportedException, 53, "layer2 rule dst address is IP");
  EXPECT_EQ(Parts().layer2(0x800).src<Ether>(mac, false).make().toString(),
            "rule 7 inout ethertype 0x0800 from mac 02:00:00:00:00:01 to any accept;");
}

TEST(TarnFWRule, ALayer2RuleTakesAnAddressSet) {
  EXPECT_EQ(Parts().layer2(0x800).src<SetID>("web", false).make().toString(),
            "rule 7 inout ethertype 0x0800 from addrset web to any accept;");
}

TEST(TarnFWRule, BothAddressesAreOfOneFamily) {
  const char* const text = "rule src and dst are different version of IP addresses";
  EXPECT_THROW_WITH(Parts().src<IPv4>("10.0.0.1", false).dst<IPv6>("2001:db8::1", false).make(),
                    CUnsupportedException, 53, text);
  EXPECT_THROW_WITH(Parts().src<IPv6>("2001:db8::1", false).dst<IPv4>("10.0.0.1", false).make(),
                    CUnsupportedException, 53, text);
  Parts same;
  same.src<CTarnFWAddressIPv6CIDR>("2001:db8::/32", false).dst<IPv6>("2001:db8::1", false);
  EXPECT_EQ(same.make().toString(),
            "rule 7 inout protocol any from ip 2001:db8::/32 to ip 2001:db8::1 accept;");
}

TEST(TarnFWRule, ARefusedRuleLeavesItsPartsToTheCaller) {
  Parts parts(17);
  parts.src<IPv4>("10.0.0.1", false).to<Port>(2, 80, false).with<Strict>();
  parts.makeExtras().extendedSource = std::make_unique<CTarnFWContainerID>(std::string("ext"));
  EXPECT_THROW_WITH(parts.make(), CUnsupportedException, 7, kFlagsText);
  ASSERT_TRUE(parts.source && !parts.destinationPorts.empty() && !parts.connection.empty() &&
              parts.action && parts.extendedSource() != nullptr);
  parts.connection.clear();
  EXPECT_EQ(parts.make().toString(),
            "rule 7 inout protocol udp from ip 10.0.0.1 to any port 80 with extended src ext "
            "accept;");
  EXPECT_FALSE(parts.source || !parts.destinationPorts.empty() || parts.action);
}

TEST(TarnFWRule, ICMPTypesAreForICMPAndICMPv6) {
  EXPECT_EQ(Parts(1).with<ICMPType>(0, 8, false).make().toString(),
            "rule 7 inout protocol icmp icmptype 8 from any to any accept;");
  EXPECT_EQ(Parts(58).with<ICMPType>(0, 128, false).make().toString(),
            "rule 7 inout protocol ipv6-icmp icmptype 128 from any to any accept;");
  EXPECT_THROW_WITH(Parts(6).with<ICMPType>(0, 8, false).make(), CUnsupportedException, 7,
                    kICMPText);
  EXPECT_THROW_WITH(Parts().with<ICMPType>(0, 8, false).make(), CUnsupportedException, 7,
                    kICMPText);
  EXPECT_THROW_WITH(Parts().layer3(1, true).with<ICMPType>(0, 8, false).make(),
                    CUnsupportedException, 7, kICMPText);
  EXPECT_THROW_WITH(Parts().layer2(1).with<ICMPType>(0, 8, false).make(), CUnsupportedException, 7,
                    kICMPText);
}

TEST(TarnFWRule, PortsAreForTCPAndUDP) {
  for (const unsigned short number : {std::uint16_t{6}, std::uint16_t{17}}) {
    EXPECT_NO_THROW(Parts(number).with<Port>(0, 80, false).make());
    EXPECT_NO_THROW(Parts(number).from<PortRange>(1, 1, 2, false).make());
    EXPECT_NO_THROW(Parts(number).to<PortSet>(2, false).make());
  }
  EXPECT_THROW_WITH(Parts(1).with<Port>(0, 80, false).make(), CUnsupportedException, 7, kPortText);
  EXPECT_THROW_WITH(Parts().from<PortRange>(1, 1, 2, false).make(), CUnsupportedException, 7,
                    kPortText);
  EXPECT_THROW_WITH(Parts().layer3(6, true).to<PortSet>(2, false).make(), CUnsupportedException, 7,
                    kPortText);
  EXPECT_THROW_WITH(Parts().layer2(17).to<Port>(2, 80, false).make(), CUnsupportedException, 7,
                    kPortText);
}

TEST(TarnFWRule, TCPSpecsAreForTCP) {
  EXPECT_NO_THROW(tcp().with<TCPFlags>(0, 2, false).with<Strict>().to<Port>(2, 80, false).make());
  EXPECT_THROW_WITH(Parts(1).with<TCPFlags>(0, 2, false).make(), CUnsupportedException, 7,
                    kFlagsText);
  EXPECT_THROW_WITH(Parts().with<TCPOptions>(0, "a", 1, false).make(), CUnsupportedException, 7,
                    kFlagsText);
  EXPECT_THROW_WITH(Parts(17).with<Sloppy>().make(), CUnsupportedException, 7, kFlagsText);
  EXPECT_THROW_WITH(Parts(17).with<TCPFlags>(0, 2, false).to<Port>(2, 80, false).make(),
                    CUnsupportedException, 7, kFlagsText);
  EXPECT_THROW_WITH(Parts().layer2(6).with<Strict>().make(), CUnsupportedException, 7, kFlagsText);
}

TEST(TarnFWRule, AUDPRuleWithStrictIsRefusedWithTheFlagsMessage) {
  EXPECT_THROW_WITH(Parts(17).with<Strict>().make(), CUnsupportedException, 7, kFlagsText);
}

TEST(TarnFWRule, PortsOfConnectionAndEndExcludeEachOther) {
  EXPECT_THROW_WITH(tcp().from<Port>(1, 1024, false).with<Port>(0, 80, false).make(),
                    CUnsupportedException, 7, kBothText);
  EXPECT_THROW_WITH(Parts(17).to<PortSet>(2, false).with<PortRange>(0, 1, 2, false).make(),
                    CUnsupportedException, 7, kBothText);
}

TEST(TarnFWRule, TheFirstOfSeveralFaultsIsReported) {
  const char* const mac = "02:00:00:00:00:01";
  const auto snat = [] {
    return std::make_unique<CTarnFWRuleActionSNAT>(std::make_unique<IPv4>("10.0.0.1", false));
  };
  Parts translation;  // of layer 2, inout, with an IP address and a port
  translation.layer2(0x800).src<IPv4>("10.0.0.1", false).to<Port>(2, 80, false);
  translation.action = snat();
  EXPECT_THROW_WITH(translation.make(), CUnsupportedException, 7, "cannot accept layer2 NAT rule!");
  Parts direction;
  direction.src<Ether>(mac, false).action = snat();
  EXPECT_THROW_WITH(direction.make(), CUnsupportedException, 7, "SNAT rule direction is not out!");
  Parts layer;  // the other address is of no family
  layer.src<IPv4>("10.0.0.1", false).dst<Ether>(mac, false).with<ICMPType>(0, 8, false);
  EXPECT_THROW_WITH(layer.make(), CUnsupportedException, 53, "layer3 rule dst address is MAC");
  Parts family;
  family.src<IPv4>("10.0.0.1", false).dst<IPv6>("2001:db8::1", false).with<Strict>();
  EXPECT_THROW_WITH(family.make(), CUnsupportedException, 53,
                    "rule src and dst are different version of IP addresses");
  const auto specs = [](Parts parts) {
    return std::move(parts.with<Port>(0, 80, false).from<Port>(1, 1024, false));
  };
  EXPECT_THROW_WITH(specs(Parts(47)).with<ICMPType>(0, 8, false).with<Strict>().make(),
                    CUnsupportedException, 7, kICMPText);
  EXPECT_THROW_WITH(specs(tcp()).with<ICMPType>(0, 8, false).make(), CUnsupportedException, 7,
                    kICMPText);
  EXPECT_THROW_WITH(specs(Parts(47)).with<Strict>().make(), CUnsupportedException, 7, kPortText);
  EXPECT_THROW_WITH(specs(Parts(17)).with<Sloppy>().make(), CUnsupportedException, 7, kFlagsText);
  EXPECT_THROW_WITH(specs(tcp()).with<Sloppy>().make(), CUnsupportedException, 7, kBothText);
}

TEST(TarnFWRule, StatelessAndDSCPGoWithEveryProtocol) {
  EXPECT_NO_THROW(Parts().with<Stateless>().with<DSCP>(1).make());
  EXPECT_NO_THROW(Parts().layer2(0x806).with<Stateless>().make());
}

TEST(TarnFWRule, ValidateProtocolSpecOfABuiltRulePasses) {
  EXPECT_NO_THROW(tcp().with<Strict>().make().validateProtocolSpec());
}

// ---- setters

TEST(TarnFWRule, DirectionsAboveTwoAreRefused) {
  CTarnFWRule rule = tcp().make();
  EXPECT_THROW_WITH(rule.setDirection(static_cast<FWRuleDirection_t>(3)),
                    CInvalidRuleDirectionException, 42, "invalid rule action id: 3");
  EXPECT_EQ(rule.getDirection(), FW_DIRECTION_INOUT);
}

TEST(TarnFWRule, SetAFRefusesWhatTheAddressesAreNot) {
  const char* const text = "af conflicts with rule address";
  CTarnFWRule v4 = Parts().src<IPv4>("10.0.0.1", false).make();
  EXPECT_THROW_WITH(v4.setAF(FW_AF_INET6), CUnsupportedException, 57, text);
  v4.setAF(FW_AF_INET);
  EXPECT_EQ(v4.toString(), "rule 7 inout inet protocol any from ip 10.0.0.1 to any accept;");
  CTarnFWRule v6 = Parts().dst<IPv6>("2001:db8::1", false).make();
  EXPECT_THROW_WITH(v6.setAF(FW_AF_INET), CUnsupportedException, 57, text);
  v6.setAF(FW_AF_INET6);
  EXPECT_EQ(v6.toString(), "rule 7 inout inet6 protocol any from any to ip 2001:db8::1 accept;");
  v6.setAF(FW_AF_NONE);
  EXPECT_EQ(v6.toString(), "rule 7 inout protocol any from any to ip 2001:db8::1 accept;");
  EXPECT_THROW_WITH(v6.setAF(static_cast<FWRuleAF_t>(3)), CUnsupportedException, 57,
                    "unsupported address family 3");
}

TEST(TarnFWRule, SetAFOfAMACAddressIsRefusedButForNone) {
  CTarnFWRule rule = Parts().layer2(0x800).src<Ether>("02:00:00:00:00:01", false).make();
  const char* const text = "af conflicts with rule address";
  EXPECT_THROW_WITH(rule.setAF(FW_AF_INET), CUnsupportedException, 57, text);
  EXPECT_THROW_WITH(rule.setAF(FW_AF_INET6), CUnsupportedException, 57, text);
  EXPECT_THROW_WITH(rule.setAF(static_cast<FWRuleAF_t>(3)), CUnsupportedException, 57,
                    "unsupported address family 3");
  EXPECT_NO_THROW(rule.setAF(FW_AF_NONE));
}

// ---- text

TEST(TarnFWRule, TextShowsAPositionUnlessItIsMinusOne) {
  Parts parts;
  parts.position = 0;
  EXPECT_EQ(parts.make().toString(), "rule 7 at 0 inout protocol any from any to any accept;");
  Parts last;
  last.position = -2;
  EXPECT_EQ(last.make().toString(), "rule 7 at -2 inout protocol any from any to any accept;");
  EXPECT_EQ(Parts().make().toString(), "rule 7 inout protocol any from any to any accept;");
}

TEST(TarnFWRule, TextHasTheIdAsASignedNumber) {
  Parts parts;
  parts.id = 4294967295;
  EXPECT_EQ(parts.make().toString(), "rule -1 inout protocol any from any to any accept;");
}

TEST(TarnFWRule, TextOfEachDirection) {
  Parts in;
  in.direction = FW_DIRECTION_IN;
  EXPECT_EQ(in.make().toString(), "rule 7 in protocol any from any to any accept;");
  Parts out;
  out.direction = FW_DIRECTION_OUT;
  EXPECT_EQ(out.make().toString(), "rule 7 out protocol any from any to any accept;");
}

TEST(TarnFWRule, TextLeavesOutSpecsWithoutText) {
  Parts parts(17);
  parts.from<PortSet>(1, true);
  EXPECT_EQ(parts.make().toString(), "rule 7 inout protocol udp from any to any accept;");
}

TEST(TarnFWRule, AUDPRuleToPort69PrintsAsTftp) {
  EXPECT_EQ(Parts(17).to<Port>(2, 69, false).make().toString(),
            "rule 7 inout protocol udp from any to any port 69 accept as tftp;");
  EXPECT_EQ(Parts(6).to<Port>(2, 69, false).make().toString(),
            "rule 7 inout protocol tcp from any to any port 69 accept;");
  EXPECT_EQ(Parts(17).from<Port>(1, 69, false).make().toString(),
            "rule 7 inout protocol udp from any port 69 to any accept;");
  EXPECT_EQ(Parts(17).to<Port>(2, 690, false).make().toString(),
            "rule 7 inout protocol udp from any to any port 690 accept;");
  EXPECT_EQ(Parts(17).to<Port>(2, 69, true).make().toString(),
            "rule 7 inout protocol udp from any to any not port 69 accept;");
}

TEST(TarnFWRule, TextOfACopyModeNamesItTwice) {
  // No rule made by this library has the copy mode in memory.
  struct CopyRule : CTarnFWRule {
    using CTarnFWRule::CTarnFWRule;
    void copyMode() { profileMode_ |= kProfileCopy; }
  };
  CopyRule rule = Parts().make<CopyRule>();
  rule.copyMode();
  EXPECT_EQ(rule.toString(),
            "rule 7 inout protocol any from any to any with attribute ANY  with L7 copy  accept;");
}

TEST(TarnFWRule, LabelledFormOfAPlainRule) {
  EXPECT_EQ(Parts().make().toString2(),
            "Rule : 7\n"
            "Position : -1\n"
            "Direction : inout\n"
            "Protocol : any\n"
            "Conn_Spec :\n"
            "Source : any\n"
            "Destination : any\n"
            "Action : accept\n\n");
  Parts parts;
  parts.action = nullptr;
  parts.id = 4294967295;
  EXPECT_EQ(parts.make().toString2(),
            "Rule : 4294967295\n"
            "Position : -1\n"
            "Direction : inout\n"
            "Protocol : any\n"
            "Conn_Spec :\n"
            "Source : any\n"
            "Destination : any\n"
            "Action : accept\n");
}

TEST(TarnFWRule, LabelledFormOfAFullRule) {
  Parts parts = tcp();
  parts.position = 3;
  parts.direction = FW_DIRECTION_IN;
  parts.src<IPv4>("10.0.0.1", true)
      .dst<CTarnFWAddressIPv4CIDR>("10.0.0.0/8", true)
      .from<Port>(1, 1024, true)
      .to<PortSet>(2, "80,443")
      .with<Strict>()
      .with<TCPFlags>(0, 2, false)
      .act<CTarnFWRuleActionDrop>();
  parts.action->enableLogPacket();
  CTarnFWRule rule = parts.make();
  rule.setAF(FW_AF_INET);
  rule.setInternal();
  rule.setTag("unseen");
  EXPECT_EQ(rule.toString2(),
            "# internal # Rule : 7\n"
            "Position : 3\n"
            "Direction : in\n"
            "Af : inet\n"
            "Protocol : tcp\n"
            "Conn_Spec : with {strict, flag 0x0002}\n"
            "Source : ip 10.0.0.1\n"
            "Source_Excluded : Yes\n"
            "Source_Port : not port 1024\n"
            "Destination : ip 10.0.0.0/8\n"
            "Destination_Excluded : Yes\n"
            "Destination_Port : port {80, 443}\n"
            "Action : drop\n with log\n");
}

TEST(TarnFWRule, LabelledFormOfALayer2Rule) {
  CTarnFWRule rule = Parts().layer2(0x86dd, true).make();
  EXPECT_EQ(rule.toString2(),
            "Rule : 7\n"
            "Position : -1\n"
            "Direction : inout\n"
            "not Ethertype : 0x86dd\n"
            "Conn_Spec :\n"
            "Source : any\n"
            "Destination : any\n"
            "Action : accept\n\n");
  CTarnFWRule inet6 = Parts().make();
  inet6.setAF(FW_AF_INET6);
  EXPECT_NE(inet6.toString2().find("\nAf : inet6\n"), std::string::npos);
}

TEST(TarnFWRule, ARuleWithoutTheTextOfAnAddressHasNone) {
  Parts parts;
  parts.direction = FW_DIRECTION_OUT;
  parts.src<IPv6>("::1", false).act<CTarnFWRuleActionSNAT>(std::make_unique<IPv6>("::2", false));
  const CTarnFWRuleAction& action = *parts.action;
  const CTarnFWRule rule = parts.make();
  {
    const LibcShim::FailingAddressTexts failing;
    EXPECT_THROW_WITH(rule.toString(), CInvalidAddressException, 33, "invalid ip6 address");
    EXPECT_THROW_WITH(rule.toString2(), CInvalidAddressException, 33, "invalid ip6 address");
    EXPECT_THROW_WITH(action.toString(), CInvalidAddressException, 33, "invalid ip6 address");
  }
  EXPECT_EQ(rule.toString(), "rule 7 out protocol any from ip ::1 to any snat ip ::2;");
}

TEST(TarnFWRule, LabelledFormErasesTheLastNotWhereverItStands) {
  EXPECT_NE(Parts()
                .src<SetID>("notes", true)
                .make()
                .toString2()
                .find("Source : not addrset s\nSource_Excluded : Yes\n"),
            std::string::npos);
  // "any" has no "not" of its own, so that the one of the protocol goes.
  Parts parts;
  parts.layer3(6, true).dst<CTarnFWAddressAny>();
  parts.destination->setNegated(true);
  EXPECT_EQ(parts.make().toString2(),
            "Rule : 7\n"
            "Position : -1\n"
            "Direction : inout\n"
            "Protocol : tcp\n"
            "Conn_Spec :\n"
            "Source : any\n"
            "Destination : any\n"
            "Destination_Excluded : Yes\n"
            "Action : accept\n\n");
}
