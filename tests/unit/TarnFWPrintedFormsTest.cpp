/// Which printed rules the language takes back unchanged, and which it does not: what the two
/// tables of docs/language.md show its readers, line by line.

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include "Expect.h"
#include "ParseText.h"
#include "RuleGenerator.h"
#include "TarnFWRuleRecord.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

/// The record of a rule as `getrules` shows it; "(status N)" when it can't.
std::string shown(const Bytes& record) {
  const auto rule = loadRecord<FWRule_>(record.data());
  char text[512];
  const FWStatus_t status = FW_GetRuleString(&rule, 1, text, sizeof text, 0);
  return status == 0 ? text : "(status " + std::to_string(status) + ")";
}

/// Record of the rule that is written so, as the kernel gets it; empty when the text is refused.
Bytes recordOf(const std::string& rule) {
  errno = 0;
  const bool closed = rule.back() == ';' || rule.back() == '\n';
  const ParseText parse("create ruleset r { " + rule + (closed ? "" : ";") + " };");
  if (parse.failure() != "") return Bytes(0);
  const auto body = parse.body(parse.count() - 1);
  Bytes record(892);
  std::copy_n(body.begin() + 168, record.size(), record.begin());
  return record;
}

/// What `getrules` shows of a rule that is written so; "refused" when the text is.
std::string printed(const std::string& rule) {
  const Bytes record = recordOf(rule);
  return record.empty() ? "refused" : shown(record);
}

/// A rule of another program: a drop from any to any on layer 3, inbound.
Bytes foreign(unsigned short protocol = 0) {
  Bytes record = Bytes(892).at(0, {1}).at(750, {2}).at(790, {0x30}).at(884, {1});
  if (protocol != 0) record.at(790, {0x34}).at(794, {protocol});
  return record;
}
/// The same for both directions with an address translation to 10.0.0.1: 7 source, 8 destination.
Bytes translating(int action) {
  return foreign(6).at(790, {0x54}).at(460, {1}).at(464, {10, 0, 0, 1}).at(750, {action});
}

/// A rule as it is printed, and what that becomes when it is loaded and printed again.
struct Case {
  std::string text;
  std::string again = "refused";
};

/// One line of the tables: its first column, a pattern by which its texts are known, and rules of
/// that kind. Where the loss leaves no trace in the text, the pattern fits no text.
struct Form {
  const char* printed;
  const char* pattern;
  std::vector<Case> cases;
};

const std::string kHead = "rule 1 at 0 in protocol any from any to any ";
const std::string kUuid = "502e1f3a-c21a-632a-4ae1-00505699b626";

/// What the rule prints that is written as `kHead` and this action.
std::string acting(const std::string& action) { return printed(kHead + action); }

std::vector<Form> ownForms() {
  return {
      {"`rule -1 …`, `at -1 …`",
       "^rule -| at -",
       {{printed("rule 2147483648 in protocol any from any to any drop")},
        {printed("rule 4294967295 in protocol any from any to any drop")},
        {printed("rule 1 at 2147483648 in protocol any from any to any drop")}}},
      {"a position of 4294967295",
       "^rule -?[0-9]+ (in|out|inout) ",
       {{printed("rule 1 at 4294967295 in protocol any from any to any drop"), kHead + "drop;"}}},
      {"names with blanks or signs, with a digit in front, or that are keywords",
       nullptr,  // known by the names themselves
       {{printed("rule 1 in protocol any from 'web servers' to any drop")},
        {printed("rule 1 in protocol any from any to not 'web+db' drop")},
        {printed("rule 1 in protocol any from '1web' to any drop")},
        {printed("rule 1 in protocol any from '10.0.0.1' to any drop")},
        {printed("rule 1 in protocol any from 'port' to any drop")},
        {printed("rule 1 in protocol any from 'any' to any drop")},
        {acting("jumpto 'web servers'")},
        {acting("jumpto 'all'")},
        {printed("rule 1 out protocol any from any to any snat addrset 'a pool'")},
        {printed("rule 1 in protocol any from any to any dnat addrset 'a pool' port 80")},
        {printed("rule 1 in protocol any from 'a to any drop;#' to any accept") + "\n",
         "rule 1 at 0 in protocol any from addrset a to any drop;"}}},
      {"`protocol ip`",
       " protocol ip ",
       {{printed("rule 1 in protocol 0 from any to any drop")},
        {printed("rule 1 in not protocol 0 from any to any drop")}}},
      {"`lb  lbtype L4`, `lb  lbtype L7`",
       " lb .*lbtype L",
       {{acting("lb lbtype l4")},
        {acting("lb lbtype l7 lbidletimeout 60 lbclosetimeout 5")},
        {acting("lb lbtype l4 lboptions 'a b'")}}},
      {"`macrewrite 0:11:2:33:4:55`",
       "macrewrite ([0-9a-f]{1,2}:)*[0-9a-f][: ;]",
       {{acting("macrewrite 00:11:02:33:04:55")},
        {acting("macrewrite 10:11:12:13:14:05 with log")},
        {acting("macrewrite 10:11:12:13:14:15"), kHead + "macrewrite 10:11:12:13:14:15;"}}},
      {"`encrypt with log keypolicy …`, `pbr as ftp keypolicy …`",
       " (encrypt|pbr) (with|as) ",
       {{acting("encrypt keypolicy " + kUuid + " with log")},
        {acting("encrypt keypolicy " + kUuid + " as oracle")},
        {acting("pbr keypolicy " + kUuid + " with { log, rtt }")},
        {acting("pbr keypolicy " + kUuid + " as ftp")}}},
      {"`pbr pass-through`",
       " pbr .*pass-through",
       {{acting("pbr keypolicy ffffffff-ffff-ffff-ffff-ffffffffffff")},
        {acting("pbr keypolicy ffffffff-ffff-ffff-ffff-ffffffffffff with log")}}},
      {"`as tftp`",
       " as tftp",
       {{printed("rule 1 in protocol udp from any to any port 69 accept")},
        {printed("rule 1 in protocol udp from any to any port 69 drop with log as ftp")},
        {printed("rule 1 in protocol udp from any to any port { 69 } accept"),
         "rule 1 at 0 in protocol udp from any to any port {69} accept;"}}},
      {"`with extended src …`, `with attribute profile …`",
       " with (extended src|attribute profile) ",
       {{printed("rule 1 in protocol any from any to any extsrcprofile e drop")},
        {printed("rule 1 in protocol any from any to any attrprofile a drop")},
        {printed("rule 1 in protocol any from any to any extsrcprofile e attrprofile a drop")}}},
      {"tags with an apostrophe",
       " tag '.*'.*';",
       {{acting("drop tag \"it's\"")}, {acting("drop tag \"'\""), kHead + "drop;"}}},
      {"DSCP",
       "^$",
       {{printed("rule 1 in protocol udp dscp 10 from any to any drop"),
         "rule 1 at 0 in protocol udp from any to any drop;"},
        {printed("rule 1 in protocol tcp with { dscp '2e', strict } from any to any drop"),
         "rule 1 at 0 in protocol tcp strict from any to any drop;"}}},
      {"TCP options",
       "^((?! from ).)*[ {]port ",
       {{printed("rule 1 in protocol tcp option 'a' from any to any drop"),
         "rule 1 at 0 in protocol tcp from any to any drop;"},
        {printed("rule 1 in protocol tcp not option 'abcdefg' from any to any drop"),
         "rule 1 at 0 in protocol tcp from any to any drop;"},
        {printed("rule 1 in protocol tcp option 'abcdefgh' from any to any drop")},
        {printed("rule 1 in protocol tcp option 'abcdefghijklmnopq' from any to any drop")},
        {printed("rule 1 in protocol tcp option '" + std::string(32, 'a') +
                 "' from any to any drop"),
         "rule 1 at 0 in protocol tcp flag 0x0161 from any to any drop;"},
        {printed("rule 1 in protocol tcp option '" + std::string(40, 'a') +
                 "' from any to any drop"),
         "(status 41)"}}},
      {"Ethernet ranges",
       "^$",
       {{printed("rule 1 in ethertype any from 00:11:22:33:44:55-00:11:22:33:44:66 to any drop"),
         "(status 33)"},
        {printed("rule 1 in ethertype any from any to 00:11:22:33:44:55-00:11:22:33:44:66 drop"),
         "(status 33)"}}},
  };
}

std::vector<Form> foreignForms() {
  const std::string any = "rule 1 at 0 in protocol any from ";
  const std::string tcp = "rule 1 at 0 inout protocol tcp from any to any ";
  return {
      {"`# internal # rule …`", "^# internal #", {{shown(foreign().at(793, {0x40}))}}},
      {"rules without `at`",
       "^rule -?[0-9]+ (in|out|inout) ",
       {{shown(foreign().at(4, {0xff, 0xff, 0xff, 0xff})), kHead + "drop;"}}},
      {"IP ranges",
       "(ip [0-9a-f:.]+-[0-9a-f:.]+[ ;])",
       {{shown(foreign().at(790, {0x31}).at(12, {3}).at(16, {10, 0, 0, 1}).at(20, {10, 0, 0, 5})),
         any + "addrset src1 to any drop;"},
        {shown(foreign().at(790, {0x32}).at(156, {4, 0, 1}).at(175, {1}).at(191, {9})),
         "rule 1 at 0 in protocol any from any to not addrset dst1 drop;"},
        {shown(translating(8).at(460, {3}).at(468, {10, 0, 0, 5})),
         "rule 1 at 0 out protocol tcp from any to any dnat addrset target1;"}}},
      {"`snat not …`, `dnat not …`",
       " (snat|dnat) not ",
       {{shown(translating(7).at(462, {1}))}, {shown(translating(8).at(462, {1}))}}},
      {"`poolopt bitmask`, `poolopt source-hash`, `dnat … unknown`",
       " dnat .*( poolopt (bitmask|source-hash)| unknown)",
       {{shown(translating(8).at(742, {1 << 2}))},
        {shown(translating(8).at(742, {3 << 2}))},
        {shown(translating(8).at(742, {6 << 2}))}}},
      {"`poolopt` after an IP address or a single port",
       " dnat (addrset [^ ]+ port [0-9]+|ip .*) poolopt",
       {{shown(translating(8).at(742, {2 << 2}))},
        {shown(translating(8)
                   .at(460, {11})
                   .at(464, {0, 0, 0, 0})
                   .text(464, "pool")
                   .at(604, {0, 80})
                   .at(742, {1 | 2 << 2}))}}},
      {"`dnat … port 80-80` without `poolopt`",
       " dnat .* port ([0-9]+)-\\1( with| as| tag|;)",
       {{shown(translating(8).at(604, {0, 80, 0, 80}).at(742, {3}))}}},
      {"key policies that are no identifiers, or none",
       " (encrypt|pbr)(;| (?!keypolicy [0-9a-f]{8}-))",
       {{shown(foreign().at(750, {11}))},
        {shown(foreign().at(750, {14}))},
        {shown(foreign().at(750, {11}).text(753, "policy"))},
        {shown(foreign().at(750, {14}).text(753, "policy"))}}},
      {"`tcpoptions 0x…`", "tcpoptions 0x", {{shown(foreign(6).at(810, {40, 0, 2, 0, 'a', 'b'}))}}},
      {"attributes in place of addresses",
       "(from|to) (not )?(int|unsigned int|str|sid) attr ",
       {{shown(foreign().at(790, {0x31}).at(12, {14}).at(16, {5, 0, 0, 0, 2}).text(24, "x"))}}},
  };
}

/// First columns of the page's tables whose head is "| Printed |".
std::vector<std::vector<std::string>> tablesOfThePage() {
  std::ifstream page(TARNFW_LANGUAGE_PAGE);
  EXPECT_TRUE(page.is_open()) << TARNFW_LANGUAGE_PAGE;
  std::vector<std::vector<std::string>> tables;
  bool inside = false;
  for (std::string line; std::getline(page, line);) {
    if (line.rfind("| Printed |", 0) == 0) {
      inside = true;
      tables.emplace_back();
    } else if (inside && line.rfind("| ", 0) == 0) {
      tables.back().push_back(line.substr(2, line.find(" | ", 2) - 2));
    } else if (line.empty()) {
      inside = false;
    }
  }
  return tables;
}

/// True when an address set or a rule set that the rule names can't be written without quotes.
bool hasNameToQuote(const Bytes& record) {
  const auto mustBeQuoted = [&](std::size_t offset, std::size_t length) {
    const auto* const field = reinterpret_cast<const char*>(record.data() + offset);
    const std::string name(field, strnlen(field, length));
    const ParseText parse("destroy ruleset " + name + ";");
    return parse.failure() != "" || parse.field(0) != name;
  };
  for (const std::size_t address : {12u, 156u, 460u}) {  // source, destination, translation
    if (record[address] == 11 && mustBeQuoted(address + 4, 38)) return true;
  }
  return record[750] == 4 && mustBeQuoted(460, 64);
}

std::vector<std::string> names(const std::vector<Form>& forms) {
  std::vector<std::string> found;
  for (const Form& form : forms) found.emplace_back(form.printed);
  return found;
}

}  // namespace

TEST(TarnFWPrintedForms, ThePageListsExactlyTheFormsOfThisTest) {
  const auto tables = tablesOfThePage();
  ASSERT_EQ(tables.size(), 2u);
  EXPECT_EQ(tables[0], names(ownForms()));
  EXPECT_EQ(tables[1], names(foreignForms()));
}

TEST(TarnFWPrintedForms, EachListedFormIsRefusedOrComesBackAsSomethingElse) {
  for (const auto& forms : {ownForms(), foreignForms()}) {
    for (const Form& form : forms) {
      EXPECT_FALSE(form.cases.empty());
      const std::regex pattern(form.pattern == nullptr ? "(addrset|jumpto) " : form.pattern);
      for (const Case& one : form.cases) {
        SCOPED_TRACE(std::string(form.printed) + ": " + one.text);
        EXPECT_NE(one.text, "refused");
        if (one.text[0] == '(') {  // what the kernel holds can't be shown at all
          EXPECT_EQ(one.text, one.again);
          continue;
        }
        EXPECT_EQ(printed(one.text), one.again);
        // Texts that come back as they are stand beside the others to show where a form begins.
        if (one.text != one.again) {
          EXPECT_TRUE(std::regex_search(one.text, pattern));
        }
      }
    }
  }
}

TEST(TarnFWPrintedForms, LosesDscpAndShortTcpOptionsWithoutATrace) {
  for (const char* spec : {"dscp 10", "option 'abcdefg'"}) {
    const Bytes plain = recordOf("rule 1 in protocol tcp from any to any drop");
    const Bytes record =
        recordOf("rule 1 in protocol tcp " + std::string(spec) + " from any to any drop");
    EXPECT_NE(record, plain);
    EXPECT_EQ(recordOf(shown(record)), plain);
  }
}

TEST(TarnFWPrintedForms, TheseComeBackUnchanged) {
  for (const char* rule : {
           "rule 1 inout protocol any from any to any accept",
           "rule 1 at 5 in inet protocol tcp from any to any drop",
           "rule 2147483647 at 2147483647 in protocol any from any to any drop",
           "rule 1 out inet6 not protocol 47 from any to any reject",
           "rule 1 in protocol 200 from any to any drop",
           "rule 1 in ethertype any from any to any drop",
           "rule 1 in not ethertype 2048 from any to any drop",
           "rule 1 in protocol tcp with { strict, stateless, flag SYN } from any to any drop",
           "rule 1 in protocol tcp sloppy from any to any drop",
           "rule 1 in protocol tcp not flag { SYN, NS } from any to any drop",
           "rule 1 in protocol icmp icmptype 8 from any to any drop",
           "rule 1 in protocol icmp not typecode 3:1 from any to any drop",
           "rule 1 in protocol any from 10.0.0.1 to 10.0.0.0/8 drop",
           "rule 1 in protocol any from not ::1 to 2001:db8::/32 drop",
           "rule 1 in protocol any from web to not db drop",
           "rule 1 in protocol any from 10.0.0.1-5 to any drop",
           "rule 1 in ethertype any from 00:11:22:33:44:55 to any drop",
           "rule 1 in ethertype any from any to not 00:11:22:33:44:55/ff:ff:ff:00:00:00 drop",
           "rule 1 in protocol tcp from any port 1-5 to any port { 80-90, 443 } drop",
           "rule 1 in protocol tcp from any not port 1 to any not port { 80, 443 } drop",
           "rule 1 in protocol any from any to any jumpto web",
           "rule 1 in protocol any from any to any punt",
           "rule 1 in protocol any from any to any divert",
           "rule 1 in protocol any from any to any copy",
           "rule 1 in protocol any from any to any clear",
           "rule 1 in protocol any from any to any encrypt keypolicy "
           "502e1f3a-c21a-632a-4ae1-00505699b626",
           "rule 1 in protocol any from any to any pbr keypolicy "
           "502e1f3a-c21a-632a-4ae1-00505699b626",
           "rule 1 out protocol any from any to any snat ip 10.0.0.1",
           "rule 1 out protocol any from any to any snat ip 10.0.0.1-5",
           "rule 1 in protocol tcp from any to any dnat addrset p port 80-90 poolopt random 5",
           "rule 1 in protocol tcp from any to any dnat addrset p port 80-80 poolopt random",
           "rule 1 in protocol tcp from any to any dnat addrset p poolopt round-robin 5",
           "rule 1 in protocol tcp from any to any dnat ip 10.0.0.1 port 80",
           "rule 1 in protocol tcp from any to any dnat ip 10.0.0.0/8 port 80-90",
           "rule 1 in protocol tcp from any to any accept with { log, copy, noflow, rtt, lbrule }",
           "rule 1 in protocol tcp from any to any accept with { log, rtt } as ftp tag 'a b'",
       }) {
    const std::string once = printed(rule);
    EXPECT_EQ(once.substr(0, 5), "rule ") << rule;
    EXPECT_EQ(printed(once), once) << rule;
  }
}

/// The tables are complete: whatever else rules may hold is printed in a form that comes back.
TEST(TarnFWPrintedForms, GeneratedRulesComeBackUnlessTheirFormIsListed) {
  std::vector<std::regex> listed;
  for (const auto& forms : {ownForms(), foreignForms()}) {
    for (const Form& form : forms) {
      if (form.pattern != nullptr) listed.emplace_back(form.pattern);
    }
  }
  testing::internal::CaptureStderr();  // the scanner names every character that it drops
  unsigned int unchanged = 0;
  unsigned int others = 0;
  for (std::uint64_t seed = 1; seed <= 20000; ++seed) {
    RuleGenerator generator{Choices(seed)};
    RuleLosses losses;
    const auto rule = generator.rule(&losses);
    ASSERT_NE(rule, nullptr);
    Bytes record(892);
    unsigned int written = 0;
    ASSERT_TRUE(rule->toMessage(record.data(), 892, &written));
    record[3] &= 0x7f;  // half of the ids would be too large
    const LogCapture quiet;
    const std::string text = shown(record);
    if (text[0] == '(') {
      EXPECT_TRUE(losses.macRange || losses.tcpOptions || text == "(status 9)")
          << seed << " " << text;
      continue;
    }
    if (printed(text) == text) {
      ++unchanged;
      continue;
    }
    ++others;
    if (hasNameToQuote(record)) continue;
    EXPECT_TRUE(std::any_of(listed.begin(), listed.end(),
                            [&](const std::regex& form) { return std::regex_search(text, form); }))
        << seed << " " << text << " -> " << printed(text);
  }
  testing::internal::GetCapturedStderr();
  EXPECT_GT(unchanged, 3000u);
  EXPECT_GT(others, 3000u);
}
