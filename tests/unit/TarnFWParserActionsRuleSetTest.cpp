#include <gtest/gtest.h>

#include "Expect.h"
#include "ParseText.h"
#include "TarnFWParserActionsRuleSet.h"

using namespace TarnFirewall;

namespace {

const std::string k63(63, 'n');
const std::string k64(64, 'n');
const std::string kRule = "rule 1 inout protocol any from any to any drop";

/// Command number of the only command of a statement.
int number(const std::string& statement) {
  const ParseText parse(statement);
  EXPECT_EQ(parse.failure(), "") << statement;
  return parse.count() == 1 ? parse.command().getCommand() : -1;
}

}  // namespace

TEST(TarnFWParserActionsRuleSet, CreatesARuleSetWithItsRules) {
  for (const std::string& body :
       {" with { " + kRule + "; };", " { " + kRule + "; };", " with " + kRule + ";"}) {
    const ParseText parse("create ruleset r of filter f" + body);
    ASSERT_EQ(parse.failure(), "");
    ASSERT_EQ(parse.count(), 1u);
    EXPECT_EQ(parse.command().getCommand(), 3);
    EXPECT_STREQ(parse.command().currentPort().identifier, "f");
    EXPECT_EQ(parse.field(64), "r");
    EXPECT_EQ(parse.word(136), 1u);
    EXPECT_EQ(parse.body().size(), 168u + 892);
  }
}

TEST(TarnFWParserActionsRuleSet, CreatesAnEmptyRuleSet) {
  const ParseText parse("create ruleset r;");
  ASSERT_EQ(parse.failure(), "");
  EXPECT_EQ(parse.field(64), "r");
  EXPECT_EQ(parse.word(136), 0u);
  EXPECT_EQ(parse.body().size(), 168u);
}

TEST(TarnFWParserActionsRuleSet, KeepsTheRulesInTheirOrder) {
  const ParseText parse(
      "create ruleset r { rule 9 in protocol any from any to any drop; "
      "rule 3 in protocol any from any to any drop; rule 5 in protocol any from any to any drop; "
      "};");
  ASSERT_EQ(parse.failure(), "");
  EXPECT_EQ(parse.word(136), 3u);
  EXPECT_EQ(parse.word(168), 9u);
  EXPECT_EQ(parse.word(168 + 892), 3u);
  EXPECT_EQ(parse.word(168 + 2 * 892), 5u);
}

TEST(TarnFWParserActionsRuleSet, ShowsTheJumpTargetInTheTextOnly) {
  const ParseText parse("create ruleset r jumpto j with { " + kRule + "; };");
  ASSERT_EQ(parse.failure(), "");
  EXPECT_NE(parse.text().find("create ruleset r jumpto j with {"), std::string::npos)
      << parse.text();
  EXPECT_EQ(parse.field(0), "");
}

TEST(TarnFWParserActionsRuleSet, TakesNamesOf63Bytes) {
  EXPECT_EQ(parseFailure("create ruleset " + k63 + ";"), "");
  EXPECT_EQ(parseFailure("create ruleset " + k63 + " { " + kRule + "; };"), "");
  EXPECT_EQ(parseFailure("destroy ruleset " + k63 + ";"), "");
}

TEST(TarnFWParserActionsRuleSet, RefusesNamesOf64BytesInEveryStatement) {
  const std::string message = "32|ruleset name (" + k64 + ") is too long";
  for (const std::string& statement :
       {"create ruleset " + k64 + ";",
        "create ruleset " + k64 + " with { " + kRule + "; };",
        "create ruleset " + k64 + " { " + kRule + "; };",
        "create ruleset " + k64 + " with " + kRule + ";",
        "create ruleset " + k64 + " jumpto j with { " + kRule + "; };",
        "create ruleset r jumpto " + k64 + " with { " + kRule + "; };",
        "set root ruleset " + k64 + " and s;",
        "set root ruleset s and " + k64 + ";",
        "destroy ruleset " + k64 + ";",
        "set jumpto of ruleset " + k64 + " as s;",
        "set jumpto of ruleset r as " + k64 + ";",
        "describe jumpto of ruleset " + k64 + ";",
        "clear jumpto of ruleset " + k64 + ";",
        "clear rule of ruleset " + k64 + ";",
        "describe rule count of ruleset " + k64 + ";",
        "describe snat rule count of ruleset " + k64 + ";",
        "describe dnat rule count of ruleset " + k64 + ";",
        "describe info of ruleset " + k64 + ";",
        "describe rule of ruleset " + k64 + ";",
        "describe rule of ruleset " + k64 + " from 1;",
        "describe rule of ruleset " + k64 + " with 1;",
        "describe snat stat of ruleset " + k64 + ";",
        "describe dnat stat of ruleset " + k64 + " with { 1, 2 };"}) {
    EXPECT_EQ(parseFailure(statement), message) << statement;
  }
}

TEST(TarnFWParserActionsRuleSet, NamesTheJumpTargetOrTheSecondNameFirst) {
  const std::string other(65, 'o');
  const std::string message = "32|ruleset name (" + other + ") is too long";
  EXPECT_EQ(
      parseFailure("create ruleset " + k64 + " jumpto " + other + " with { " + kRule + "; };"),
      message);
  EXPECT_EQ(parseFailure("set jumpto of ruleset " + k64 + " as " + other + ";"), message);
  EXPECT_EQ(parseFailure("set root ruleset " + k64 + " and " + other + ";"), message);
}

TEST(TarnFWParserActionsRuleSet, DerivesTheLayer2RootFromOneName) {
  const ParseText parse("set root ruleset r of filter f;");
  ASSERT_EQ(parse.failure(), "");
  EXPECT_EQ(parse.command().getCommand(), 3);
  EXPECT_EQ(parse.field(64), "");
  EXPECT_EQ(parse.word(136), 2u);
  // The action of a rule stands 460 bytes into its record, the jump target at its beginning.
  EXPECT_EQ(parse.field(168 + 460), "r");
  EXPECT_EQ(parse.field(168 + 892 + 460), "r_L2");
}

TEST(TarnFWParserActionsRuleSet, TakesTwoNamesOfRoots) {
  const ParseText parse("set root ruleset r and s;");
  ASSERT_EQ(parse.failure(), "");
  EXPECT_EQ(parse.field(168 + 460), "r");
  EXPECT_EQ(parse.field(168 + 892 + 460), "s");
}

TEST(TarnFWParserActionsRuleSet, RefusesARootOf61BytesUnlessBothNamesAreGiven) {
  const std::string k60(60, 'n');
  const std::string k61(61, 'n');
  const ParseText longest("set root ruleset " + k60 + ";");
  EXPECT_EQ(longest.failure(), "");
  EXPECT_EQ(longest.field(168 + 892 + 460), k60 + "_L2");
  EXPECT_EQ(parseFailure("set root ruleset " + k61 + ";"),
            "32|root ruleset name (" + k61 + ") is too long");
  EXPECT_EQ(parseFailure("set root ruleset " + k63 + " and " + k63 + ";"), "");
}

TEST(TarnFWParserActionsRuleSet, PassesTheFailureOfTheRootCommandOn) {
  EXPECT_EQ(parseFailure("set root ruleset '' and '';"), "3|root ruleset name is empty");
}

TEST(TarnFWParserActionsRuleSet, MakesTheCommandOfEachStatement) {
  EXPECT_EQ(number("describe root ruleset;"), 4);
  EXPECT_EQ(number("clear root ruleset;"), 36);
  EXPECT_EQ(number("destroy ruleset r;"), 7);
  EXPECT_EQ(number("destroy all ruleset;"), 60);
  EXPECT_EQ(number("set jumpto of ruleset r as s;"), 61);
  EXPECT_EQ(number("describe jumpto of ruleset r;"), 62);
  EXPECT_EQ(number("clear jumpto of ruleset r;"), 63);
  EXPECT_EQ(number("clear rule of ruleset r;"), 6);
  EXPECT_EQ(number("describe rule count of ruleset r;"), 8);
  EXPECT_EQ(number("describe info of ruleset r;"), 9);
  EXPECT_EQ(number("describe rule of ruleset r;"), 10);
  EXPECT_EQ(number("describe stat of ruleset r;"), 11);
  EXPECT_EQ(number("describe count of ruleset;"), 1);
  EXPECT_EQ(number("describe list of ruleset;"), 2);
}

TEST(TarnFWParserActionsRuleSet, PutsBothNamesOfAJumpInTheirPlaces) {
  const ParseText parse("set jumpto of ruleset r as s of filter f;");
  ASSERT_EQ(parse.failure(), "");
  EXPECT_EQ(parse.field(0), "r");
  EXPECT_EQ(parse.field(64), "s");
  EXPECT_STREQ(parse.command().currentPort().identifier, "f");
}

TEST(TarnFWParserActionsRuleSet, TellsTheKindOfTheRules) {
  int kind = 0;
  for (const char* word : {"", "snat ", "dnat "}) {
    const std::string count = std::string("describe ") + word + "rule count of ruleset r;";
    EXPECT_EQ(ParseText(count).body()[64] & 3, kind);
    for (const char* what : {"rule", "stat"}) {
      const std::string read = std::string("describe ") + word + what + " of ruleset r";
      EXPECT_EQ(ParseText(read + ";").body()[74] & 3, kind) << read;
      EXPECT_EQ(ParseText(read + " from 5;").body()[74] & 3, kind) << read;
      EXPECT_EQ(ParseText(read + " with 5;").body()[74] & 3, kind) << read;
    }
    ++kind;
  }
}

TEST(TarnFWParserActionsRuleSet, ReadsTenThousandRulesFromAnIndex) {
  for (const char* what : {"rule", "snat rule", "dnat rule", "stat", "snat stat", "dnat stat"}) {
    const std::string statement = std::string("describe ") + what + " of ruleset r";
    const ParseText all(statement + ";");
    ASSERT_EQ(all.failure(), "");
    EXPECT_EQ(all.field(0), "r");
    EXPECT_EQ(all.word(64), 10000u);
    EXPECT_EQ(all.word(68), 0u);
    EXPECT_EQ(all.body()[72] & 1, 1);
    const ParseText later(statement + " from 4294967295;");
    EXPECT_EQ(later.word(64), 10000u);
    EXPECT_EQ(later.word(68), 0xffffffffu);
  }
}

TEST(TarnFWParserActionsRuleSet, ReadsRulesByIdInAscendingOrder) {
  const ParseText parse("describe rule of ruleset r of filter f with { 20, 10, 20, };");
  ASSERT_EQ(parse.failure(), "");
  EXPECT_EQ(parse.word(64), 2u);
  EXPECT_EQ(parse.body()[72] & 1, 0);
  EXPECT_EQ(parse.word(96), 10u);
  EXPECT_EQ(parse.word(100), 20u);
  EXPECT_EQ(ParseText("describe stat of ruleset r with 7;").word(80), 7u);
  EXPECT_EQ(ParseText("describe stat of ruleset r with 4294967303;").word(80), 7u);
}

TEST(TarnFWParserActionsRuleSet, RefusesAnIndexOfMoreThan32Bits) {
  for (const char* what : {"rule", "snat rule", "dnat rule", "stat", "snat stat", "dnat stat"}) {
    const std::string statement = std::string("describe ") + what + " of ruleset ";
    EXPECT_EQ(parseFailure(statement + "r from 4294967296;"), "17|rule position value overflows");
    EXPECT_EQ(parseFailure(statement + "r from -1;"), "17|rule position value overflows");
    EXPECT_EQ(parseFailure(statement + k64 + " from 4294967296;"),
              "32|ruleset name (" + k64 + ") is too long");
  }
  EXPECT_EQ(parseFailure("describe list of ruleset from 4294967296;"),
            "17|rule index value overflows");
}

TEST(TarnFWParserActionsRuleSet, ListsTenThousandNamesFromAnIndex) {
  const ParseText all("describe list of ruleset;");
  EXPECT_EQ(all.word(0), 10000u);
  EXPECT_EQ(all.word(4), 0u);
  EXPECT_EQ(ParseText("describe list of ruleset from 7 to filter f;").word(4), 7u);
}

TEST(TarnFWParserActionsRuleSet, SendsExactlyTheseBytesForEachStatement) {
  const Bytes rules = Bytes(96 + 10000 * 896).text(0, "r").at(64, {0x10, 0x27}).at(72, {1});
  const Bytes stats = Bytes(80 + 10000 * 68).text(0, "r").at(64, {0x10, 0x27}).at(72, {1});
  const Bytes rulesByID = Bytes(96 + 2 * 896).text(0, "r").at(64, {2}).at(96, {4, 0, 0, 0, 9});
  const Bytes statsByID = Bytes(80 + 2 * 68).text(0, "r").at(64, {2}).at(80, {4, 0, 0, 0, 9});
  const auto with = [](Bytes bytes, std::size_t offset, std::initializer_list<int> more) {
    return bytes.at(offset, more);
  };
  const Bytes list = Bytes(12 + 10000 * 64).at(0, {0x10, 0x27});
  struct Row {
    const char* statement;
    int command;
    Bytes body;
  };
  for (const Row& row : std::vector<Row>{
           {"create ruleset r", 3, Bytes(168).text(64, "r").at(140, {3})},
           {"describe root ruleset", 4, Bytes(132)},
           {"clear root ruleset", 36, Bytes(4)},
           {"destroy ruleset r", 7, Bytes(64).text(0, "r")},
           {"destroy all ruleset", 60, Bytes(4)},
           {"set jumpto of ruleset r as s", 61, Bytes(128).text(0, "r").text(64, "s")},
           {"describe jumpto of ruleset r", 62, Bytes(128).text(0, "r")},
           {"clear jumpto of ruleset r", 63, Bytes(64).text(0, "r")},
           {"clear rule of ruleset r", 6, Bytes(72).text(0, "r")},
           {"describe rule count of ruleset r", 8, Bytes(72).text(0, "r")},
           {"describe snat rule count of ruleset r", 8, Bytes(72).text(0, "r").at(64, {1})},
           {"describe dnat rule count of ruleset r", 8, Bytes(72).text(0, "r").at(64, {2})},
           {"describe info of ruleset r", 9, Bytes(84).text(0, "r")},
           {"describe rule of ruleset r", 10, rules},
           {"describe rule of ruleset r from 258", 10, with(rules, 68, {2, 1})},
           {"describe rule of ruleset r with { 9, 4 }", 10, rulesByID},
           {"describe snat rule of ruleset r", 10, with(rules, 74, {1})},
           {"describe snat rule of ruleset r from 258", 10, with(rules, 68, {2, 1, 0, 0, 1, 0, 1})},
           {"describe snat rule of ruleset r with { 9, 4 }", 10, with(rulesByID, 74, {1})},
           {"describe dnat rule of ruleset r", 10, with(rules, 74, {2})},
           {"describe dnat rule of ruleset r from 258", 10, with(rules, 68, {2, 1, 0, 0, 1, 0, 2})},
           {"describe dnat rule of ruleset r with { 9, 4 }", 10, with(rulesByID, 74, {2})},
           {"describe stat of ruleset r", 11, stats},
           {"describe stat of ruleset r from 258", 11, with(stats, 68, {2, 1})},
           {"describe stat of ruleset r with { 9, 4 }", 11, statsByID},
           {"describe snat stat of ruleset r", 11, with(stats, 74, {1})},
           {"describe snat stat of ruleset r from 258", 11, with(stats, 68, {2, 1, 0, 0, 1, 0, 1})},
           {"describe snat stat of ruleset r with { 9, 4 }", 11, with(statsByID, 74, {1})},
           {"describe dnat stat of ruleset r", 11, with(stats, 74, {2})},
           {"describe dnat stat of ruleset r from 258", 11, with(stats, 68, {2, 1, 0, 0, 1, 0, 2})},
           {"describe dnat stat of ruleset r with { 9, 4 }", 11, with(statsByID, 74, {2})},
           {"describe count of ruleset", 1, Bytes(4)},
           {"describe list of ruleset", 2, list},
           {"describe list of ruleset from 258", 2, with(list, 4, {2, 1})},
       }) {
    const ParseText parse(std::string(row.statement) + ";");
    ASSERT_EQ(parse.failure(), "") << row.statement;
    ASSERT_EQ(parse.count(), 1u) << row.statement;
    EXPECT_EQ(parse.command().getCommand(), row.command) << row.statement;
    EXPECT_TRUE(parse.body() == row.body) << row.statement;
  }
}

TEST(TarnFWParserActionsRuleSet, SendsARootAsItsJumpRules) {
  Bytes expected = Bytes(168 + 2 * 892).at(136, {2, 0, 0, 0, 3});
  for (const int number : {1, 2}) {
    const std::size_t at = 168 + 892 * static_cast<std::size_t>(number - 1);
    expected.at(at, {number, 0, 0, 0, number}).text(at + 460, "r").at(at + 750, {4});
    expected.at(at + 790, {number == 1 ? 0x10 : 0}).at(at + 796, {1}).at(at + 884, {1});
  }
  const ParseText both("set root ruleset r and r;");
  ASSERT_EQ(both.failure(), "");
  EXPECT_TRUE(both.body() == expected);
  const ParseText one("set root ruleset r;");
  EXPECT_TRUE(one.body() == expected.text(168 + 892 + 460, "r_L2"));
}
