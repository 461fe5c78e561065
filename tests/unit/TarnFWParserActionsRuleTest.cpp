#include <gtest/gtest.h>
#include <netdb.h>

#include <cerrno>

#include "ParseText.h"
#include "TarnFWParserActionsRule.h"

using namespace TarnFirewall;

namespace {

/// A rule set of one rule, and places in the rule's record.
class RuleText : public ParseText {
 public:
  explicit RuleText(const std::string& rule)
      : ParseText("create ruleset r { rule " + rule + "; };") {}

  /// Body of the rule's own statement, which is the last command.
  std::vector<std::uint8_t> record() const {
    const auto all = body(count() - 1);
    return {all.begin() + 168, all.end()};
  }
  std::uint8_t byte(std::size_t offset) const { return record().at(offset); }
  std::uint32_t ruleWord(std::size_t offset) const { return word(168 + offset, count() - 1); }
  std::string ruleField(std::size_t offset) const { return field(168 + offset, count() - 1); }

  /// Text of the rule as `getrules` shows it.
  std::string ruleText() const {
    EXPECT_EQ(failure(), "");
    if (count() == 0) return "";
    const std::string all = text(count() - 1);
    const std::size_t start = all.find("rule ", all.find('{'));
    return all.substr(start, all.find('\n', start) - start);
  }
};

std::string ruleFailure(const std::string& rule) { return RuleText(rule).failure(); }

std::string ruleText(const std::string& rule) { return RuleText(rule).ruleText(); }

/// "1 inout protocol tcp WITH drop".
std::string tcp(const std::string& with) { return "1 inout protocol tcp " + with; }

/// A rule with this action.
std::string acting(const std::string& action) {
  return "1 out protocol tcp from any to any " + action;
}

/// What the printed rule of `acting` ends with.
std::string actionText(const std::string& action) {
  const std::string text = ruleText(acting(action));
  const std::string head = "rule 1 at 0 out protocol tcp from any to any ";
  EXPECT_EQ(text.substr(0, head.size()), head);
  return text.size() > head.size() ? text.substr(head.size()) : "";
}

/// The first two bytes of a port set's entries, for a block of ports at `offset`.
constexpr std::size_t kSourcePorts = 300;
constexpr std::size_t kDestinationPorts = 338;

}  // namespace

TEST(TarnFWParserActionsRule, TakesIdsOf32Bits) {
  EXPECT_EQ(RuleText("4294967295 in protocol any from any to any drop").ruleWord(0), 0xffffffffu);
  EXPECT_EQ(ruleFailure("4294967296 in protocol any from any to any drop"),
            "17|rule id value overflows");
  EXPECT_EQ(ruleFailure("-1 in protocol any from any to any drop"), "17|rule id value overflows");
}

TEST(TarnFWParserActionsRule, TakesPositionsOf32BitsAndZeroWithoutOne) {
  EXPECT_EQ(RuleText("1 at 7 in protocol any from any to any drop").ruleWord(4), 7u);
  EXPECT_EQ(RuleText("1 in protocol any from any to any drop").ruleWord(4), 0u);
  EXPECT_EQ(ruleFailure("1 at -1 in protocol any from any to any drop"),
            "17|rule position value overflows");
  EXPECT_EQ(ruleFailure("1 at 4294967296 in protocol any from any to any drop"),
            "17|rule position value overflows");
}

TEST(TarnFWParserActionsRule, ReportsTheIdBeforeThePosition) {
  EXPECT_EQ(ruleFailure("-1 at -1 in protocol any from any to any drop"),
            "17|rule id value overflows");
}

TEST(TarnFWParserActionsRule, TellsTheDirectionAndTheFamily) {
  EXPECT_EQ(RuleText("1 inout protocol any from any to any drop").byte(790) & 0x60, 0x00);
  EXPECT_EQ(RuleText("1 in protocol any from any to any drop").byte(790) & 0x60, 0x20);
  EXPECT_EQ(RuleText("1 out protocol any from any to any drop").byte(790) & 0x60, 0x40);
  EXPECT_EQ(ruleText("1 in inet protocol any from any to any drop"),
            "rule 1 at 0 in inet protocol any from any to any drop;");
  EXPECT_EQ(ruleText("1 in inet6 protocol any from any to any drop"),
            "rule 1 at 0 in inet6 protocol any from any to any drop;");
}

TEST(TarnFWParserActionsRule, ReadsProtocols) {
  ASSERT_NE(getprotobyname("tcp"), nullptr);
  EXPECT_EQ(ruleText("1 in protocol tcp from any to any drop"),
            "rule 1 at 0 in protocol tcp from any to any drop;");
  EXPECT_EQ(ruleText("1 in not protocol udp from any to any drop"),
            "rule 1 at 0 in not protocol udp from any to any drop;");
  EXPECT_EQ(ruleText("1 in protocol 6 from any to any drop"),
            "rule 1 at 0 in protocol tcp from any to any drop;");
  EXPECT_EQ(RuleText("1 in protocol 255 from any to any drop").byte(794), 255);
  EXPECT_EQ(ruleText("1 in not protocol 17 from any to any drop"),
            "rule 1 at 0 in not protocol udp from any to any drop;");
  EXPECT_EQ(ruleText("1 in ethertype any from any to any drop"),
            "rule 1 at 0 in ethertype any from any to any drop;");
  EXPECT_EQ(ruleText("1 in ethertype 65535 from any to any drop"),
            "rule 1 at 0 in ethertype 0xffff from any to any drop;");
  errno = 0;
  EXPECT_EQ(ruleText("1 in not ethertype 0x0800 from any to any drop"),
            "rule 1 at 0 in not ethertype 0x0800 from any to any drop;");
}

TEST(TarnFWParserActionsRule, RefusesProtocolsItDoesNotKnow) {
  EXPECT_EQ(ruleFailure("1 in protocol nonesuch from any to any drop"),
            "52|unknown protocol (nonesuch)");
  EXPECT_EQ(ruleFailure("1 in not protocol nonesuch from any to any drop"),
            "52|unknown protocol (nonesuch)");
  EXPECT_EQ(ruleFailure("1 in protocol 256 from any to any drop"),
            "17|ip protocol value overflows");
  EXPECT_EQ(ruleFailure("1 in not protocol -1 from any to any drop"),
            "17|ip protocol value overflows");
  EXPECT_EQ(ruleFailure("1 in ethertype 65536 from any to any drop"),
            "17|ether type value overflows");
  EXPECT_EQ(ruleFailure("1 in not ethertype -1 from any to any drop"),
            "17|ether type value overflows");
}

TEST(TarnFWParserActionsRule, ReadsEveryKindOfAddress) {
  for (const auto& [written, printed] :
       std::vector<std::pair<std::string, std::string>>{{"any", "any"},
                                                        {"ip 10.0.0.1", "ip 10.0.0.1"},
                                                        {"10.0.0.1", "ip 10.0.0.1"},
                                                        {"10.0.0.0/8", "ip 10.0.0.0/8"},
                                                        {"10.0.0.0/255.0.0.0", "ip 10.0.0.0/8"},
                                                        {"addrset web", "addrset web"},
                                                        {"web", "addrset web"},
                                                        {"not ip 10.0.0.1", "not ip 10.0.0.1"},
                                                        {"not 10.0.0.0/8", "not ip 10.0.0.0/8"},
                                                        {"not addrset web", "not addrset web"},
                                                        {"not web", "not addrset web"}}) {
    EXPECT_EQ(ruleText("1 in protocol any from " + written + " to any drop"),
              "rule 1 at 0 in protocol any from " + printed + " to any drop;");
    EXPECT_EQ(ruleText("1 in protocol any from any to " + written + " drop"),
              "rule 1 at 0 in protocol any from any to " + printed + " drop;");
  }
  for (const auto& [written, printed] : std::vector<std::pair<std::string, std::string>>{
           {"mac 00:11:22:33:44:55", "mac 00:11:22:33:44:55"},
           {"00:11:22:33:44:55", "mac 00:11:22:33:44:55"},
           {"not mac 00:11:22:33:44:55", "not mac 00:11:22:33:44:55"},
           {"not 00:11:22:33:44:55", "not mac 00:11:22:33:44:55"}}) {
    EXPECT_EQ(ruleText("1 in ethertype any from " + written + " to any drop"),
              "rule 1 at 0 in ethertype any from " + printed + " to any drop;");
  }
}

TEST(TarnFWParserActionsRule, ReplacesARangeByASetThatStandsAhead) {
  const RuleText parse("7 in protocol any from 10.0.0.1-5 to 10.1.0.0-1 drop");
  ASSERT_EQ(parse.failure(), "");
  ASSERT_EQ(parse.count(), 3u);
  EXPECT_EQ(parse.command(0).getCommand(), 13);
  EXPECT_EQ(parse.field(0, 0), "src7");
  // 10.0.0.1, 10.0.0.2/31, 10.0.0.4/31
  EXPECT_EQ(parse.word(46, 0), 3u);
  EXPECT_EQ(parse.body(0)[86], FW_ADDRESS_IPV4);
  EXPECT_EQ(parse.body(0)[86 + 144], FW_ADDRESS_IPV4_CIDR);
  EXPECT_EQ(parse.field(0, 1), "dst7");
  EXPECT_EQ(parse.word(46, 1), 1u);
  EXPECT_EQ(parse.command(2).getCommand(), 3);
  EXPECT_EQ(parse.ruleText(),
            "rule 7 at 0 in protocol any from addrset src7 to addrset dst7 drop;");
  EXPECT_EQ(selectorType(parse.command(0).currentPort()), FW_SELECTOR_NONE);
  EXPECT_TRUE(parse.log.has(6, "replaced ip range ip 10.0.0.1-10.0.0.5 to ipset src7\n"));
}

TEST(TarnFWParserActionsRule, ReplacesAnIPv6RangeToo) {
  const RuleText parse("7 in protocol any from any to 2001:db8::1-2001:db8::2 drop");
  ASSERT_EQ(parse.count(), 2u);
  EXPECT_EQ(parse.field(0, 0), "dst7");
  EXPECT_EQ(parse.body(0)[86], FW_ADDRESS_IPV6);
  EXPECT_TRUE(parse.log.has(6, "replaced ipv6 range ip 2001:db8::1-2001:db8::2 to ipset dst7\n"));
}

TEST(TarnFWParserActionsRule, KeepsTheNegationOfARangeOnItsSet) {
  const RuleText parse("7 in protocol any from not 10.0.0.1-5 to any drop");
  EXPECT_EQ(parse.ruleText(), "rule 7 at 0 in protocol any from not addrset src7 to any drop;");
  EXPECT_EQ(parse.field(0, 0), "src7");
}

TEST(TarnFWParserActionsRule, LeavesARangeThatNoBlocksCover) {
  const RuleText parse("7 in protocol any from 1::-2::1 to any drop");
  ASSERT_EQ(parse.count(), 1u);
  EXPECT_EQ(parse.ruleText(), "rule 7 at 0 in protocol any from ip 1::-2::1 to any drop;");
}

TEST(TarnFWParserActionsRule, NamesASetAfterTheIdAlone) {
  const ParseText parse(
      "create ruleset a { rule 7 in protocol any from 10.0.0.1-5 to any drop; };"
      "create ruleset b { rule 7 in protocol any from 10.0.0.1-6 to any drop; };");
  ASSERT_EQ(parse.count(), 4u);
  EXPECT_EQ(parse.field(0, 0), "src7");
  EXPECT_EQ(parse.field(0, 2), "src7");
}

TEST(TarnFWParserActionsRule, PrintsLargeIdsInSetNamesAsSigned) {
  const RuleText parse("4294967295 in protocol any from 10.0.0.1-5 to any drop");
  EXPECT_EQ(parse.field(0, 0), "src-1");
}

TEST(TarnFWParserActionsRule, ReadsPorts) {
  EXPECT_EQ(ruleText(tcp("from any port 80 to any port 443 drop")),
            "rule 1 at 0 inout protocol tcp from any port 80 to any port 443 drop;");
  EXPECT_EQ(ruleText(tcp("from any port 0-65535 to any port 80:90 drop")),
            "rule 1 at 0 inout protocol tcp from any port 0-65535 to any port 80-90 drop;");
  EXPECT_EQ(ruleText(tcp("from any port { 80 } to any port { 443, 80-90, 8000, } drop")),
            "rule 1 at 0 inout protocol tcp from any port {80} to any port {80-90, 443, 8000} "
            "drop;");
  EXPECT_EQ(ruleText(tcp("from any not port 80 to any not port 80-90 drop")),
            "rule 1 at 0 inout protocol tcp from any not port 80 to any not port 80-90 drop;");
  EXPECT_EQ(ruleText(tcp("from any not port { 1-2 } to any not port { 3, 4, } drop")),
            "rule 1 at 0 inout protocol tcp from any not port {1-2} to any not port {3, 4} drop;");
}

TEST(TarnFWParserActionsRule, GivesTheSpecListsTheirDirections) {
  const RuleText parse(tcp("flag SYN from any port 80 to any port 443 drop"));
  EXPECT_EQ(parse.byte(800) & 3, FW_SPEC_DIR_BOTH);
  EXPECT_EQ(parse.byte(kSourcePorts) & 3, FW_SPEC_DIR_SOURCE);
  EXPECT_EQ(parse.byte(kDestinationPorts) & 3, FW_SPEC_DIR_DESTINATION);
}

TEST(TarnFWParserActionsRule, RefusesPortsOfMoreThan16Bits) {
  for (const auto& [ports, number] :
       std::vector<std::pair<std::string, std::string>>{{"port 65536", "65536"},
                                                        {"port -1", "-1"},
                                                        {"not port 65536", "65536"},
                                                        {"port 65536-70000", "65536"},
                                                        {"port 1-65536", "65536"},
                                                        {"not port 1-65536", "65536"},
                                                        {"port { 1, 65536 }", "65536"},
                                                        {"port { 65536 }", "65536"},
                                                        {"port { 1-65536 }", "65536"},
                                                        {"port { 1, 2-65536 }", "65536"}}) {
    EXPECT_EQ(ruleFailure(tcp("from any " + ports + " to any drop")),
              "38|TCP/UDP port number (" + number + ") is invalid")
        << ports;
  }
}

TEST(TarnFWParserActionsRule, RefusesPortRangesThatDoNotRise) {
  for (const char* ports :
       {"port 80-80", "port 81-80", "not port 80-80", "port { 80-80 }", "port { 1, 80:80 }"}) {
    EXPECT_EQ(ruleFailure(tcp("from any " + std::string(ports) + " to any drop")),
              "16|invalid port range")
        << ports;
  }
}

TEST(TarnFWParserActionsRule, RefusesASixteenthEntryOfAPortSet) {
  std::string ports = "1";
  for (int i = 2; i <= 15; ++i) ports += ", " + std::to_string(i);
  EXPECT_EQ(ruleFailure(tcp("from any port { " + ports + " } to any drop")), "");
  EXPECT_EQ(ruleFailure(tcp("from any port { " + ports + ", 16 } to any drop")),
            "39|too many TCP/UDP port: 16");
}

TEST(TarnFWParserActionsRule, ReadsProtocolSpecs) {
  errno = 0;
  for (const auto& [written, printed] : std::vector<std::pair<std::string, std::string>>{
           {"stateless", "stateless"},
           {"strict", "strict"},
           {"sloppy", "sloppy"},
           {"dscp '3f'", "dscp 63"},
           {"dscp 10", "dscp 10"},
           {"dscp 266", "dscp 10"},
           {"flag SYN", "flag 0x0002"},
           {"not flag 0x1ff", "not flag 0x01ff"},
           {"flag { SYN, 0x10, }", "flag 0x0012"},
           {"option 'ab'", "tcpoptions 0x6162"},
           {"not option 'ab'", "not tcpoptions 0x6162"},
           {"with { strict, flag SYN }", "with {strict, flag 0x0002}"},
           {"with { strict, }", "strict"}}) {
    EXPECT_EQ(ruleText(tcp(written + " from any to any drop")),
              "rule 1 at 0 inout protocol tcp " + printed + " from any to any drop;");
  }
  for (const auto& [written, printed] :
       std::vector<std::pair<std::string, std::string>>{{"icmptype 8", "icmptype 8"},
                                                        {"not icmptype 8", "not icmptype 8"},
                                                        {"typecode 3:1", "typecode 3:1"},
                                                        {"typecode 3-1", "typecode 3:1"},
                                                        {"not typecode 3:1", "not typecode 3:1"}}) {
    EXPECT_EQ(ruleText("1 in protocol icmp " + written + " from any to any drop"),
              "rule 1 at 0 in protocol icmp " + printed + " from any to any drop;");
  }
}

TEST(TarnFWParserActionsRule, OrsTheFlagsOfASegment) {
  const std::vector<std::pair<const char*, int>> flags = {
      {"FIN", 0x1},  {"SYN", 0x2},  {"RST", 0x4},  {"PSH", 0x8}, {"ACK", 0x10},
      {"URG", 0x20}, {"ECE", 0x40}, {"CWR", 0x80}, {"NS", 0x100}};
  for (const auto& [name, bit] : flags) {
    const RuleText parse(tcp(std::string("flag ") + name + " from any to any drop"));
    EXPECT_EQ(parse.byte(802) | parse.byte(803) << 8, bit) << name;
  }
  const RuleText all(
      tcp("flag { FIN, SYN, RST, PSH, ACK, URG, ECE, CWR, NS } from any to any drop"));
  EXPECT_EQ(all.byte(802) | all.byte(803) << 8, 0x1ff);
}

TEST(TarnFWParserActionsRule, RefusesSpecsWithBadValues) {
  EXPECT_EQ(ruleFailure(tcp("dscp 'x' from any to any drop")), "60|bad dscp markings");
  EXPECT_EQ(ruleFailure(tcp("dscp '40' from any to any drop")), "60|bad dscp markings");
  EXPECT_EQ(ruleFailure(tcp("dscp '100' from any to any drop")), "60|bad dscp markings");
  EXPECT_EQ(ruleFailure(tcp("dscp '' from any to any drop")), "60|bad dscp markings");
  EXPECT_EQ(ruleFailure(tcp("dscp '-1' from any to any drop")), "60|bad dscp markings");
  EXPECT_EQ(ruleFailure(tcp("dscp 64 from any to any drop")), "60|bad dscp markings");
  EXPECT_EQ(ruleFailure(tcp("dscp -1 from any to any drop")), "60|bad dscp markings");
  EXPECT_EQ(ruleFailure(tcp("flag 512 from any to any drop")), "40|invalid TCP flags: 0x0200");
  EXPECT_EQ(ruleFailure(tcp("not flag { SYN, 512 } from any to any drop")),
            "40|invalid TCP flags: 0x0200");
  EXPECT_EQ(ruleFailure(tcp("option '" + std::string(41, 'o') + "' from any to any drop")),
            "41|TCP options is too long: 41");
  const auto icmp = [](const std::string& spec) {
    return ruleFailure("1 in protocol icmp " + spec + " from any to any drop");
  };
  EXPECT_EQ(icmp("icmptype 256"), "17|icmp type overflows");
  EXPECT_EQ(icmp("not icmptype -1"), "17|icmp type overflows");
  EXPECT_EQ(icmp("typecode 256:0"), "17|icmp type overflows");
  EXPECT_EQ(icmp("not typecode 0:256"), "17|icmp code overflows");
  EXPECT_EQ(icmp("typecode 256:256"), "17|icmp type overflows");
}

TEST(TarnFWParserActionsRule, RefusesTheSameSpecTwice) {
  EXPECT_EQ(ruleFailure(tcp("with { stateless, stateless } from any to any drop")),
            "43|duplicate definition of protocol spec of no state");
}

TEST(TarnFWParserActionsRule, ReadsPlainActions) {
  for (const auto& [written, printed] :
       std::vector<std::pair<std::string, std::string>>{{"drop", "drop"},
                                                        {"pass", "accept"},
                                                        {"accept", "accept"},
                                                        {"clear", "clear"},
                                                        {"reject", "reject"},
                                                        {"deny", "reject"},
                                                        {"punt", "punt"},
                                                        {"copy", "copy"},
                                                        {"divert", "divert"},
                                                        {"jumpto j", "jumpto j"}}) {
    EXPECT_EQ(actionText(written), printed + ";");
  }
  EXPECT_EQ(actionText("macrewrite 00:1a:02:03:04:05"), "macrewrite 0:1a:2:3:4:5;");
}

TEST(TarnFWParserActionsRule, ReadsKeyPolicies) {
  const std::string uuid = "00010203-0405-0607-0809-0a0b0c0d0e0f";
  EXPECT_EQ(actionText("encrypt keypolicy " + uuid), "encrypt keypolicy " + uuid + ";");
  EXPECT_EQ(actionText("pbr keypolicy '" + uuid + "'"), "pbr keypolicy " + uuid + ";");
  EXPECT_EQ(actionText("pbr keypolicy '" + uuid + "extra'"), "pbr keypolicy " + uuid + ";");
  EXPECT_EQ(ruleFailure(acting("encrypt keypolicy p")), "3|bad uuid (p)");
  EXPECT_EQ(ruleFailure(acting("pbr keypolicy p")), "3|bad uuid (p)");
}

TEST(TarnFWParserActionsRule, ReadsNat) {
  for (const auto& [written, printed] : std::vector<std::pair<std::string, std::string>>{
           {"snat addrset p", "snat addrset p"},
           {"snat ip 10.0.0.1", "snat ip 10.0.0.1"},
           {"dnat addrset p", "dnat addrset p"},
           {"dnat addrset p port 80", "dnat addrset p port 80"},
           {"dnat addrset p port 80-90", "dnat addrset p port 80-90"},
           {"dnat addrset p poolopt random", "dnat addrset p poolopt random"},
           {"dnat addrset p poolopt round-robin 60", "dnat addrset p poolopt round-robin 60"},
           {"dnat addrset p port 80-90 poolopt tcp-conn-balance",
            "dnat addrset p port 80-90 poolopt tcp-conn-balance"},
           {"dnat addrset p port 80-80 poolopt random 65537",
            "dnat addrset p port 80-80 poolopt random 1"},
           {"dnat ip 10.0.0.1", "dnat ip 10.0.0.1"},
           {"dnat ip 10.0.0.1 port 80", "dnat ip 10.0.0.1 port 80"},
           {"dnat ip 10.0.0.0/8 port 80-90", "dnat ip 10.0.0.0/8 port 80-90"}}) {
    EXPECT_EQ(actionText(written), printed + ";");
  }
}

TEST(TarnFWParserActionsRule, JudgesThePortsOfNat) {
  EXPECT_EQ(ruleFailure(acting("dnat addrset p port 65536")),
            "38|TCP/UDP port number (65536) is invalid");
  EXPECT_EQ(ruleFailure(acting("dnat ip 10.0.0.1 port 65536")),
            "38|TCP/UDP port number (65536) is invalid");
  EXPECT_EQ(ruleFailure(acting("dnat addrset p port 80-80")), "16|invalid port range");
  EXPECT_EQ(ruleFailure(acting("dnat ip 10.0.0.1 port 80-80")), "16|invalid port range");
  EXPECT_EQ(ruleFailure(acting("dnat addrset p port 1-65536 poolopt random")),
            "38|TCP/UDP port number (65536) is invalid");
  EXPECT_EQ(ruleFailure(acting("dnat addrset p port 81-80 poolopt random")),
            "7|reversed port range");
}

TEST(TarnFWParserActionsRule, ReplacesARangeOfANatTargetByASet) {
  const RuleText parse("9 in protocol tcp from 10.1.0.1-2 to any dnat ip 10.0.0.1-5 port 80");
  ASSERT_EQ(parse.failure(), "");
  ASSERT_EQ(parse.count(), 3u);
  EXPECT_EQ(parse.field(0, 0), "src9");
  EXPECT_EQ(parse.field(0, 1), "target9");
  EXPECT_EQ(parse.ruleText(),
            "rule 9 at 0 in protocol tcp from addrset src9 to any dnat addrset target9 port 80;");
  const RuleText all("9 in protocol tcp from 10.1.0.1-2 to 10.2.0.1-2 dnat ip 10.0.0.1-5");
  ASSERT_EQ(all.count(), 4u);
  EXPECT_EQ(all.field(0, 0), "src9");
  EXPECT_EQ(all.field(0, 1), "dst9");
  EXPECT_EQ(all.field(0, 2), "target9");
  const RuleText snat("9 out protocol tcp from any to any snat ip 10.0.0.1-5");
  ASSERT_EQ(snat.count(), 2u);
  EXPECT_EQ(snat.field(0, 0), "target9");
}

TEST(TarnFWParserActionsRule, LosesTheStatusOfAFailureInsideARule) {
  EXPECT_EQ(ruleFailure("9 in protocol tcp from any to any dnat ip 1::-2::1"),
            "16|failed to replace NAT rule target ip range");
  EXPECT_EQ(ruleFailure("1 in protocol any from 00:11:22:33:44:55 to any drop"),
            "16|layer3 rule src address is MAC");
  EXPECT_EQ(ruleFailure("1 in inet protocol any from ::1 to any drop"),
            "16|af conflicts with rule address");
  EXPECT_EQ(ruleFailure("1 in protocol tcp from any to any snat addrset p"),
            "16|SNAT rule direction is not out!");
}

TEST(TarnFWParserActionsRule, ReadsLoadBalancing) {
  for (const auto& [written, printed] : std::vector<std::pair<std::string, std::string>>{
           {"lb lbtype l4", "lb  lbtype L4"},
           {"lb lbtype l7", "lb  lbtype L7"},
           {"lb lbtype l4 lbidletimeout 5", "lb  lbtype L4 lbidletimeout 5"},
           {"lb lbtype l4 lbclosetimeout 6", "lb  lbtype L4 lbclosetimeout 6"},
           {"lb lbtype l4 lbidletimeout 5 lbclosetimeout 6",
            "lb  lbtype L4 lbidletimeout 5 lbclosetimeout 6"},
           {"lb lbtype l4 lbidletimeout 5 lboptions o",
            "lb  lbtype L4 lbidletimeout 5 lboptions o"},
           {"lb lbtype l4 lbclosetimeout 6 lboptions o",
            "lb  lbtype L4 lbclosetimeout 6 lboptions o"},
           {"lb lbtype l4 lbidletimeout 5 lbclosetimeout 6 lboptions o",
            "lb  lbtype L4 lbidletimeout 5 lbclosetimeout 6 lboptions o"},
           {"lb lbtype l4 lboptions o", "lb  lbtype L4 lboptions o"},
           {"lb lbtype l4 lbidletimeout 65537", "lb  lbtype L4 lbidletimeout 1"},
           {"lb lbtype l4 lbclosetimeout 65538", "lb  lbtype L4 lbclosetimeout 2"}}) {
    EXPECT_EQ(actionText(written), printed + ";");
  }
  EXPECT_EQ(ruleFailure(acting("lb lbtype l4 lboptions " + std::string(128, 'o'))),
            "7|Invalid LB Options");
}

TEST(TarnFWParserActionsRule, SetsTheFlagsOfAnAction) {
  for (const auto& [written, bits] : std::vector<std::pair<std::string, int>>{
           {"", 0},
           {"with log", kActionLog},
           {"with copy", kActionCopy},
           {"with noflow", kActionNoFlow},
           {"with rtt", kActionRtt},
           {"with lbrule", kActionLBRule},
           {"with { log, copy, noflow, rtt, lbrule, }",
            kActionLog | kActionCopy | kActionNoFlow | kActionRtt | kActionLBRule},
           {"with { lbrule, rtt, noflow, copy, log }",
            kActionLog | kActionCopy | kActionNoFlow | kActionRtt | kActionLBRule}}) {
    const RuleText parse(acting("accept " + written));
    EXPECT_EQ(parse.byte(460 + 291) | parse.byte(460 + 292) << 8, bits) << written;
  }
}

TEST(TarnFWParserActionsRule, NamesTheApplicationOfAnAction) {
  int application = 1;
  for (const char* name : {"ftp", "oracle", "sunrpc", "dcerpc"}) {
    const RuleText parse(acting(std::string("accept as ") + name));
    EXPECT_EQ(parse.byte(460 + 291), kActionDynamic) << name;
    EXPECT_EQ((parse.byte(460 + 288) | parse.byte(460 + 289) << 8) >> 4, application) << name;
    ++application;
  }
  const RuleText both(acting("accept with { log, rtt } as FTP"));
  EXPECT_EQ(both.byte(460 + 291), kActionDynamic | kActionLog | kActionRtt);
}

TEST(TarnFWParserActionsRule, WarnsOnceAboutAFlagThatIsGivenTwice) {
  for (const char* flag : {"log", "copy", "noflow", "rtt", "lbrule"}) {
    const RuleText parse(acting(std::string("accept with { ") + flag + ", " + flag + " }"));
    EXPECT_EQ(parse.failure(), "");
    EXPECT_TRUE(parse.log.has(4, std::string("duplicate rule action flag: ") + flag + "\n"));
    EXPECT_EQ(parse.log.lines().size(), 1u);
  }
}

TEST(TarnFWParserActionsRule, CutsATagAt31Characters) {
  EXPECT_EQ(RuleText(acting("drop tag '" + std::string(31, 't') + "'")).ruleField(852),
            std::string(31, 't'));
  const RuleText parse(acting("drop tag '" + std::string(40, 't') + "'"));
  EXPECT_EQ(parse.ruleField(852), std::string(31, 't'));
  EXPECT_TRUE(parse.log.lines().empty());
}

TEST(TarnFWParserActionsRule, NamesTheProfilesOfARule) {
  const RuleText parse("1 in protocol any from any to any extsrcprofile e attrprofile a drop");
  EXPECT_EQ(parse.ruleField(380), "e");
  EXPECT_EQ(parse.ruleField(422), "a");
  EXPECT_EQ(parse.ruleWord(884), 0x4u | 0x8u);
  EXPECT_EQ(ruleFailure("1 in protocol any from any to any extsrcprofile " + std::string(38, 'e') +
                        " drop")
                .substr(0, 3),
            "69|");
}

TEST(TarnFWParserActionsRule, RefusesNamesThatDoNotFitTheirRecords) {
  const std::string name(38, 'n');
  EXPECT_EQ(ruleFailure("1 in protocol any from " + name + " to any drop"),
            "32|id is too long: " + name);
  EXPECT_EQ(ruleFailure("1 in protocol any from not addrset " + name + " to any drop"),
            "32|id is too long: " + name);
  EXPECT_EQ(ruleFailure(acting("snat addrset " + name)), "32|id is too long: " + name);
  const std::string target(64, 't');
  EXPECT_EQ(ruleFailure(acting("jumpto " + target)), "32|id is too long: " + target);
}

TEST(TarnFWParserActionsRule, RefusesAddressesThatScanButMeanNothing) {
  EXPECT_EQ(ruleFailure("1 in protocol any from 999.1.1.1 to any drop"), "33|999.1.1.1");
  EXPECT_EQ(ruleFailure("1 in protocol any from 1.2.3.4/33 to any drop"), "33|1.2.3.4/33");
}

TEST(TarnFWParserActionsRule, LeavesNoSetAfterWhenTheRuleFails) {
  const RuleText parse("7 in protocol any from 10.0.0.1-5 to 00:11:22:33:44:55 drop");
  EXPECT_EQ(parse.failure(), "16|layer3 rule dst address is MAC");
  EXPECT_EQ(parse.list, nullptr);
}
