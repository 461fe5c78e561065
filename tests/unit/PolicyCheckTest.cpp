#include <gtest/gtest.h>

#include "PolicyText.h"

namespace {

using Lines = std::vector<std::string>;

/// The one find of a text: "LINE:COLUMN message | help".
std::string mistake(const std::string& text) {
  const Diagnostics diagnostics = checked({text});
  if (diagnostics.all().size() != 1) return std::to_string(diagnostics.all().size()) + " finds";
  const Diagnostic& only = diagnostics.all()[0];
  const auto [line, column] = SourceText("", text).place(only.range.begin);
  return std::to_string(line) + ":" + std::to_string(column) + " " + only.message +
         (only.help.empty() ? "" : " | " + only.help);
}

std::string rule(const std::string& text) {
  return "create ruleset \"r\" with {\n" + text + "\n};\n";
}

TEST(PolicyCheck, ATextWithoutMistakesHasNoErrors) {
  EXPECT_EQ(checked({""}).all().size(), 0u);
  EXPECT_EQ(checked({"describe root ruleset; # comment\n/* another */ describe timeout;"}).errors(),
            0u);
}

TEST(PolicyCheck, GoesOnAtTheNextStatementAndTheNextRule) {
  EXPECT_EQ(
      found("create addrset;\n"
            "create ruleset \"w\" {\n"
            "  rule 1 in protocol tcp from any to any port 99999 accept;\n"
            "  rule 2 in protocol tcp any to any accept;\n"
            "  rule 3 in protocol tcp from any to any accept;\n"
            "  rule 4 in protocol tcp from any to any acept;\n"
            "};\n"
            "describe root;\n"
            "describe root ruleset;\n"),
      (Lines{"1:15 syntax: unexpected `;`", "3:47 value: TCP/UDP port number (99999) is invalid",
             "4:26 syntax: unexpected keyword `any`", "6:42 syntax: unexpected `acept`",
             "8:14 syntax: unexpected `;`"}));
}

TEST(PolicyCheck, GoesOnAfterWhatIsNotClosed) {
  EXPECT_EQ(
      found("create ruleset \"a\" {\n  rule 1 in protocol tcp from any to any accept;\n"
            "create addrset \"b\" { 10.0.0.1\n"
            "create addrset \"c\" 10.0.0.300;\n"
            "create addrset \"d\" 10.0.0.1\n"
            "create addrset \"e\" 10.0.0.300;\n"),
      (Lines{
          "2:49 syntax: `}` is missing after `;`", "3:30 syntax: `}` is missing after `10.0.0.1`",
          "4:20 value: invalid value `10.0.0.300`", "5:28 syntax: `;` is missing after `10.0.0.1`",
          "6:20 value: invalid value `10.0.0.300`"}));
}

TEST(PolicyCheck, NamesTheNearestKeyword) {
  EXPECT_EQ(mistake(rule("rule 1 in protocl tcp from any to any accept;")),
            "2:11 unexpected `protocl` | did you mean `protocol`?");
  EXPECT_EQ(mistake(rule("rule 1 in protocol tcp form any to any accept;")),
            "2:24 unexpected `form` | did you mean `from`?");
  EXPECT_EQ(mistake(rule("rule 1 IN protocol tcp from any to any accept;")),
            "2:8 unexpected `IN` | did you mean `in`?");
  EXPECT_EQ(mistake(rule("rule 1 in protocol tcp from any to any alow;")),
            "2:40 unexpected `alow`");
  EXPECT_EQ(mistake("create rulset \"x\";"), "1:8 unexpected `rulset` | did you mean `ruleset`?");
  EXPECT_EQ(mistake("describe contt of ruleset;"),
            "1:10 unexpected `contt` | did you mean `count`?");
  EXPECT_EQ(mistake("crate addrset \"x\";"), "1:1 unexpected `crate` | did you mean `create`?");
  EXPECT_EQ(mistake("create addrset \"x\" whit 10.0.0.1;"),
            "1:20 unexpected `whit` | did you mean `with`?");
}

TEST(PolicyCheck, AKeywordAsANameNeedsQuotes) {
  EXPECT_EQ(mistake("create addrset port;"),
            "1:16 unexpected keyword `port` | `port` is a keyword; a name of that spelling stands "
            "in quotes: \"port\"");
  EXPECT_EQ(mistake("create addrset \"port\";"), "0 finds");
}

TEST(PolicyCheck, ValuesHaveTheirPlaceAndRemedy) {
  EXPECT_EQ(mistake("create addrset \"a\" { 10.0.0.0/8, 10.0.0.0/33 };"),
            "1:34 invalid value `10.0.0.0/33` | a prefix goes from 0 to 32, and each number before "
            "it from 0 to 255");
  EXPECT_EQ(mistake(rule("rule 1 in protocol tcp from any port 80 to any port 90-80 accept;")),
            "2:53 invalid port range | the low end of a range of ports stands first: 80-90");
  EXPECT_EQ(mistake(rule("rule 1 in protocol tcp from any to any port { 1, 65535-443 } accept;")),
            "2:50 invalid port range | the low end of a range of ports stands first: 443-65535");
  EXPECT_EQ(mistake(rule("rule 1 in protocol tcp from any to any port 80-80 accept;")),
            "2:45 invalid port range | a range has more than one port; this one is: 80");
  EXPECT_EQ(mistake(rule("rule 1 in protocol nosuch from any to any accept;")),
            "2:20 unknown protocol (nosuch) | names of protocols are those in /etc/protocols; any "
            "protocol can be given by its number");
  EXPECT_EQ(mistake(rule("rule 5000000000 in protocol tcp from any to any accept;")),
            "2:6 rule id value overflows | ids go from 0 to 4294967295");
  EXPECT_EQ(mistake(rule("rule 1 at 5000000000 in protocol tcp from any to any accept;")),
            "2:11 rule position value overflows | positions go from 0 to 4294967295");
  EXPECT_EQ(mistake(rule("rule 1 in protocol any from any to any port 80 accept;")),
            "2:40 cannot accept tcp/udp port while tcp/udp protocol is not specified | ports go "
            "with `protocol tcp` or `protocol udp`");
  EXPECT_EQ(mistake(rule("rule 1 in protocol any from any to not 00:11:22:33:44:55 accept;")),
            "2:40 layer3 rule dst address is MAC | rules with `protocol` have IP addresses");
  EXPECT_EQ(mistake("create ruleset \"" + std::string(64, 'n') +
                    "\" { "
                    "rule 1 in protocol any from any to any accept; };"),
            "1:16 ruleset name (" + std::string(64, 'n') +
                ") is too long | names of rule sets have at most 63 bytes");
  EXPECT_EQ(mistake("create addrset \"" + std::string(38, 'n') + "\";"),
            "1:16 addrset name (" + std::string(38, 'n') +
                ") is too long | names of sets have at most 37 bytes");
  EXPECT_EQ(mistake("create addrset " + std::string(256, 'n') + ";"),
            "1:16 identifier is too long: `" + std::string(60, 'n') +
                "...` | names have at most 255 bytes");
  EXPECT_EQ(mistake("create APP_ID attrset \"a\" with \"b\";"),
            "1:32 the members of an attribute set cannot be given in text | only an empty set can "
            "be written; an attribute profile holds attributes");
}

TEST(PolicyCheck, ColumnsAreBytesAndTabsAreOne) {
  EXPECT_EQ(mistake("\tcreate addrset \"\xc3\xa4\" whit;"),
            "1:22 unexpected `whit` | did you mean `with`?");
  EXPECT_EQ(mistake("# \xc3\xa4\r\n\r\n\t\tcreate addrset;\r\n"), "3:17 unexpected `;`");
}

TEST(PolicyCheck, CharactersThatBelongToNothingAreOneFindPerRun) {
  EXPECT_EQ(found("@@ create addrset + \"a\" # @\n; $$/* $ */$ describe timeout;"),
            (Lines{"1:1 stray-character: `@@` belongs to nothing and is skipped",
                   "1:19 stray-character: `+` belongs to nothing and is skipped",
                   "2:3 stray-character: `$$` belongs to nothing and is skipped",
                   "2:12 stray-character: `$` belongs to nothing and is skipped"}));
}

TEST(PolicyCheck, WhatIsNotClosedIsNamedWhereItBegins) {
  EXPECT_EQ(found("create addrset \"a\";\n/* create addrset \"b\";"),
            (Lines{"2:1 syntax: unexpected `/`",
                   "2:2 stray-character: `*` belongs to nothing and is skipped"}));
  const Diagnostics quote = checked({"create addrset \"a;\n"});
  ASSERT_EQ(quote.all().size(), 1u);
  EXPECT_EQ(quote.all()[0].help, "a quoted text begins here that is not closed");
}

TEST(PolicyCheck, TextThatIsNotReadIsAWarning) {
  const std::string name(256, 'n');
  EXPECT_EQ(
      found("create addrset \"a\";\n" + name + "; nonsense;"),
      (Lines{"2:1 ignored-text: the text is not read from here on: identifier is too long: `" +
             name.substr(0, 60) + "...`"}));
}

TEST(PolicyCheck, AFileOfAnotherKindIsOneError) {
  EXPECT_EQ(mistake("{\n  \"a\": [ 1, 2 ]\n}\n"),
            "1:1 unexpected `{`: this is no configuration text | the file looks like JSON");
  EXPECT_EQ(mistake("<?xml version=\"1.0\"?>\n<a>;</a>\n").substr(0, 1), "2");
  EXPECT_EQ(checked({std::string("\x7f"
                                 "ELF\0\0\0 a b",
                                 12)})
                .errors(),
            1u);
  // Only what stands in front of everything else decides it.
  EXPECT_EQ(checked({"create addrset \"a\";\n{\n};\nnonsense;"}).errors(), 2u);
}

TEST(PolicyCheck, MoreRulesThanOneStandInBraces) {
  const Diagnostics diagnostics =
      checked({"create ruleset \"w\" with rule 1 in protocol any from any to any accept;\n"
               "rule 2 in protocol any from any to any accept;\n"});
  ASSERT_EQ(diagnostics.all().size(), 1u);
  EXPECT_EQ(diagnostics.all()[0].help,
            "more rules than one stand in braces: create ruleset \"NAME\" with { ... };");
}

TEST(PolicyCheck, FilesAreOnePolicyInTheirOrder) {
  EXPECT_EQ(found(Lines{"describe timeout;", "describe;", "create;"}),
            (Lines{"2.conf:1:9 syntax: unexpected `;`", "3.conf:1:7 syntax: unexpected `;`"}));
}

TEST(PolicyCheck, ALiteralThatCannotBeReadIsMarkedWhole) {
  const std::string text =
      rule("rule 1 in protocol tcp from any to any port 99999999999999999999 accept;");
  EXPECT_EQ(mistake(text),
            "2:45 decimal integer overflows: `99999999999999999999` | ports go from 0 to 65535");
  const Diagnostics diagnostics = checked({text});
  EXPECT_EQ(diagnostics.all()[0].range.end - diagnostics.all()[0].range.begin, 20u);
  EXPECT_EQ(mistake(rule("rule 99999999999999999999 in protocol tcp from any to any accept;")),
            "2:6 decimal integer overflows: `99999999999999999999` | ids go from 0 to 4294967295");
  EXPECT_EQ(mistake("create addrset \"a\" 10.0.0.1-10.0.0.300;"),
            "1:20 invalid ip address: `10.0.0.300` | each number of an IPv4 address goes from 0 to "
            "255, each group of an IPv6 address to ffff");
}

TEST(PolicyCheck, ANameThatIsNearToAnUnknownOneIsProposed) {
  const std::string rules =
      rule("rule 1 in protocol any from \"servers\" to \"sevrers\" jumpto \"R\";");
  const Diagnostics diagnostics = checked({"create addrset \"servers\" 10.0.0.1;\n" + rules});
  ASSERT_EQ(diagnostics.all().size(), 2u);
  EXPECT_EQ(diagnostics.all()[0].help, "did you mean `servers`?");
  // No name of another kind, and none that is not near.
  EXPECT_EQ(diagnostics.all()[1].help, "did you mean `r`?");
  EXPECT_EQ(
      mistake("destroy addrset \"servers\"; create addrset \"db\" 10.0.0.1;"),
      "1:17 the set `servers` is not there when this statement is carried out | create it, or "
      "let `-f FILTER` ask whether the filter holds it");
}

TEST(PolicyCheck, OfManyUnknownNamesTheFirstHaveProposals) {
  std::string text = "create addrset \"name\" 10.0.0.1;\n";
  for (int i = 0; i < 300; ++i)
    text += "delete all from addrset \"name" + std::to_string(i) + "\";\n";
  const Diagnostics diagnostics = checked({text});
  std::size_t proposals = 0;
  for (const Diagnostic& diagnostic : diagnostics.all()) {
    proposals += diagnostic.help == "did you mean `name`?" ? 1 : 0;
  }
  EXPECT_EQ(proposals, 100u);
}

TEST(PolicyCheck, FilesOfOtherKindsAreNamed) {
  EXPECT_EQ(mistake("[main]\nkey = value\n"),
            "1:1 unexpected `[`: this is no configuration text | the file looks like an INI file");
  EXPECT_EQ(mistake("[1, 2]\n"),
            "1:1 unexpected `[`: this is no configuration text | the file looks like JSON");
  EXPECT_EQ(mistake("name,address\n"),
            "1:1 unexpected `name` | a text begins with a statement, such as: create addrset "
            "\"NAME\" { 10.0.0.1 };");
}

TEST(PolicyCheck, ManyBeginningsOfCommentsCostNoMoreThanOthers) {
  // Far from done in the time of a test if each looks for a close of its own.
  std::string text;
  for (int i = 0; i < 300000; ++i) text += "/* ";
  EXPECT_GE(checked({text}).errors(), 1u);
  EXPECT_EQ(checked({text + "*/"}).all().size(), 0u);
}

TEST(PolicyCheck, AWordThatIsShownInPartEndsWithAWholeCharacter) {
  const std::string name = std::string(58, 'n') + "\xe4\xb8\xad\xe4\xb8\xad";
  EXPECT_EQ(mistake("describe timeout; \"" + name + "\";"),
            "1:19 unexpected `\"" + std::string(58, 'n') + "...`");
}

TEST(PolicyCheck, ManyLiteralsThatCannotBeReadCostNoMoreThanOthers) {
  // Far from done in the time of a test if the rest is copied after each.
  std::string text;
  for (int i = 0; i < 100000; ++i) text += "create addrset \"a\" { 99999999999999999999 };\n";
  const Diagnostics diagnostics = checked({text});
  ASSERT_EQ(diagnostics.errors(), 100000u);
  const SourceText source("", text);
  for (std::size_t i = 0; i < 100000; i += 9999) {
    const auto [line, column] = source.place(diagnostics.all()[i].range.begin);
    EXPECT_EQ(line, i + 1);
    EXPECT_EQ(column, 22u);
  }
}

TEST(PolicyCheck, GoesOnRightAfterALiteralThatCannotBeRead) {
  const std::string number(20, '9');
  const std::string name(256, 'n');
  for (const std::string& bad : {number, name, "\"" + name + "\"", "\"" + name + name + "\"",
                                 "10.0.0.1-" + number, number + "-1", "0x" + number + number}) {
    for (const char* next : {";", " ;", ", 10.0.0.1 };", "};", "\n};"}) {
      const std::string text = "create addrset \"a\" { " + bad + next +
                               "\ncreate addrset \"b\" whit;\ncreate addrset \"c\" { " + bad +
                               " };";
      const std::vector<std::string> lines = found(text);
      ASSERT_EQ(lines.size(), 3u) << text;
      EXPECT_NE(lines[0].find("1:22 value: "), std::string::npos) << lines[0];
      EXPECT_NE(lines[1].find(":20 syntax: unexpected `whit`"), std::string::npos) << lines[1];
      EXPECT_NE(lines[2].find(":22 value: "), std::string::npos) << lines[2];
    }
  }
}

TEST(PolicyCheck, ALongCommentThatIsNotClosedIsOneFind) {
  std::string text = "create addrset;\n/* ";
  while (text.size() < 6000000) text += "/* 99999999999999999999 \" \n";
  const std::vector<std::string> lines = found(text);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], "1:15 syntax: unexpected `;`");
  EXPECT_EQ(lines[1], "2:1 syntax: unexpected `/`");
}

}  // namespace
