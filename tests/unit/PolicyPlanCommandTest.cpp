/// Steps of plans as commands and as lines of text.

#include <gtest/gtest.h>

#include "FakeKernel.h"
#include "PlanCommand.h"
#include "StateText.h"
#include "TarnFWCmdList.h"

using namespace TarnFirewall;

namespace {

State stateOf(const std::string& text) { return stateOfText(text, "test.conf").state; }

const char kFrom[] =
    "create ruleset gone; create ruleset gone2; set jumpto of ruleset gone as gone2;"
    "set jumpto of ruleset gone2 as gone; create addrset old; create addrset old2;"
    "create ruleset a with rule 1 in protocol any from any to any jumpto b;"
    "create ruleset b with rule 2 in protocol any from any to any jumpto a;"
    "create ruleset k; create ruleset l; set jumpto of ruleset k as l;";
const char kTo[] =
    "create addrset s { 10.0.0.1, 2001:db8::1 }; create addrset e;"
    "create attrprofile p with { [ APP_ID : APP_HTTP, APP_DNS ] };"
    "create ruleset r with { rule 7 in protocol tcp from any to s port 80 accept tag \"x\";"
    " rule 8 out protocol any from any to any snat ip 192.0.2.1; };"
    "create ruleset k; create ruleset l; set jumpto of ruleset l as k;"
    "set root ruleset r and \"\";";

}  // namespace

/// The messages are those of the library's own commands for the same text.
TEST(PolicyPlanCommand, ACommandIsTheOneThatItsStatementMakes) {
  const State from = stateOf(kFrom), to = stateOf(kTo), none;
  const State oneSet = stateOf("create addrset old;");
  const State layered = stateOf("create ruleset r; create ruleset r_L2; set root ruleset r;");
  const State open = stateOf("create ruleset r; set root ruleset r;");
  const std::pair<const State*, const State*> ways[] = {
      {&from, &to}, {&to, &from}, {&to, &none}, {&oneSet, &none}, {&layered, &open}, {&none, &to}};
  std::size_t steps = 0;
  for (const auto& [before, after] : ways) {
    for (const PlanStep& step : planSteps(*before, *after)) {
      const std::string text = stepText(step, *after);
      const auto list = parseStatements(text, "step");
      ASSERT_EQ(list->size(), 1u) << text;
      const auto command = stepCommand(step, *after, nullptr);
      EXPECT_EQ(list->at(0).getCommand(), command->getCommand());
      EXPECT_EQ(requestOf(list->at(0)), requestOf(*command)) << text;
      ++steps;
    }
  }
  EXPECT_GT(steps, 25u);
}

TEST(PolicyPlanCommand, ACommandDoesWhatItsStepDoes) {
  const State to = stateOf(kTo);
  State byStep = stateOf(kFrom);
  State byCommand = byStep;
  for (const PlanStep& step : planSteps(byStep, to)) {
    applyStep(byStep, step, to);
    ASSERT_TRUE(applyStatement(byCommand, *stepCommand(step, to, nullptr)));
    ASSERT_EQ(byStep, byCommand) << shownStep(step, to);
  }
  EXPECT_EQ(byCommand, to);
}

TEST(PolicyPlanCommand, WhatHasNoTextIsACommentAndACommandAllTheSame) {
  State to = stateOf("create ruleset r with rule 7 in protocol any from any to any drop;");
  to.ruleSets.at("r").of(StateRules::filter)[0].origin = kRuleInternal;
  const auto steps = planSteps({}, to);
  ASSERT_EQ(steps.size(), 1u);
  EXPECT_EQ(stepText(steps[0], to).substr(0, 46),
            "# create ruleset \"r\" with 1 rule has no text: ");
  State made;
  applyStatement(made, *stepCommand(steps[0], to, nullptr));
  EXPECT_EQ(made, to);
}

TEST(PolicyPlanCommand, OtherPositionsInTheSameOrderNeedNoStep) {
  const std::string rule = " in protocol any from any to any drop;";
  const State plain = stateOf("create ruleset r with { rule 1" + rule + " rule 2" + rule + " };");
  const State placed =
      stateOf("create ruleset r with { rule 1 at 5" + rule + " rule 2 at 9" + rule + " };");
  const State turned =
      stateOf("create ruleset r with { rule 1 at 9" + rule + " rule 2 at 5" + rule + " };");
  EXPECT_TRUE(planSteps(plain, placed).empty());
  EXPECT_EQ(planSteps(plain, turned).size(), 1u);
}

TEST(PolicyPlanCommand, AStateThatNoFilterCanHoldIsNamed) {
  EXPECT_EQ(obstacleOf(stateOf("create ruleset a; create ruleset b; set jumpto of ruleset a as b;"
                               "destroy ruleset b;")),
            "rule set \"a\" jumps to \"b\", which nothing makes");
  EXPECT_EQ(obstacleOf(stateOf("set root ruleset a;")), "the root is \"a\", which nothing makes");
  EXPECT_EQ(obstacleOf(stateOf("create ruleset a; set root ruleset a;")), "");
  EXPECT_EQ(obstacleOf(stateOf("create ruleset a with rule 1 in protocol any from any to any "
                               "jumpto elsewhere;")),
            "");
}
