#include <gtest/gtest.h>

#include <cerrno>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "LogCapture.h"
#include "TarnFWCmdConfig.h"
#include "TarnFWCmdList.h"
#include "TarnFWParserActionsSelector.h"
#include "TarnFWScanner.h"
#include "tarnfw_parser.h"

using namespace TarnFirewall;

namespace {

/// What a parse that fails logs after its place, "" for a text that the grammar accepts.
std::string syntax(const std::string& text) {
  LogCapture log;
  fw_lex_extra_ extra;
  void* scanner = nullptr;
  EXPECT_EQ(yylex_init_extra(&extra, &scanner), 0);
  yy_buffer_state* buffer = yy_scan_string(text.c_str(), scanner);
  yyset_lineno(1, scanner);
  FWStatus_t status = FW_STATUS_OK;
  CTarnFWCmdList* list = nullptr;
  CTarnFWCmdConfig* config = nullptr;
  const int result = yyparse(&status, scanner, "name", &list, &config);
  yy_delete_buffer(buffer, scanner);
  yylex_destroy(scanner);
  delete list;
  delete config;
  if (result == 0) return "";
  EXPECT_EQ(result, 1);
  if (log.lines().size() != 1) return "(not one line)";
  const std::string& line = log.lines()[0].text;
  EXPECT_EQ(line.find("tarnfw: tarnfw_parser:yyerror():"), 0u) << line;
  return line.substr(line.find('['));
}

}  // namespace

TEST(TarnFWGrammar, AcceptsAnEmptyTextAndOneOfCommentsOnly) {
  EXPECT_EQ(syntax(""), "");
  EXPECT_EQ(syntax("# nothing\n/* at\nall */\n"), "");
}

TEST(TarnFWGrammar, AcceptsEveryFormOfAStatement) {
  for (const char* statement : {
           // 54 to 58
           "create ruleset r with { rule 1 inout protocol any from any to any drop; };",
           "create ruleset \"r\" of filter f { rule 1 inout protocol any from any to any drop; };",
           "create ruleset 'r' jumpto j with { rule 1 in protocol any from any to any drop; };",
           "create ruleset r with rule 1 inout protocol any from any to any accept;",
           "create ruleset r to filter f;",
           // 59 to 68
           "describe root ruleset;",
           "set root ruleset r of filter f;",
           "set root ruleset r and s;",
           "clear root ruleset;",
           "destroy ruleset r;",
           "destroy all ruleset;",
           "set jumpto of ruleset r as s of filter f;",
           "describe jumpto of ruleset r;",
           "clear jumpto of ruleset r;",
           "clear rule of ruleset r;",
           // 69 to 72
           "describe rule count of ruleset r;",
           "describe snat rule count of ruleset r;",
           "describe dnat rule count of ruleset r;",
           "describe info of ruleset r;",
           // 73 to 90
           "describe rule of ruleset r of filter f;",
           "describe rule of ruleset r from 100 of filter f;",
           "describe rule of ruleset r of filter f with 1;",
           "describe snat rule of ruleset r;",
           "describe snat rule of ruleset r from 100;",
           "describe snat rule of ruleset r with { 1, 2 };",
           "describe dnat rule of ruleset r;",
           "describe dnat rule of ruleset r from 100;",
           "describe dnat rule of ruleset r with { 1, 2, };",
           "describe stat of ruleset r of filter f;",
           "describe stat of ruleset r from 100 of filter f;",
           "describe stat of ruleset r with 1;",
           "describe snat stat of ruleset r;",
           "describe snat stat of ruleset r from 100;",
           "describe snat stat of ruleset r with { 1 };",
           "describe dnat stat of ruleset r;",
           "describe dnat stat of ruleset r from 100;",
           "describe dnat stat of ruleset r with { 1, };",
           // 91 to 93
           "describe count of ruleset;",
           "describe list of ruleset;",
           "describe list of ruleset from 5;",
           // 94 to 105
           "describe connection count;",
           "set connection of filter f;",
           "set connection of filter f with { from 10.0.0.1 port 1 to any port 80, "
           "from any:1 to 10.0.0.1:80 };",
           "set connection with from 10.0.0.1:1 to any:80;",
           "set all connection;",
           "describe connection stat;",
           "describe connection stat from 5 of filter f;",
           "clear all connection;",
           "describe exportver;",
           "set exportver 2 of filter f;",
           "create attrprofile p of filter f with { [ APP_ID : APP_HTTP, APP_DNS ] };",
           "create attrprofile p with { [ TLS_VERSION : 770, 771 ], [ APP_ID : APP_DNS ] };",
           "create attrprofile p with { [ FQDN : uuid 12345678-1234-1234-1234-123456789012, n uuid "
           "12345678-1234-1234-1234-123456789012 ] };",
           "delete attrprofile p;",
           // 106 to 108
           "add domain2ip of filter f n uuid 12345678-1234-1234-1234-123456789012 with { any };",
           "add domain2ip uuid 12345678-1234-1234-1234-123456789012 with { { 10.0.0.1, ::1 } };",
           "set uid2sidmap of filter f 'S-1-5' { 'S-1-5-1', 'S-1-5-2' };",
           "set connattr of filter f 10.0.0.1 1 10.0.0.2 2 tcp dir_in with { [ APP_ID : APP_DNS ] "
           "};",
           "set connattr of filter f ::1 1 ::2 2 udp dir_out 5 with { [ APP_ID : APP_DNS ] };",
           "set connattr 5 with { [ APP_ID : APP_DNS ], [ TLS_VERSION : 771 ] };",
           // 110 to 126
           "create APP_ID attrset a;",
           "create addrset a with any;",
           "create addrset a of filter f with { 10.0.0.1 };",
           "create addrset a with 00:11:22:33:44:55;",
           "create addrset a 10.0.0.1;",
           "create addrset a { 00:11:22:33:44:55, };",
           "create addrset a of filter f;",
           "delete all from addrset a;",
           "destroy addrset a;",
           "destroy all addrset;",
           "describe size of addrset a;",
           "describe info of addrset a;",
           "describe stat of addrset;",
           "describe address of addrset a;",
           "describe address of addrset a from 10;",
           "describe count of addrset;",
           "describe list of addrset;",
           "describe list of addrset from 10;",
           // 127 to 136
           "create spoofguard with ip { 10.0.0.1 } and mac 00:11:22:33:44:55 of filter f;",
           "create spoofguard with addrset a and mac 00:11:22:33:44:55;",
           "delete spoofguard;",
           "delete spoofguard with mac 00:11:22:33:44:55;",
           "describe spoofguard;",
           "describe stat of spoofguard;",
           "describe stat of kif;",
           "clear stat of kif;",
           "describe config of lb;",
           "describe stat of lb of filter f;",
           // 137 to 152
           "config device \"/dev/x\";",
           "config file \"/tmp/x\" save to \"/tmp/y\";",
           "config socket 127.0.0.1:7000;",
           "config ribs 127.0.0.1:7000 save to \"/tmp/y\";",
           "config default agent \"\" and filter \"\";",
           "enable tcp strict;",
           "disable TCP strict of filter f;",
           "describe tcp strict;",
           "set timeout dfw.interval to 30;",
           "set timeout to '1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22';",
           "describe timeout dfw.interval;",
           "describe timeout;",
           "debug dp 1;",
           "enable shared addrset;",
           "disable shared addrset of filter f;",
           "describe shared addrset;",
       }) {
    EXPECT_EQ(syntax(statement), "") << statement;
  }
  g_tarnfw_default_dvsport = {};
}

TEST(TarnFWGrammar, AcceptsEveryFormOfAnAttributeSet) {
  // The values of the keys are refused after the grammar, without a line.
  for (const char* statement :
       {"create APP_ID attrset a of filter f with HTTP;", "create APP_ID attrset a with { HTTP };",
        "create APP_ID attrset a with { HTTP, DNS, };"}) {
    EXPECT_EQ(syntax(statement), "(not one line)") << statement;
  }
}

TEST(TarnFWGrammar, AcceptsEveryFormOfASelector) {
  const std::string uuid = "12345678-1234-1234-1234-123456789012";
  for (const std::string& selector :
       {"dvsport " + uuid + ":7", "dvsport " + uuid + ".7", "dvsport \"" + uuid + ".007\"",
        std::string("dvswitch '12 34 56 78 12 34 12 34-12 34 12 34 56 78 90 12' port 7"),
        "vnic " + uuid + ":7", "vnic \"" + uuid + ".007\"", std::string("filter f"),
        "vif " + uuid}) {
    EXPECT_EQ(syntax("describe root ruleset of " + selector + ";"), "") << selector;
    EXPECT_EQ(syntax("describe root ruleset to " + selector + ";"), "") << selector;
  }
}

TEST(TarnFWGrammar, AcceptsEveryFormOfAnAddressList) {
  for (const char* list :
       {"10.0.0.1", "::1", "10.0.0.0/8", "10.0.0.0/255.0.0.0", "10.0.0.1-5", "2001:db8::/32",
        "::1-::5", "any", "{ 10.0.0.1, ::1 }", "{ 10.0.0.1, }", "{ }", "00:11:22:33:44:55",
        "00:11:22:33:44:55-00:11:22:33:44:66", "00:11:22:33:44:55/ff:ff:ff:00:00:00",
        "{ 00:11:22:33:44:55, 00:11:22:33:44:56 }", "{ 00:11:22:33:44:55, }"}) {
    EXPECT_EQ(syntax(std::string("create addrset a ") + list + ";"), "") << list;
    EXPECT_EQ(syntax(std::string("create addrset a with ") + list + ";"), "") << list;
  }
}

namespace {

std::string rule(const std::string& text) { return "create ruleset r { rule 1 " + text + "; };"; }

}  // namespace

TEST(TarnFWGrammar, AcceptsEveryFormOfARulesHead) {
  for (const char* head :
       {"inout protocol any", "in protocol tcp", "out not protocol tcp", "inout protocol 6",
        "inout not protocol 6", "inout ethertype any", "inout ethertype 2048",
        "inout not ethertype 0x0800", "at 5 inout protocol any", "inout inet protocol any",
        "inout inet6 protocol any"}) {
    errno = 0;
    EXPECT_EQ(syntax(rule(std::string(head) + " from any to any drop")), "") << head;
  }
}

TEST(TarnFWGrammar, AcceptsEveryFormOfARulesAddress) {
  for (const char* address : {"any", "ip 10.0.0.1", "10.0.0.1", "10.0.0.0/8", "10.0.0.0/255.0.0.0",
                              "10.0.0.1-5", "addrset a", "addrset 'a'", "a", "'a'",
                              "not ip 10.0.0.1", "not 10.0.0.1", "not addrset a", "not a"}) {
    const std::string a = address;
    EXPECT_EQ(syntax(rule("inout protocol any from " + a + " to any drop")), "") << address;
    EXPECT_EQ(syntax(rule("inout protocol any from any to " + a + " drop")), "") << address;
  }
  for (const char* address :
       {"mac 00:11:22:33:44:55", "00:11:22:33:44:55", "not mac 00:11:22:33:44:55",
        "not 00:11:22:33:44:55", "00:11:22:33:44:55/ff:ff:ff:00:00:00",
        "00:11:22:33:44:55-00:11:22:33:44:66"}) {
    EXPECT_EQ(syntax(rule("inout ethertype any from " + std::string(address) + " to any drop")), "")
        << address;
  }
}

TEST(TarnFWGrammar, AcceptsEveryFormOfARulesPorts) {
  for (const char* port :
       {"", "port 80", "port 80-90", "port 80:90", "port { 80 }", "port { 80-90 }",
        "port { 80, 90, }", "port { 80, 90-95 }", "not port 80", "not port 80-90",
        "not port { 80, 90 }", "not port { 80, 90, }"}) {
    const std::string p = port;
    EXPECT_EQ(syntax(rule("inout protocol tcp from any " + p + " to any drop")), "") << port;
    EXPECT_EQ(syntax(rule("inout protocol tcp from any to any " + p + " drop")), "") << port;
  }
}

TEST(TarnFWGrammar, AcceptsEveryFormOfAProtocolSpec) {
  for (const char* spec :
       {"stateless", "strict", "sloppy", "dscp '0a'", "dscp 10", "flag SYN", "flag 0x12",
        "flag { SYN, FIN, RST, PSH, ACK }", "flag { URG, ECE, CWR, NS, }", "option 'abc'",
        "not flag SYN", "not option 'abc'", "with { strict, stateless }",
        "with { strict, sloppy, }"}) {
    errno = 0;
    const std::string text =
        rule("inout protocol tcp " + std::string(spec) + " from any to any drop");
    EXPECT_EQ(syntax(text), "") << spec;
  }
  for (const char* spec :
       {"icmptype 8", "typecode 3:1", "typecode 3-1", "not icmptype 8", "not typecode 3:1"}) {
    EXPECT_EQ(syntax(rule("inout protocol icmp " + std::string(spec) + " from any to any drop")),
              "")
        << spec;
  }
}

TEST(TarnFWGrammar, AcceptsEveryFormOfARulesAction) {
  const std::string uuid = "12345678-1234-1234-1234-123456789012";
  for (const std::string& action : std::initializer_list<std::string>{
           "drop",
           "pass",
           "accept",
           "encrypt keypolicy " + uuid,
           "clear",
           "reject",
           "deny",
           "punt",
           "pbr keypolicy " + uuid,
           "copy",
           "jumpto j",
           "divert",
           "macrewrite 00:11:22:33:44:55",
           "snat addrset a",
           "snat ip 10.0.0.1",
           "dnat addrset a port 80",
           "dnat addrset a port 80-90 poolopt random",
           "dnat addrset a port 80-90 poolopt round-robin 5",
           "dnat addrset a port 80-90",
           "dnat addrset a poolopt tcp-conn-balance",
           "dnat addrset a",
           "dnat ip 10.0.0.1 port 80-90",
           "dnat ip 10.0.0.1 port 80",
           "dnat ip 10.0.0.1",
           "lb lbtype l4",
           "lb lbtype l7",
           "lb lbtype l4 lbidletimeout 5",
           "lb lbtype l4 lbclosetimeout 5",
           "lb lbtype l4 lbidletimeout 5 lbclosetimeout 5",
           "lb lbtype l4 lbidletimeout 5 lboptions x",
           "lb lbtype l4 lbclosetimeout 5 lboptions x",
           "lb lbtype l4 lbidletimeout 5 lbclosetimeout 5 lboptions x",
           "lb lbtype l4 lboptions x"}) {
    EXPECT_EQ(syntax(rule("out protocol any from any to any " + action)), "") << action;
  }
}

TEST(TarnFWGrammar, AcceptsEveryFormOfAnActionsFlags) {
  for (const char* flags :
       {"with log", "with copy", "with noflow", "with rtt", "with lbrule",
        "with { log, copy, noflow, rtt, lbrule }", "with { copy, log, }", "with { noflow }",
        "with { rtt }", "with { lbrule }", "as ftp", "as oracle", "as sunrpc", "as dcerpc",
        "with log as ftp", "tag t", "with log as ftp tag 't'", "with copy tag t"}) {
    EXPECT_EQ(syntax(rule("inout protocol any from any to any accept " + std::string(flags))), "")
        << flags;
  }
}

TEST(TarnFWGrammar, AcceptsTheProfilesOfARule) {
  EXPECT_EQ(syntax(rule("inout protocol any from any to any extsrcprofile e drop")), "");
  EXPECT_EQ(syntax(rule("inout protocol any from any to any attrprofile a drop")), "");
  EXPECT_EQ(syntax(rule("inout protocol any from any to any extsrcprofile e attrprofile a drop")),
            "");
}

TEST(TarnFWGrammar, WantsASemicolonAfterEveryStatement) {
  EXPECT_EQ(syntax("describe root ruleset"),
            "[name:1] syntax error, unexpected end of file, expecting ;\n");
  EXPECT_EQ(syntax("create ruleset r { rule 1 in protocol any from any to any drop }"),
            "[name:1] syntax error, unexpected }, expecting ;\n");
}

TEST(TarnFWGrammar, WantsNoSecondSemicolonAfterARuleWithoutBraces) {
  const std::string one = "create ruleset r with rule 1 in protocol any from any to any drop;";
  EXPECT_EQ(syntax(one), "");
  EXPECT_EQ(syntax(one + ";"), "[name:1] syntax error, unexpected ;, expecting end of file\n");
}

TEST(TarnFWGrammar, WantsARuleInEveryRuleSetBody) {
  EXPECT_EQ(syntax("create ruleset r with { };"),
            "[name:1] syntax error, unexpected }, expecting keyword rule\n");
  EXPECT_EQ(syntax("create ruleset r jumpto j;"),
            "[name:1] syntax error, unexpected ;, expecting keyword with\n");
  EXPECT_EQ(syntax("create ruleset r jumpto j with rule 1 in protocol any from any to any drop;"),
            "[name:1] syntax error, unexpected keyword rule, expecting {\n");
}

TEST(TarnFWGrammar, AllowsOneTrailingCommaInSomeListsOnly) {
  EXPECT_EQ(syntax("describe rule of ruleset r with { 1,, };"),
            "[name:1] syntax error, unexpected \",\", expecting } or decimal\n");
  EXPECT_EQ(syntax("set connection with { from any:1 to any:2, };"),
            "[name:1] syntax error, unexpected }, expecting keyword from\n");
  EXPECT_EQ(syntax("create attrprofile p with { [ APP_ID : APP_DNS ], };"),
            "[name:1] syntax error, unexpected }, expecting [\n");
  EXPECT_EQ(syntax(rule("inout protocol any from any to any drop") + ","),
            "[name:1] syntax error, unexpected \",\", expecting end of file\n");
}

TEST(TarnFWGrammar, RefusesAnEmptyListOfMacAddresses) {
  EXPECT_EQ(syntax("create spoofguard with ip 10.0.0.1 and mac { };"),
            "[name:1] syntax error, unexpected {, expecting Ethernet address\n");
  EXPECT_EQ(syntax("create addrset a { 00:11:22:33:44:55, , };"),
            "[name:1] syntax error, unexpected \",\", expecting } or Ethernet address or Ethernet "
            "address "
            "with range or Ethernet address with mask\n");
}

TEST(TarnFWGrammar, AsksForTheStatisticsOfAllAddressSetsAndTheSizeOfOne) {
  EXPECT_EQ(syntax("describe stat of addrset a;"),
            "[name:1] syntax error, unexpected double-quoted string, expecting ;\n");
  EXPECT_EQ(syntax("describe size of addrset;"),
            "[name:1] syntax error, unexpected ;, expecting double-quoted string\n");
  EXPECT_EQ(syntax("describe info of addrset;"),
            "[name:1] syntax error, unexpected ;, expecting double-quoted string\n");
}

TEST(TarnFWGrammar, TakesNoReservedWordAnywhere) {
  for (const char* word : {"into", "reorder", "replace", "flags", "rbe", "attribute", "revision",
                           "checksum", "mapped"}) {
    EXPECT_EQ(syntax(std::string(word) + ";"),
              std::string("[name:1] syntax error, unexpected keyword ") + word +
                  ", expecting end of file\n");
    EXPECT_EQ(syntax(std::string("destroy ruleset ") + word + ";"),
              std::string("[name:1] syntax error, unexpected keyword ") + word +
                  ", expecting double-quoted string\n");
  }
  EXPECT_EQ(syntax(".;"), "[name:1] syntax error, unexpected ., expecting end of file\n");
}

TEST(TarnFWGrammar, NamesUpToFourTokensThatWouldHaveDone) {
  EXPECT_EQ(syntax("describe info;"),
            "[name:1] syntax error, unexpected ;, expecting keyword of\n");
  EXPECT_EQ(syntax("describe info of r;"),
            "[name:1] syntax error, unexpected double-quoted string, expecting keyword ruleset or "
            "keyword addrset\n");
  EXPECT_EQ(syntax("describe root ruleset r;"),
            "[name:1] syntax error, unexpected double-quoted string, expecting ;\n");
  EXPECT_EQ(syntax("config file x 5;"), "[name:1] syntax error, unexpected decimal, expecting ;\n");
}

TEST(TarnFWGrammar, NamesTheLineOfTheError) {
  EXPECT_EQ(syntax("# one\n\ndestroy\nall\nport;"),
            "[name:5] syntax error, unexpected keyword port, expecting keyword ruleset or keyword "
            "addrset\n");
}

TEST(TarnFWGrammar, NamesNoTokenWhenFiveOrMoreWouldHaveDone) {
  EXPECT_EQ(syntax("describe;"), "[name:1] syntax error, unexpected ;\n");
  // ruleset, addrset, spoofguard, attrprofile or a name: one too many.
  EXPECT_EQ(syntax("create 5;"), "[name:1] syntax error, unexpected decimal\n");
  EXPECT_EQ(syntax("destroy x;"),
            "[name:1] syntax error, unexpected double-quoted string, expecting keyword ruleset or "
            "keyword addrset or keyword all\n");
}

TEST(TarnFWGrammar, NamesEveryKeywordInItsMessages) {
  const std::map<std::string, std::string> odd = {
      {"pass", "keyword pass/accept"}, {"accept", "keyword pass/accept"},
      {"deny", "keyword reject/deny"}, {"reject", "keyword reject/deny"},
      {"l4", "keyword lb-l4"},         {"l7", "keyword lb-l7"},
      {"options", "keyword option"},   {"connections", "keyword connection"},
      {"FTP", "keyword ftp"},          {"ORACLE", "keyword oracle"},
      {"DCERPC", "keyword dcerpc"},    {"SUNRPC", "keyword sunrpc"},
      {"NOT", "keyword not"},          {"ANY", "keyword any"}};
  for (const char* word : {
           "create",
           "add",
           "delete",
           "replace",
           "describe",
           "destroy",
           "enable",
           "shared",
           "disable",
           "set",
           "reorder",
           "clear",
           "ruleset",
           "address",
           "addrset",
           "attribute",
           "attrset",
           "rule",
           "dvswitch",
           "port",
           "root",
           "default",
           "agent",
           "dvsport",
           "inet",
           "inet6",
           "ip",
           "mac",
           "vnic",
           "filter",
           "vif",
           "size",
           "info",
           "stat",
           "revision",
           "checksum",
           "at",
           "inout",
           "in",
           "out",
           "of",
           "to",
           "as",
           "with",
           "keypolicy",
           "and",
           "into",
           "from",
           "all",
           "pass",
           "encrypt",
           "accept",
           "drop",
           "deny",
           "reject",
           "jumpto",
           "punt",
           "pbr",
           "snat",
           "dnat",
           "rbe",
           "lb",
           "poolopt",
           "lbtype",
           "lbidletimeout",
           "lbclosetimeout",
           "lboptions",
           "random",
           "round-robin",
           "l4",
           "l7",
           "tcp-conn-balance",
           "stateless",
           "dscp",
           "rtt",
           "log",
           "noflow",
           "lbrule",
           "tag",
           "FTP",
           "ORACLE",
           "DCERPC",
           "SUNRPC",
           "divert",
           "macrewrite",
           "copy",
           "NOT",
           "ethertype",
           "protocol",
           "flag",
           "flags",
           "SYN",
           "FIN",
           "RST",
           "PSH",
           "ACK",
           "URG",
           "ECE",
           "CWR",
           "NS",
           "option",
           "options",
           "icmptype",
           "typecode",
           "list",
           "connection",
           "connections",
           "exportver",
           "count",
           "spoofguard",
           "kif",
           "ANY",
           "config",
           "device",
           "socket",
           "save",
           "file",
           "ribs",
           "debug",
           "strict",
           "sloppy",
           "timeout",
           "extsrcprofile",
           "attrprofile",
           "uuid",
           "mapped",
           "connattr",
           "domain2ip",
           "uid2sidmap",
       }) {
    const auto found = odd.find(word);
    const std::string name = found != odd.end() ? found->second : std::string("keyword ") + word;
    EXPECT_EQ(syntax(std::string("destroy ruleset ") + word + ";"),
              "[name:1] syntax error, unexpected " + name + ", expecting double-quoted string\n");
  }
}

TEST(TarnFWGrammar, NamesEveryLiteralAndSignInItsMessages) {
  const std::string uuid = "12345678-1234-1234-1234-123456789012";
  for (const auto& [text, name] : std::vector<std::pair<std::string, std::string>>{
           {"[", "["},
           {"]", "]"},
           {"{", "{"},
           {"}", "}"},
           {";", ";"},
           {",", "\",\""},
           {":", ":"},
           {".", "."},
           {"10.0.0.0/8", "IPv4 address with CIDR"},
           {"10.0.0.0/255.0.0.0", "IPv4 address with mask"},
           {"10.0.0.1-5", "IPv4 address with range"},
           {"10.0.0.1", "IPv4 address"},
           {"::1", "IPv6 address"},
           {"::/64", "IPv6 address with CIDR"},
           {"::1-::2", "IPv6 address with range"},
           {"10.0.0.1:80", "IPv4:port"},
           {"any:80", "Any:port"},
           {"00:11:22:33:44:55", "Ethernet address"},
           {"00:11:22:33:44:55-00:11:22:33:44:66", "Ethernet address with range"},
           {"00:11:22:33:44:55/ff:ff:ff:ff:ff:ff", "Ethernet address with mask"},
           {uuid + ":0", "UUID:port"},
           {"5", "decimal"},
           {"5-6", "range"}}) {
    EXPECT_EQ(syntax("destroy ruleset " + text + " x"),
              "[name:1] syntax error, unexpected " + name + ", expecting double-quoted string\n");
  }
}

TEST(TarnFWGrammar, ReservesItsWordsAsNamesUnlessTheyAreQuoted) {
  EXPECT_EQ(syntax("destroy ruleset 'into'; destroy ruleset \"mapped\";"), "");
}
