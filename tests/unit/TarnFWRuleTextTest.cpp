// A rule as text, in the language and with labels.
#include <gtest/gtest.h>

#include "LibcShim.h"
#include "RuleOfParts.h"
#include "TarnFWAddressAny.h"
#include "TarnFWAddressIPv4CIDR.h"
#include "TarnFWRuleActionDrop.h"
#include "TarnFWRuleActionSNAT.h"

using namespace RuleOfParts;

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
