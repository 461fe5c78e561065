#include <gtest/gtest.h>

#include "ParseText.h"
#include "TarnFWParserActionsSelector.h"

using namespace TarnFirewall;

namespace {

const std::string kUuid = "00010203-0405-0607-0809-0a0b0c0d0e0f";
const std::string kGfy = "00 01 02 03 04 05 06 07-08 09 0a 0b 0c 0d 0e 0f";

/// Selector of a statement as "type identifier agent index".
std::string selector(const std::string& text) {
  const ParseText parse("describe root ruleset " + text + ";");
  EXPECT_EQ(parse.failure(), "");
  if (parse.count() != 1) return "(no command)";
  const dvs_port_& port = parse.command().currentPort();
  return std::to_string(selectorType(port)) + "|" + port.identifier + "|" + port.agent + "|" +
         std::to_string(selectorIndex(port));
}

std::string selectorFailure(const std::string& text) {
  return parseFailure("describe root ruleset of " + text + ";");
}

/// Leaves the process without a default selector at its end.
class DefaultSelector : public testing::Test {
 protected:
  ~DefaultSelector() override { g_tarnfw_default_dvsport = {}; }
};

}  // namespace

TEST(TarnFWParserActionsSelector, IsEmptyWithoutADefault) { EXPECT_EQ(selector(""), "0|||0"); }

TEST(TarnFWParserActionsSelector, TakesOfAndToAlike) {
  EXPECT_EQ(selector("of filter f"), "7|f||0");
  EXPECT_EQ(selector("to filter f"), "7|f||0");
}

TEST(TarnFWParserActionsSelector, ReadsAPortOfAnIdentifier) {
  EXPECT_EQ(selector("of dvsport " + kUuid + ":7"), "2|" + kGfy + "||7");
  EXPECT_EQ(selector("of dvsport " + kUuid + ".123"), "2|" + kGfy + "||123");
  EXPECT_EQ(selector("of vnic " + kUuid + ".7"), "1|" + kGfy + "||7");
}

TEST(TarnFWParserActionsSelector, ReadsAPortOfAQuotedText) {
  EXPECT_EQ(selector("of dvsport \"" + kUuid + ".007\""), "2|" + kGfy + "||7");
  EXPECT_EQ(selector("of vnic \"" + kGfy + ":012\""), "1|" + kGfy + "||12");
  EXPECT_EQ(selectorFailure("dvsport \"" + kUuid + "\""), "47|invalid vnic uuid (" + kUuid + ")");
  EXPECT_EQ(selectorFailure("vnic eth0"), "47|invalid vnic uuid (eth0)");
}

TEST(TarnFWParserActionsSelector, ReadsASwitchWithAPortOfTwentyFourBits) {
  EXPECT_EQ(selector("of dvswitch '" + kGfy + "' port 16777215"), "2|" + kGfy + "||16777215");
  EXPECT_EQ(selectorFailure("dvswitch '" + kGfy + "' port 16777216"),
            "17|switch port number overflows");
  EXPECT_EQ(selectorFailure("dvswitch '" + kGfy + "' port -1"), "17|switch port number overflows");
  EXPECT_EQ(selectorFailure("dvswitch s port 1"), "54|invalid switch id (s)");
}

TEST(TarnFWParserActionsSelector, ChecksTheNumberOfASwitchPortBeforeTheSwitch) {
  EXPECT_EQ(selectorFailure("dvswitch s port 16777216"), "17|switch port number overflows");
}

TEST(TarnFWParserActionsSelector, TakesAFilterNameOf63Bytes) {
  const std::string name(63, 'f');
  EXPECT_EQ(selector("of filter " + name), "7|" + name + "||0");
  EXPECT_EQ(selectorFailure("filter " + name + "f"), "62|filter name is too long (" + name + "f)");
}

TEST(TarnFWParserActionsSelector, TakesAVifOfExactly36Characters) {
  EXPECT_EQ(selector("of vif " + kUuid), "8|" + kUuid + "||0");
  EXPECT_EQ(selectorFailure("vif \"" + kUuid + "0\""), "63|invalid vif uuid (" + kUuid + "0)");
  EXPECT_EQ(selectorFailure("vif \"" + kUuid.substr(1) + "\""),
            "63|invalid vif uuid (" + kUuid.substr(1) + ")");
  EXPECT_EQ(selectorFailure("vif " + std::string(36, 'x')),
            "63|invalid vif uuid (" + std::string(36, 'x') + ")");
}

TEST_F(DefaultSelector, HoldsFromItsStatementOnAndForLaterParses) {
  const ParseText parse(
      "describe root ruleset; config default agent a and filter f; describe root ruleset;");
  ASSERT_EQ(parse.failure(), "");
  ASSERT_EQ(parse.count(), 2u);
  EXPECT_EQ(selectorType(parse.command(0).currentPort()), FW_SELECTOR_NONE);
  EXPECT_EQ(selectorType(parse.command(1).currentPort()), FW_SELECTOR_FILTER);
  EXPECT_EQ(selector(""), "7|f|a|0");
}

TEST_F(DefaultSelector, StaysWhenTheParseFailsAfterIt) {
  EXPECT_NE(parseFailure("config default agent a and filter f; nonsense;"), "");
  EXPECT_EQ(selector(""), "7|f|a|0");
}

TEST_F(DefaultSelector, IsWholeAndHasTheAgentOfItsStatement) {
  EXPECT_EQ(parseFailure("config default agent a and filter f;"), "");
  EXPECT_EQ(parseFailure("config default agent b and vnic " + kUuid + ":7;"), "");
  EXPECT_EQ(selector(""), "1|" + kGfy + "|b|7");
}

TEST_F(DefaultSelector, GivesItsAgentToPortsOnly) {
  EXPECT_EQ(parseFailure("config default agent a and filter f;"), "");
  EXPECT_EQ(selector("of dvsport " + kUuid + ":7"), "2|" + kGfy + "|a|7");
  EXPECT_EQ(selector("of vnic \"" + kUuid + ".007\""), "1|" + kGfy + "|a|7");
  EXPECT_EQ(selector("of dvswitch '" + kGfy + "' port 1"), "2|" + kGfy + "|a|1");
  EXPECT_EQ(selector("of filter g"), "7|g||0");
  EXPECT_EQ(selector("of vif " + kUuid), "8|" + kUuid + "||0");
}

TEST_F(DefaultSelector, CutsAnAgentOfMoreThan31Characters) {
  EXPECT_EQ(parseFailure("config default agent " + std::string(40, 'a') + " and filter f;"), "");
  EXPECT_EQ(selector(""), "7|f|" + std::string(31, 'a') + "|0");
}
