#include <gtest/gtest.h>

#include "ParseText.h"
#include "TarnFWParserActionsStatement.h"

using namespace TarnFirewall;

TEST(TarnFWParserActionsStatement, KeepsTheOrderOfTheStatements) {
  const ParseText parse("destroy all ruleset; destroy all addrset; describe root ruleset;");
  ASSERT_EQ(parse.count(), 3u);
  EXPECT_EQ(parse.command(0).getCommand(), 60);
  EXPECT_EQ(parse.command(1).getCommand(), 65);
  EXPECT_EQ(parse.command(2).getCommand(), 4);
}

TEST(TarnFWParserActionsStatement, MakesAnEmptyListOfAnEmptyText) {
  const ParseText parse("# nothing\n");
  EXPECT_EQ(parse.result, 0);
  ASSERT_NE(parse.list, nullptr);
  EXPECT_EQ(parse.count(), 0u);
  EXPECT_EQ(parse.config, nullptr);
}

TEST(TarnFWParserActionsStatement, ChoosesAChannelWithoutACommand) {
  for (const auto& [statement, text, extra] :
       std::vector<std::tuple<std::string, std::string, std::string>>{
           {"config device \"/dev/x\";", "config device /dev/x", ""},
           {"config file \"/tmp/y\" save to \"/tmp/z\";", "config file /tmp/y", "/tmp/z"},
           {"config socket 127.0.0.1:7000 save to o;", "config socket 127.0.0.1:7000", "o"},
           {"config ribs 10.0.0.1:65535;", "config ribs 10.0.0.1:65535", ""}}) {
    const ParseText parse(statement);
    EXPECT_EQ(parse.failure(), "");
    EXPECT_EQ(parse.count(), 0u);
    ASSERT_NE(parse.config, nullptr) << statement;
    EXPECT_EQ(parse.config->toString(), text);
    EXPECT_EQ(parse.config->getExtra(), extra);
  }
}

TEST(TarnFWParserActionsStatement, ReadsAnAddressThatMeansNothingAsZero) {
  EXPECT_EQ(ParseText("config socket 999.0.0.1:70000;").config->toString(),
            "config socket 0.0.0.0:0");
}

TEST(TarnFWParserActionsStatement, KeepsTheLastChannel) {
  const ParseText parse("config device \"/dev/x\"; config file \"/tmp/y\";");
  EXPECT_EQ(parse.count(), 0u);
  ASSERT_NE(parse.config, nullptr);
  EXPECT_EQ(parse.config->toString(), "config file /tmp/y");
}

TEST(TarnFWParserActionsStatement, LeavesNoResultBehindAnError) {
  const ParseText parse("config device \"/dev/x\"; destroy all ruleset; destroy nothing;");
  EXPECT_EQ(parse.failure(),
            "16|syntax error, unexpected double-quoted string, expecting keyword ruleset or "
            "keyword addrset or keyword all");
  EXPECT_EQ(parse.list, nullptr);
  EXPECT_EQ(parse.config, nullptr);
}

TEST(TarnFWParserActionsStatement, LeavesNoResultBehindASilentError) {
  const ParseText parse("config device \"/dev/x\"; create nonesuch attrset a with x;");
  EXPECT_EQ(parse.result, 1);
  EXPECT_EQ(parse.status, 0u);
  for (const LogCapture::Line& line : parse.log.lines()) EXPECT_NE(line.priority, 3) << line.text;
  EXPECT_EQ(parse.list, nullptr);
  EXPECT_EQ(parse.config, nullptr);
}

TEST(TarnFWParserActionsStatement, EndsAtAScannerFailureBetweenStatementsWithoutAnError) {
  const ParseText parse("destroy all ruleset; 10.0.0.256-9 destroy all addrset;");
  EXPECT_EQ(parse.result, 0);
  EXPECT_EQ(parse.status, 0u);
  EXPECT_EQ(parse.count(), 1u);
}

TEST(TarnFWParserActionsStatement, ReportsAScannerFailureInsideAStatement) {
  EXPECT_EQ(parseFailure("create addrset a { 10.0.0.1, 10.0.0.256-9 };"),
            "33|invalid ip address - 10.0.0.256");
  EXPECT_EQ(parseFailure("destroy ruleset \"" + std::string(256, 'x') + "\";").substr(0, 24),
            "31|identifier too long -");
}

TEST(TarnFWParserActionsStatement, NamesFileAndLineOfAnError) {
  const ParseText parse("\n\ndestroy;");
  ASSERT_EQ(parse.log.lines().size(), 1u);
  EXPECT_NE(parse.log.lines()[0].text.find(" [name:3] syntax error"), std::string::npos);
}

TEST(TarnFWParserActionsStatement, RefusesStatementsThatNothingCompiles) {
  for (const char* statement :
       {"describe connection count",
        "set connection",
        "set connection with { from any:1 to any:2 }",
        "set connection with from 10.0.0.1 port 1 to any port 2",
        "set all connection",
        "describe connection stat",
        "describe connection stat from 5",
        "clear all connection",
        "describe exportver",
        "set exportver 2",
        "create attrprofile p with { [ a : b ] }",
        "delete attrprofile p",
        "add domain2ip uuid u with { 10.0.0.1 }",
        "set uid2sidmap u { a, b }",
        "set connattr 5 with { [ a : 5, 6 ] }",
        "set connattr 10.0.0.1 1 10.0.0.2 2 tcp dir_in with { [ a : b uuid c, uuid d ] }",
        "create spoofguard with ip { 10.0.0.1 } and mac 00:11:22:33:44:55",
        "create spoofguard with addrset a and mac 00:11:22:33:44:55",
        "delete spoofguard",
        "delete spoofguard with mac 00:11:22:33:44:55",
        "describe spoofguard",
        "describe stat of spoofguard",
        "describe stat of kif",
        "clear stat of kif",
        "describe config of lb",
        "describe stat of lb",
        "enable tcp strict",
        "disable tcp strict",
        "describe tcp strict",
        "set timeout t to 30",
        "set timeout to '1,2'",
        "describe timeout t",
        "describe timeout",
        "debug dp 1"}) {
    const std::string failure = parseFailure(std::string(statement) + ";");
    EXPECT_EQ(failure.substr(0, 13), "7|statement '") << statement << ": " << failure;
    EXPECT_NE(failure.find("' is not available in this build"), std::string::npos);
  }
}
