#include <gtest/gtest.h>

#include <new>

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

TEST(TarnFWParserActionsStatement, RefusesStatementsThatNothingCompilesByTheirWords) {
  for (const auto& [statement, words] : std::vector<std::pair<std::string, std::string>>{
           {"describe connection count", "describe connection count"},
           {"set connection", "set connection"},
           {"set connection with { from any:1 to any:2 }", "set connection"},
           {"set connection with { from any:1 to any:2, from any:1 to any:2 }", "set connection"},
           {"set connection with from 10.0.0.1 port 1 to any port 2", "set connection"},
           {"set connection with from 10.0.0.1:1 to any:2", "set connection"},
           {"set all connection", "set all connection"},
           {"describe connection stat", "describe connection stat"},
           {"describe connection stat from 5", "describe connection stat"},
           {"clear all connection", "clear all connection"},
           {"add domain2ip uuid 502e1f3a-c21a-632a-4ae1-00505699b626 with { 10.0.0.1 }",
            "add domain2ip"},
           {"set uid2sidmap u { a, b }", "set uid2sidmap"},
           {"set connattr 5 with { [ TLS_VERSION : 770, 771 ] }", "set connattr"},
           {"set connattr 10.0.0.1 1 10.0.0.2 2 tcp dir_in with { [ FQDN : uuid "
            "502e1f3a-c21a-632a-4ae1-00505699b626 ] }",
            "set connattr"}}) {
    EXPECT_EQ(parseFailure(statement + ";"),
              "7|statement '" + words + "' is not available in this build")
        << statement;
  }
}

TEST(TarnFWParserActionsStatement, DoesNotJudgeTheValuesOfStatementsThatNothingCompiles) {
  for (const auto& [statement, words] : std::vector<std::pair<std::string, std::string>>{
           {"set connection with from any port 65536 to any port 1", "set connection"},
           {"set uid2sidmap nonesuch { a }", "set uid2sidmap"},
           {"set connattr with { [ TLS_VERSION : 770 ] }", "set connattr"}}) {
    EXPECT_EQ(parseFailure(statement + ";"),
              "7|statement '" + words + "' is not available in this build")
        << statement;
  }
}

TEST(TarnFWParserActionsStatement, JudgesTheAddressesAndSelectorsOfStatementsThatNothingCompiles) {
  EXPECT_EQ(parseFailure("set all connection of vif x;"), "63|invalid vif uuid (x)");
  EXPECT_EQ(parseFailure("set connection with from any:65536 to any:1;"),
            "38|port number (65536) is invalid");
}

TEST(TarnFWParserActionsStatement, NothingBehindARefusedStatementIsRead) {
  const ParseText parse("destroy all ruleset; set connection; nonsense");
  EXPECT_EQ(parse.failure(), "7|statement 'set connection' is not available in this build");
  EXPECT_EQ(parse.list, nullptr);
}

namespace {

/// What an action that throws leaves: "status|lines of level 3".
template <typename Action>
std::string reported(Action&& action) {
  LogCapture log;
  fw_lex_extra_ extra;
  void* scanner = nullptr;
  EXPECT_EQ(yylex_init_extra(&extra, &scanner), 0);
  yy_buffer_state* const buffer = yy_scan_string("", scanner);
  yyset_lineno(1, scanner);
  FWStatus_t status = FW_STATUS_OK;
  auto* list = new CTarnFWCmdList;
  auto* config = new CTarnFWCmdConfig(false, "f", "");
  EXPECT_FALSE(attempt({&status, scanner, nullptr, &list, &config}, action));
  EXPECT_EQ(list, nullptr);
  EXPECT_EQ(config, nullptr);
  yy_delete_buffer(buffer, scanner);
  yylex_destroy(scanner);
  std::string text = std::to_string(status);
  for (const std::string& line : log.normalized()) text += "|" + line;
  return text;
}

const std::string kError = "|3|tarnfw: tarnfw_parser:yyerror():N [:1] ";

}  // namespace

TEST(TarnFWParserActionsStatement, ReportsWhatAnActionThrows) {
  EXPECT_EQ(reported([] { throw CParseFailure("words", 17); }), "17" + kError + "words\n");
  EXPECT_EQ(reported([] { throw CParseFailure("words"); }), "16" + kError + "words\n");
  EXPECT_EQ(reported([] { throw CIDTooLongException("x"); }),
            "32" + kError + "id is too long: x\n");
  EXPECT_EQ(reported([] { throw SilentParseFailure(); }), "0");
}

TEST(TarnFWParserActionsStatement, ReportsAnythingElseAsAnInternalError) {
  EXPECT_EQ(reported([] { throw std::bad_alloc(); }), "16" + kError + "internal error\n");
  EXPECT_EQ(reported([] { throw 5; }), "16" + kError + "internal error\n");
}
