#include <gtest/gtest.h>

#include "AddressBlocks.h"
#include "PolicyText.h"
#include "TarnFWWire.h"

namespace {

using Lines = std::vector<std::string>;

constexpr char kSets[] =
    "create addrset \"net\" { 10.0.0.0/9, 10.128.0.0/9 };\n"
    "create addrset \"some\" { 10.1.0.1, 10.200.0.0/16 };\n"
    "create addrset \"mixed\" { 10.1.0.1, 2001:db8::1 };\n"
    "create addrset \"macs\" { 00:11:22:33:44:55 };\n"
    "create addrset \"all\" { 10.0.0.0/8, 2001:db8::/32 };\n"
    "create addrset \"empty\" { };\n";

/// Whether the second rule is never reached after the first; each begins after its id.
bool shadows(const std::string& first, const std::string& second) {
  return foundOf("shadowed-rule", std::string(kSets) + "create ruleset \"r\" {\nrule 1 " + first +
                                      ";\nrule 2 " + second + ";\n};")
             .size() == 1;
}

bool shadowsAddress(const std::string& first, const std::string& second) {
  const auto rule = [](const std::string& address) {
    return "in protocol tcp from " + address + " to any accept";
  };
  return shadows(rule(first), rule(second));
}

bool shadowsPorts(const std::string& first, const std::string& second) {
  const auto rule = [](const std::string& ports) {
    return "in protocol tcp from any to any " + ports + " accept";
  };
  const auto source = [](const std::string& ports) {
    return "in protocol tcp from any " + ports + " to any accept";
  };
  const bool result = shadows(rule(first), rule(second));
  EXPECT_EQ(shadows(source(first), source(second)), result) << first << " / " << second;
  return result;
}

TEST(PolicyShadow, AddressesThatAreEqualOrWider) {
  EXPECT_TRUE(shadowsAddress("10.0.0.1", "10.0.0.1"));
  EXPECT_TRUE(shadowsAddress("any", "10.0.0.1"));
  EXPECT_TRUE(shadowsAddress("10.0.0.0/8", "10.1.2.3"));
  EXPECT_TRUE(shadowsAddress("10.0.0.0/8", "10.1.0.0/255.255.0.0"));
  EXPECT_TRUE(shadowsAddress("10.0.0.1", "ip 10.0.0.1/32"));
  EXPECT_TRUE(shadowsAddress("2001:db8::/32", "2001:db8:1::/48"));
  EXPECT_TRUE(shadowsAddress("10.0.0.0-10.0.0.255", "10.0.0.7"));
  EXPECT_TRUE(shadowsAddress("10.0.0.0/8", "10.0.0.3-10.9.0.7"));
  EXPECT_TRUE(shadowsAddress("not 10.0.0.1", "not 10.0.0.1"));
  EXPECT_TRUE(shadowsAddress("any", "not 10.0.0.1"));
  EXPECT_FALSE(shadowsAddress("10.0.0.1", "any"));
  EXPECT_FALSE(shadowsAddress("10.0.0.1", "10.0.0.2"));
  EXPECT_FALSE(shadowsAddress("10.1.0.0/16", "10.0.0.0/8"));
  EXPECT_FALSE(shadowsAddress("10.0.0.0/8", "11.0.0.1"));
  EXPECT_FALSE(shadowsAddress("10.0.0.0/8", "2001:db8::1"));
  EXPECT_FALSE(shadowsAddress("10.0.0.0-10.0.0.5", "10.0.0.0-10.0.0.6"));
  EXPECT_FALSE(shadowsAddress("not 10.0.0.1", "10.0.0.1"));
  EXPECT_FALSE(shadowsAddress("10.0.0.1", "not 10.0.0.1"));
}

TEST(PolicyShadow, SetsByWhatTheyHold) {
  EXPECT_TRUE(shadowsAddress("\"net\"", "\"net\""));
  EXPECT_TRUE(shadowsAddress("\"net\"", "10.255.0.1"));
  EXPECT_TRUE(shadowsAddress("\"net\"", "10.0.0.0/8"));  // its two halves together
  EXPECT_TRUE(shadowsAddress("\"net\"", "\"some\""));
  EXPECT_TRUE(shadowsAddress("10.0.0.0/8", "\"some\""));
  EXPECT_TRUE(shadowsAddress("any", "\"some\""));
  EXPECT_TRUE(shadowsAddress("\"all\"", "\"mixed\""));
  EXPECT_TRUE(shadowsAddress("\"unknown\"", "\"unknown\""));
  EXPECT_FALSE(shadowsAddress("\"some\"", "\"net\""));
  EXPECT_FALSE(shadowsAddress("10.0.0.0/8", "\"mixed\""));
  EXPECT_FALSE(shadowsAddress("10.1.0.0/16", "\"some\""));
  EXPECT_FALSE(shadowsAddress("\"unknown\"", "10.0.0.1"));
  EXPECT_FALSE(shadowsAddress("\"net\"", "\"unknown\""));
  EXPECT_FALSE(shadowsAddress("\"net\"", "\"empty\""));
  EXPECT_FALSE(shadowsAddress("\"net\"", "\"macs\""));
  EXPECT_FALSE(shadowsAddress("not \"net\"", "\"some\""));
}

TEST(PolicyShadow, PortsOfBothSides) {
  EXPECT_TRUE(shadowsPorts("", "port 80"));
  EXPECT_TRUE(shadowsPorts("port 80", "port 80"));
  EXPECT_TRUE(shadowsPorts("port 80-90", "port 85"));
  EXPECT_TRUE(shadowsPorts("port 80-90", "port { 80, 85-90 }"));
  EXPECT_TRUE(shadowsPorts("port { 80, 443 }", "port 443"));
  EXPECT_TRUE(shadowsPorts("port { 80-84, 85-90 }", "port 81-89"));
  EXPECT_TRUE(shadowsPorts("port { 80, 443, 8000-8080 }", "port { 443, 8001 }"));
  EXPECT_TRUE(shadowsPorts("not port 80", "port 443"));
  EXPECT_TRUE(shadowsPorts("not port 80", "not port { 79-81 }"));
  EXPECT_TRUE(shadowsPorts("not port 0-65534", "port 65535"));
  EXPECT_FALSE(shadowsPorts("not port 0-65534", "port 65534"));
  EXPECT_TRUE(shadowsPorts("port 0-65535", "port 7"));
  EXPECT_FALSE(shadowsPorts("port 80", ""));
  EXPECT_FALSE(shadowsPorts("port 80", "port 81"));
  EXPECT_FALSE(shadowsPorts("port 80-90", "port 85-91"));
  EXPECT_FALSE(shadowsPorts("port { 80, 443 }", "port 80-443"));
  EXPECT_FALSE(shadowsPorts("port { 80, 443 }", "port { 80, 444 }"));
  EXPECT_FALSE(shadowsPorts("not port 80", "port 80"));
  EXPECT_FALSE(shadowsPorts("not port 80", "not port 81"));
}

TEST(PolicyShadow, OfSeveralWiderRulesTheEarliestIsNamed) {
  const auto rule = [](int id, const std::string& address, const std::string& port) {
    return "rule " + std::to_string(id) + " in protocol tcp from " + address + " to any " + port +
           " accept;\n";
  };
  for (const bool swapped : {false, true}) {
    const std::string one = rule(1, swapped ? "10.0.0.0/8" : "10.0.0.1", swapped ? "port 80" : "");
    const std::string two = rule(2, swapped ? "10.0.0.1" : "10.0.0.0/8", swapped ? "" : "port 80");
    EXPECT_EQ(foundOf("shadowed-rule", "create ruleset \"r\" {\n" + one + two +
                                           rule(3, "10.0.0.1", "port 80") + "};"),
              Lines{"4:1 shadowed-rule: rule 3 is never reached: rule 1 before it matches all that "
                    "it matches"});
  }
}

TEST(PolicyShadow, ASetMayHoldABlockAndAPartOfIt) {
  EXPECT_EQ(foundOf("shadowed-rule",
                    "create addrset \"both\" { 10.0.0.0/8, 10.1.0.0/16, 10.128.0.0/9 };\n"
                    "create ruleset \"r\" {\n"
                    "rule 1 in protocol tcp from \"both\" to any accept;\n"
                    "rule 2 in protocol tcp from 10.64.0.1 to any accept;\n};")
                .size(),
            1u);
}

TEST(PolicyShadow, TheOtherFields) {
  const std::string rest = " from any to any accept";
  EXPECT_TRUE(shadows("inout protocol tcp" + rest, "in protocol tcp" + rest));
  EXPECT_FALSE(shadows("in protocol tcp" + rest, "inout protocol tcp" + rest));
  EXPECT_FALSE(shadows("in protocol tcp" + rest, "out protocol tcp" + rest));
  EXPECT_TRUE(shadows("in protocol any" + rest, "in protocol tcp" + rest));
  EXPECT_TRUE(shadows("in not protocol udp" + rest, "in protocol tcp" + rest));
  EXPECT_TRUE(shadows("in not protocol udp" + rest, "in not protocol udp" + rest));
  EXPECT_FALSE(shadows("in not protocol udp" + rest, "in protocol udp" + rest));
  EXPECT_FALSE(shadows("in not protocol udp" + rest, "in protocol any" + rest));
  EXPECT_FALSE(shadows("in protocol tcp" + rest, "in not protocol udp" + rest));
  EXPECT_FALSE(shadows("in protocol tcp" + rest, "in protocol any" + rest));
  EXPECT_FALSE(shadows("in ethertype any" + rest, "in protocol any" + rest));
  EXPECT_TRUE(shadows("in ethertype any" + rest, "in ethertype 2048" + rest));
  EXPECT_TRUE(shadows("in protocol tcp" + rest, "in inet protocol tcp" + rest));
  EXPECT_FALSE(shadows("in inet protocol tcp" + rest, "in protocol tcp" + rest));
  EXPECT_FALSE(shadows("in inet protocol tcp" + rest, "in inet6 protocol tcp" + rest));
  EXPECT_TRUE(shadows("in protocol tcp" + rest, "in protocol tcp flag SYN" + rest));
  EXPECT_TRUE(shadows("in protocol tcp flag SYN" + rest, "in protocol tcp flag SYN" + rest));
  EXPECT_FALSE(shadows("in protocol tcp flag SYN" + rest, "in protocol tcp" + rest));
  EXPECT_FALSE(shadows("in protocol icmp icmptype 8" + rest, "in protocol icmp icmptype 0" + rest));
  EXPECT_FALSE(shadows("in protocol tcp dscp 10" + rest, "in protocol tcp" + rest));
  EXPECT_TRUE(shadows("in protocol tcp strict" + rest, "in protocol tcp" + rest));
  const std::string plain = "in protocol tcp from any to any";
  EXPECT_TRUE(shadows(plain + " accept", plain + " attrprofile \"p\" accept"));
  EXPECT_FALSE(shadows(plain + " attrprofile \"p\" accept", plain + " accept"));
  EXPECT_FALSE(shadows(plain + " extsrcprofile \"p\" accept", plain + " extsrcprofile \"q\" drop"));
}

TEST(PolicyShadow, OnlyActionsThatEndCount) {
  const std::string plain = "in protocol tcp from any to any ";
  for (const char* action : {"accept", "drop", "reject"}) {
    EXPECT_TRUE(shadows(plain + action, plain + "jumpto \"r2\"")) << action;
  }
  for (const char* action : {"copy", "jumpto \"r2\"", "punt", "divert", "clear"}) {
    EXPECT_FALSE(shadows(plain + action, plain + "accept")) << action;
  }
  const std::string out = "out protocol tcp from any to any ";
  EXPECT_FALSE(shadows(out + "accept", out + "snat ip 192.0.2.1"));
  EXPECT_TRUE(shadows(out + "snat ip 192.0.2.2", out + "snat ip 192.0.2.1"));
  EXPECT_FALSE(shadows(plain + "dnat ip 192.0.2.2", plain + "accept"));
}

TEST(PolicyShadow, PositionsDecideTheOrderAndTheEarliestRuleIsNamed) {
  EXPECT_EQ(
      foundOf("shadowed-rule",
              "create ruleset \"r\" {\n"
              "rule 1 at 9 in protocol tcp from 10.0.0.1 to any accept;\n"
              "rule 2 at 3 in protocol tcp from 10.0.0.0/8 to any accept;\n"
              "rule 3 at 2 in protocol tcp from 10.0.0.0/16 to any drop;\n"
              "};"),
      (Lines{"2:1 shadowed-rule: rule 1 is never reached: rule 3 before it matches all that it "
             "matches"}));
}

TEST(PolicyShadow, ManyRangesOfPortsForTheSameAddresses) {
  std::string text = "create ruleset \"r\" {\n";
  for (int i = 1; i <= 100; ++i) {
    text += "rule " + std::to_string(i) + " in protocol tcp from any to any port " +
            std::to_string(((i * 37) % 101) * 10) + "-" +
            std::to_string(((i * 37) % 101) * 10 + 9) + " accept;\n";
  }
  EXPECT_EQ(foundOf("shadowed-rule", text + "};").size(), 0u);
  text +=
      "rule 101 in protocol tcp from any to any port 501-508 accept;\n"
      "rule 102 in protocol tcp from any to any port 505-512 accept;\n"
      "rule 103 in protocol tcp from any to any port 20-900 accept;\n"
      "rule 104 in protocol tcp from any to any port 500-515 accept;\n";
  EXPECT_EQ(foundOf("shadowed-rule", text + "};").size(), 2u);
}

TEST(PolicyShadow, TwoFiltersAndTwoRuleSetsDoNotMeet) {
  const std::string rule = "{ rule 1 in protocol tcp from any to any accept; };\n";
  EXPECT_EQ(found("create ruleset \"a\" " + rule + "create ruleset \"b\" " + rule), Lines{});
}

TEST(PolicyShadow, SetsByWhatTheyHoldAtTheEnd) {
  const std::string rules =
      "create ruleset \"r\" { rule 1 in protocol tcp from any to \"s\" accept;\n"
      "rule 2 in protocol tcp from any to 10.1.1.1 drop; };\n";
  const std::string set = "create addrset \"s\" { 10.0.0.0/8 };\n";
  const auto isFound = [&](const std::string& before, const std::string& after) {
    return foundOf("shadowed-rule", before + rules + after).size() == 1;
  };
  EXPECT_TRUE(isFound(set, ""));
  EXPECT_TRUE(isFound("", set));
  EXPECT_TRUE(isFound("destroy all addrset; destroy addrset \"s\";" + set, ""));
  EXPECT_TRUE(isFound(set, "destroy addrset \"s\";" + set));
  EXPECT_TRUE(isFound(set, "destroy all addrset of filter \"f2\";"));
  EXPECT_TRUE(isFound(set, "destroy addrset \"t\";"));
  EXPECT_FALSE(isFound(set, "destroy addrset \"s\";"));
  EXPECT_FALSE(isFound(set, "delete all from addrset \"s\";"));
  EXPECT_FALSE(isFound(set, "destroy all addrset;"));
  EXPECT_FALSE(isFound(set, "create addrset \"s\" { 10.2.0.0/16 };"));
  EXPECT_FALSE(isFound(set, "create attrprofile \"s\" with { [ APP_ID : APP_HTTP ] };"));
}

TEST(PolicyShadow, AllAddressesOfAFamily) {
  const auto rule = [](const std::string& from, const std::string& to) {
    return "in protocol tcp from " + from + " to " + to + " accept";
  };
  for (const char* whole : {"0.0.0.0/0", "10.0.0.0/0", "0.0.0.0/0.0.0.0"}) {
    EXPECT_TRUE(shadows(rule(whole, "10.0.0.5"), rule("any", "10.0.0.5"))) << whole;
    EXPECT_TRUE(shadows(rule(whole, "any"), rule("any", "10.0.0.5"))) << whole;
    EXPECT_TRUE(shadows(rule("any", whole), rule("10.0.0.5", "not 10.0.0.6"))) << whole;
    EXPECT_TRUE(shadows(rule(whole, "any"), rule(whole, "\"some\""))) << whole;
    EXPECT_FALSE(shadows(rule(whole, "any"), rule("any", "any"))) << whole;
    EXPECT_FALSE(shadows(rule(whole, "any"), rule("any", "2001:db8::1"))) << whole;
    EXPECT_FALSE(shadows(rule(std::string("not ") + whole, "any"), rule("10.0.0.5", "any")))
        << whole;
  }
  EXPECT_TRUE(shadows(rule("::/0", "any"), rule("any", "2001:db8::1")));
  EXPECT_FALSE(shadows(rule("::/0", "any"), rule("any", "10.0.0.5")));
  EXPECT_FALSE(shadows("in inet protocol tcp from any to any accept",
                       "in inet6 protocol tcp from ::/0 to any accept"));
}

TEST(PolicyShadow, ASetMayHoldAnyAddress) {
  const std::string set = "create addrset \"every\" any;\n";
  const auto isFound = [&](const std::string& first, const std::string& second) {
    return foundOf("shadowed-rule", set + kSets + "create ruleset \"r\" {\nrule 1 " + first +
                                        ";\nrule 2 " + second + ";\n};")
               .size() == 1;
  };
  const std::string before = "in protocol tcp from ", after = " to any accept";
  for (const char* narrow : {"any", "10.0.0.1", "\"some\"", "\"empty\"", "not 10.0.0.1", "\"x\""}) {
    EXPECT_TRUE(isFound(before + "\"every\"" + after, before + narrow + after)) << narrow;
  }
  EXPECT_FALSE(isFound(before + "not \"every\"" + after, before + "10.0.0.1" + after));
  EXPECT_FALSE(isFound(before + "10.0.0.0/8" + after, before + "\"every\"" + after));
  // What it says of Ethernet addresses is not known.
  const std::string layer2 = "in ethertype any from ";
  EXPECT_FALSE(isFound(layer2 + "\"every\"" + after, layer2 + "00:11:22:33:44:55" + after));
  EXPECT_TRUE(isFound(layer2 + "\"every\"" + after, layer2 + "\"every\"" + after));
  EXPECT_FALSE(isFound(layer2 + "\"net\"" + after, layer2 + "\"some\"" + after));
}

/// Blocks as text "bits/length" in hexadecimal.
std::string textOf(const std::vector<AddressBlock>& blocks) {
  std::string text;
  for (const AddressBlock& block : blocks) {
    char one[64];
    std::snprintf(one, sizeof one, "%08x/%u ", static_cast<unsigned int>(block.bits), block.length);
    text += one;
  }
  return text;
}

TEST(AddressBlocks, MergeToTheFewest) {
  EXPECT_EQ(textOf(merged({{true, 9, 0x0a800000}, {true, 9, 0x0a000000}})), "0a000000/8 ");
  EXPECT_EQ(textOf(merged({{true, 32, 5}, {true, 32, 4}, {true, 31, 6}, {true, 32, 9}})),
            "00000004/30 00000009/32 ");
  EXPECT_EQ(textOf(merged({{true, 8, 0x0a000000}, {true, 32, 0x0a000001}})), "0a000000/8 ");
  EXPECT_EQ(textOf(merged({{true, 1, 0}, {true, 1, 0x80000000}})), "00000000/0 ");
  EXPECT_EQ(textOf(merged({})), "");
}

TEST(AddressBlocks, ARangeIsCoveredByBlocks) {
  TarnFirewall::FWAddress_ record{};
  record.type = TarnFirewall::FW_ADDRESS_IPV4_RANGE;
  const std::uint8_t value[] = {10, 0, 0, 5, 10, 0, 0, 12};
  std::copy(std::begin(value), std::end(value), record.value);
  std::vector<AddressBlock> blocks;
  addBlocksOf(record, blocks);
  EXPECT_EQ(textOf(blocks), "0a000005/32 0a000006/31 0a000008/30 0a00000c/32 ");
  record.type = TarnFirewall::FW_ADDRESS_IPV6_RANGE;
  std::fill(std::begin(record.value), std::end(record.value), std::uint8_t{0});
  std::fill(record.value + 16, record.value + 32, std::uint8_t{255});
  blocks.clear();
  addBlocksOf(record, blocks);
  ASSERT_EQ(blocks.size(), 1u);
  EXPECT_EQ(blocks[0].length, 0u);
}

}  // namespace
