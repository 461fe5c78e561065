// Which parts go together in a rule, when it is made and when it is changed.
#include <gtest/gtest.h>

#include "RuleOfParts.h"
#include "TarnFWAddressIPv6CIDR.h"
#include "TarnFWRuleActionDNAT.h"
#include "TarnFWRuleActionJumpto.h"
#include "TarnFWRuleActionLB.h"
#include "TarnFWRuleActionSNAT.h"

using namespace RuleOfParts;

namespace {

const char* const kFlagsText =
    "cannot accept tcp flags/options while tcp protocol is not specified";
const char* const kPortText = "cannot accept tcp/udp port while tcp/udp protocol is not specified";
const char* const kICMPText = "cannot accept icmp type while icmp protocol is not specified";
const char* const kBothText =
    "cannot accept both connection-level and direction-level specification for port";

}  // namespace

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
