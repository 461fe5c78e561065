/// The way from one state to another: which statements, in which order, and what holds in between.

#include <gtest/gtest.h>

#include "Choices.h"
#include "LanguageText.h"
#include "Plan.h"
#include "PolicyTextGenerator.h"
#include "StateText.h"

using namespace TarnFirewall;

namespace {

using Texts = std::vector<std::string>;

State stateOf(const std::string& text) { return stateOfText(text, "test.conf").state; }

Texts plan(const std::string& from, const std::string& to) {
  const State target = stateOf(to);
  Texts texts;
  for (const PlanStep& step : planSteps(stateOf(from), target)) {
    texts.push_back(stepStatement(step, target));
  }
  return texts;
}

/// A rule set with a rule for each target that it jumps to, and one with an id.
std::string ruleSet(const std::string& name, const Texts& targets, int id = 1) {
  std::string text = "create ruleset " + name + " with { rule " + std::to_string(id) +
                     " in protocol any from any to any drop;";
  for (const std::string& target : targets) {
    text += " rule 9 in protocol any from any to any jumpto " + target + ";";
  }
  return text + " };";
}

/// What refers to something that is not there, by its name; empty where nothing does.
std::string dangling(const State& state) {
  const auto missing = [&](const std::string& name) {
    return !name.empty() && !state.ruleSets.contains(name);
  };
  if (missing(state.layer3) || missing(state.layer2)) return "the root";
  for (const auto& [name, set] : state.ruleSets) {
    if (missing(set.jump)) return "the jump of " + name;
    for (const auto& rules : set.rules) {
      for (const FWRule_& rule : rules) {
        const StateReferences references = referencesOf(rule);
        if (missing(std::string(references.jump))) return "a rule of " + name;
        for (const std::string_view used : references.sets()) {
          if (!used.empty() && !state.sets.contains(used)) return "an address of " + name;
        }
      }
    }
  }
  return {};
}

bool isRemoval(PlanStep::Kind kind) {
  using Kind = PlanStep::Kind;
  return kind == Kind::clearJump || kind == Kind::clearRules || kind == Kind::destroyRuleSet ||
         kind == Kind::destroySet || kind == Kind::destroyAllSets;
}

}  // namespace

TEST(PolicyPlan, EqualStatesNeedNothing) {
  const std::string text = ruleSet("a", {"b"}) + ruleSet("b", {}) +
                           "create addrset s 10.0.0.1;"
                           "set jumpto of ruleset b as a; set root ruleset a;";
  EXPECT_EQ(plan(text, text), Texts{});
  EXPECT_EQ(plan("", ""), Texts{});
}

TEST(PolicyPlan, TheRootChangesWhenAllThatItLeadsToIsThere) {
  EXPECT_EQ(
      plan("create addrset old; create ruleset old; set root ruleset old and \"\";",
           "create addrset new 10.0.0.1;" + ruleSet("new", {"target"}) +
               "create ruleset target; set jumpto of ruleset target as new;"
               "set root ruleset new and \"\";"),
      (Texts{"create addrset \"new\" with 10.0.0.1", "create ruleset \"target\"",
             "create ruleset \"new\" with {\n"
             "    rule 1 in protocol any from any to any drop;\n"
             "    rule 9 in protocol any from any to any jumpto \"target\";\n"
             "}",
             "set jumpto of ruleset \"target\" as \"new\"", "set root ruleset \"new\" and \"\"",
             "destroy ruleset \"old\"", "destroy addrset \"old\""}));
}

TEST(PolicyPlan, OneStatementForEachThingThatChanged) {
  EXPECT_EQ(plan("create addrset a 10.0.0.1; create addrset b 10.0.0.1; create ruleset r; create "
                 "ruleset s;"
                 "set jumpto of ruleset r as s;",
                 "create addrset a 10.0.0.2; create addrset b 10.0.0.1; create ruleset r; create "
                 "ruleset s;"
                 "set jumpto of ruleset s as r;"),
            (Texts{"create addrset \"a\" with 10.0.0.2", "clear jumpto of ruleset \"r\"",
                   "set jumpto of ruleset \"s\" as \"r\""}));
}

TEST(PolicyPlan, EverythingGoesWithTwoStatements) {
  EXPECT_EQ(
      plan("create addrset a; create addrset b; create ruleset r; set root ruleset r and \"\";",
           ""),
      (Texts{"destroy all ruleset", "destroy all addrset"}));
  EXPECT_EQ(plan("create addrset a; create ruleset r;", ""),
            (Texts{"destroy ruleset \"r\"", "destroy addrset \"a\""}));
  // What is to stay goes on all the time.
  EXPECT_EQ(
      plan("create ruleset a; create ruleset b; create ruleset c; set root ruleset a and \"\";",
           "create ruleset a;"),
      (Texts{"clear root ruleset", "destroy ruleset \"c\"", "destroy ruleset \"b\""}));
}

TEST(PolicyPlan, RuleSetsGoAfterThoseThatLeadToThem) {
  EXPECT_EQ(plan(ruleSet("a", {"c"}) + "create ruleset b; set jumpto of ruleset b as a;"
                                       "create ruleset c; create ruleset kept;",
                 "create ruleset kept;"),
            (Texts{"destroy ruleset \"b\"", "destroy ruleset \"a\"", "destroy ruleset \"c\""}));
}

TEST(PolicyPlan, ACircleIsOpenedBeforeItGoesAndClosedAtTheEnd) {
  const std::string circle = ruleSet("a", {"b"}) + ruleSet("b", {"a"}) +
                             "create ruleset kept;"
                             "create ruleset self; set jumpto of ruleset self as self;";
  EXPECT_EQ(plan("create ruleset kept;", circle),
            (Texts{"create ruleset \"b\"",
                   "create ruleset \"a\" with {\n"
                   "    rule 1 in protocol any from any to any drop;\n"
                   "    rule 9 in protocol any from any to any jumpto \"b\";\n"
                   "}",
                   "create ruleset \"b\" with {\n"
                   "    rule 1 in protocol any from any to any drop;\n"
                   "    rule 9 in protocol any from any to any jumpto \"a\";\n"
                   "}",
                   "create ruleset \"self\"", "set jumpto of ruleset \"self\" as \"self\""}));
  EXPECT_EQ(
      plan(circle, "create ruleset kept;"),
      (Texts{"clear jumpto of ruleset \"self\"", "destroy ruleset \"self\"",
             "clear rule of ruleset \"b\"", "destroy ruleset \"a\"", "destroy ruleset \"b\""}));
}

TEST(PolicyPlan, ACircleThroughWhatIsThereNeedsNoStatementMore) {
  // Whichever of the two is new.
  for (const char* const old : {"a", "b"}) {
    EXPECT_EQ(
        plan(std::string("create ruleset ") + old + ";", ruleSet("a", {"b"}) + ruleSet("b", {"a"}))
            .size(),
        2u);
  }
  // Nor does one that a jump closes, which comes after.
  EXPECT_EQ(
      plan("", ruleSet("a", {"b"}) + "create ruleset b; set jumpto of ruleset b as a;").size(), 3u);
  EXPECT_EQ(
      plan("", ruleSet("b", {"a"}) + "create ruleset a; set jumpto of ruleset a as b;").size(), 3u);
}

TEST(PolicyPlan, CirclesThatMeetAreOpenedWhereTheyMeet) {
  const std::string meeting = ruleSet("a", {"m"}) + ruleSet("b", {"m"}) + ruleSet("c", {"m"}) +
                              ruleSet("m", {"a", "b", "c"}) + "create ruleset kept;";
  EXPECT_EQ(plan("create ruleset kept;", meeting).size(), 5u);
  EXPECT_EQ(plan(meeting, "create ruleset kept;"),
            (Texts{"clear rule of ruleset \"m\"", "destroy ruleset \"a\"", "destroy ruleset \"c\"",
                   "destroy ruleset \"b\"", "destroy ruleset \"m\""}));
}

TEST(PolicyPlan, ARootLeavesARuleSetThatGoesAndNamesItAgain) {
  const std::string before = "create ruleset r; create ruleset r_L2; set root ruleset r;";
  const std::string after = "create ruleset r; set root ruleset r;";
  EXPECT_EQ(plan(before, after),
            (Texts{"set root ruleset \"r\" and \"\"", "destroy ruleset \"r_L2\"",
                   "set root ruleset \"r\" and \"r_L2\""}));
  EXPECT_EQ(plan("create ruleset r; create ruleset r_L2; set root ruleset r and \"\";", after),
            (Texts{"destroy ruleset \"r_L2\"", "set root ruleset \"r\" and \"r_L2\""}));
  EXPECT_EQ(plan("create ruleset q; create ruleset r_L2; set root ruleset q;", after),
            (Texts{"create ruleset \"r\"", "destroy ruleset \"r_L2\"",
                   "set root ruleset \"r\" and \"r_L2\"", "destroy ruleset \"q\""}));
  EXPECT_EQ(plan(after, before), (Texts{"create ruleset \"r_L2\""}));
}

TEST(PolicyPlan, StepsAreShownOnALine) {
  const State to = stateOf(
      "create addrset \"a\nb\" { 10.0.0.1, 10.0.0.2 };"
      "create attrprofile p with { [ APP_ID : APP_HTTP ] };" +
      ruleSet("r", {}) + "set jumpto of ruleset r as r; set root ruleset r;");
  Texts texts;
  for (const PlanStep& step : planSteps({}, to)) texts.push_back(shownStep(step, to));
  EXPECT_EQ(texts,
            (Texts{"create addrset \"a\\x0ab\" with 2 members",
                   "create attrprofile \"p\" with 1 member", "create ruleset \"r\" with 1 rule",
                   "set jumpto of ruleset \"r\" as \"r\"", "set root ruleset \"r\" and \"r_L2\""}));
  texts.clear();
  for (const PlanStep& step : planSteps(to, {})) texts.push_back(shownStep(step, {}));
  EXPECT_EQ(texts, (Texts{"destroy all ruleset", "destroy all addrset"}));
}

TEST(PolicyPlan, WhatCannotBeSaidHasNoStatement) {
  State to = stateOf(ruleSet("r", {}));
  to.ruleSets.at("r").of(StateRules::filter)[0].action.action = 99;
  const auto steps = planSteps({}, to);
  ASSERT_EQ(steps.size(), 1u);
  EXPECT_THROW(stepStatement(steps[0], to), Unsayable);
}

/// The plan of any two states leads from one to the other, by the steps as by the texts of their
/// statements; on the way nothing refers to what is not there; after the root has changed things
/// are taken away only.
TEST(PolicyPlan, LeadsThereAndNothingDanglesOnTheWay) {
  for (std::uint64_t seed = 1; seed <= 4000; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Choices choices(seed);
    const std::string before = generatedPolicyText(choices);
    const std::string after = choices.chance(5) ? "" : generatedPolicyText(choices);
    const State to = stateOf(after);
    State state = stateOf(before);
    ASSERT_EQ(dangling(state), "");
    ASSERT_EQ(dangling(to), "");
    const auto steps = planSteps(state, to);
    State carried = state;
    bool rootChanged = false;
    for (const PlanStep& step : steps) {
      applyStep(state, step, to);
      ASSERT_EQ(dangling(state), "")
          << shownStep(step, to) << "\nfrom " << before << "\nto " << after;
      const auto statements = parseStatements(stepStatement(step, to) + ";", "step");
      for (std::size_t i = 0; i < statements->size(); ++i)
        applyStatement(carried, statements->at(i));
      ASSERT_TRUE(carried == state) << shownStep(step, to);
      if (rootChanged) {
        EXPECT_TRUE(isRemoval(step.kind)) << shownStep(step, to);
      }
      if (step.kind == PlanStep::Kind::setRoot || step.kind == PlanStep::Kind::clearRoot) {
        rootChanged = true;
      }
    }
    ASSERT_TRUE(state == to) << "from " << before << "\nto " << after;
    ASSERT_TRUE(planSteps(state, to).empty());
  }
}
