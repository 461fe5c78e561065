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

TEST(TarnFWParserActionsStatement, LeavesNoResultAfterAnError) {
  const ParseText parse("config device \"/dev/x\"; destroy all ruleset; destroy nothing;");
  EXPECT_EQ(parse.failure(),
            "16|syntax error, unexpected double-quoted string, expecting keyword ruleset or "
            "keyword addrset or keyword all");
  EXPECT_EQ(parse.list, nullptr);
  EXPECT_EQ(parse.config, nullptr);
}

TEST(TarnFWParserActionsStatement, LeavesNoResultAfterASilentError) {
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

TEST(TarnFWParserActionsStatement, NothingAfterARefusedStatementIsRead) {
  const ParseText parse("destroy all ruleset; debug dp 16; nonsense");
  EXPECT_EQ(parse.failure(), "17|debug level value overflows");
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
  try {
    action();
    ADD_FAILURE() << "the action does not throw";
  } catch (...) {
    reportParseFailure({&status, scanner, nullptr, &list, &config});
  }
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
