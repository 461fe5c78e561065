/// Which printed rules the language takes back unchanged, and which it does not: what
/// docs/language.md tells its readers.

#include <gtest/gtest.h>

#include <cerrno>

#include "ParseText.h"

namespace {

/// Text of the rule that is written so, as `getrules` prints it; "" when it is refused.
std::string printed(const std::string& rule) {
  errno = 0;
  const ParseText parse("create ruleset r { " + rule + (rule.back() == ';' ? "" : ";") + " };");
  if (parse.failure() != "") return "";
  const std::string all = parse.text(parse.count() - 1);
  const std::size_t start = all.find("rule ", all.find('{'));
  return all.substr(start, all.find('\n', start) - start);
}

}  // namespace

TEST(TarnFWPrintedForms, TheseComeBackUnchanged) {
  for (const char* rule : {
           "rule 1 inout protocol any from any to any accept",
           "rule 1 at 5 in inet protocol tcp from any to any drop",
           "rule 1 out inet6 not protocol 47 from any to any reject",
           "rule 1 in ethertype any from any to any drop",
           "rule 1 in not ethertype 2048 from any to any drop",
           "rule 1 in protocol tcp with { strict, stateless, flag SYN } from any to any drop",
           "rule 1 in protocol tcp not flag { SYN, NS } from any to any drop",
           "rule 1 in protocol udp dscp 10 from any to any drop",
           "rule 1 in protocol icmp icmptype 8 from any to any drop",
           "rule 1 in protocol icmp not typecode 3:1 from any to any drop",
           "rule 1 in protocol any from 10.0.0.1 to 10.0.0.0/8 drop",
           "rule 1 in protocol any from not ::1 to 2001:db8::/32 drop",
           "rule 1 in protocol any from web to not db drop",
           "rule 1 in protocol any from 10.0.0.1-5 to any drop",
           "rule 1 in ethertype any from 00:11:22:33:44:55 to any drop",
           "rule 1 in ethertype any from any to not 00:11:22:33:44:55/ff:ff:ff:00:00:00 drop",
           "rule 1 in ethertype any from 00:11:22:33:44:55-00:11:22:33:44:66 to any drop",
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
           "rule 1 in protocol tcp from any to any dnat addrset p port 80-90 poolopt random 5",
           "rule 1 in protocol tcp from any to any dnat ip 10.0.0.1 port 80",
           "rule 1 in protocol tcp from any to any accept with { log, copy, noflow, rtt, lbrule }",
           "rule 1 in protocol tcp from any to any accept with { log, rtt } as ftp tag 'a b'",
       }) {
    const std::string once = printed(rule);
    EXPECT_NE(once, "") << rule;
    EXPECT_EQ(printed(once), once) << rule;
  }
}

TEST(TarnFWPrintedForms, TheseAreRefused) {
  for (const char* rule : {
           "rule 2147483648 in protocol any from any to any drop",
           "rule 1 in protocol any from 'web servers' to any drop",
           "rule 1 in protocol any from 'port' to any drop",
           "rule 1 in protocol any from any to any jumpto 'web servers'",
           "rule 1 in protocol tcp option abc from any to any drop",
           "rule 1 in protocol tcp from any to any lb lbtype l4",
           "rule 1 in protocol any from any to any macrewrite 00:11:02:33:04:55",
           "rule 1 in protocol any from any to any encrypt keypolicy "
           "502e1f3a-c21a-632a-4ae1-00505699b626 with log",
           "rule 1 in protocol any from any to any pbr keypolicy "
           "502e1f3a-c21a-632a-4ae1-00505699b626 with log",
           "rule 1 in protocol any from any to any pbr keypolicy "
           "ffffffff-ffff-ffff-ffff-ffffffffffff",
           "rule 1 in protocol udp from any to any port 69 accept",
           "rule 1 in protocol any from any to any extsrcprofile e drop",
           "rule 1 in protocol any from any to any attrprofile a drop",
           "rule 1 in protocol any from any to any drop tag \"it's\"",
       }) {
    const std::string once = printed(rule);
    EXPECT_NE(once, "") << rule;
    EXPECT_EQ(printed(once), "") << once;
  }
}
