// getrules against a scripted kernel: its options, which rule sets it shows, and their rules.
#include <gtest/gtest.h>

#include "RuleKernel.h"
#include "tarnfw.h"

using namespace RuleTest;

// --- Options

TEST(GetRules, HasAnAlias) {
  RuleKernel kernel;
  EXPECT_EQ(runCommand({"getrule", "-f", kFilter}), (CommandResult{0, "No rules.\n", ""}));
}

TEST(GetRules, RefusesARuleSetNameOf64Characters) {
  RuleKernel kernel;
  const std::string name(64, 'r');
  EXPECT_EQ(getRules({"-r", name}),
            (CommandResult{1, "", "ERROR: invalid ruleset name " + name + "\n"}));
  EXPECT_EQ(getRules({"-r", name.substr(1)}), (CommandResult{0, "No rules.\n", ""}));
}

TEST(GetRules, TakesOneModeOnly) {
  const CommandResult refused{1, "", "ERROR: only one of -s, -d, and -i can be specified.\n"};
  for (const char* modes : {"-sd", "-si", "-di", "-sdi"}) EXPECT_EQ(getRules({modes}), refused);
}

TEST(GetRules, AsksTheFilterByNameAndAgent) {
  RuleKernel kernel;
  getRules();
  const auto port = kernel.kernel().last().port.value();
  EXPECT_STREQ(port.identifier, kFilter);
  EXPECT_STREQ(port.agent, "kelpco-sfw");
  EXPECT_EQ(port.type, 7);
}

TEST(GetRules, AFilterWithoutAnAgentGetsTheDefaultOne) {
  RuleKernel kernel;
  EXPECT_EQ(runCommand({"getrules", "-f", "vif-1"}), (CommandResult{0, "No rules.\n", ""}));
  const auto port = kernel.kernel().last().port.value();
  EXPECT_STREQ(port.identifier, "vif-1");
  EXPECT_STREQ(port.agent, "kelpco-sfw");
  EXPECT_EQ(port.type, 8);
}

// --- The rule sets

TEST(GetRules, AFilterWithoutRuleSetsHasNoRulesWhateverTheMode) {
  RuleKernel kernel;
  for (const char* mode : {"-p", "-s", "-d", "-i"})
    EXPECT_EQ(getRules({mode}), (CommandResult{0, "No rules.\n", ""}));
}

TEST(GetRules, SaysThatTheCountFailed) {
  RuleKernel kernel;
  kernel.fail(kCount, 21);
  EXPECT_EQ(getRules(), (CommandResult{1, "",
                                       std::string("ERROR: failed to get total rulesets: ") +
                                           FW_StatusToString(21) + "\n"}));
}

TEST(GetRules, SaysThatTheRootFailedWithoutALineEnd) {
  RuleKernel kernel;
  kernel.sets = {{"web", {}}};
  kernel.fail(kRoot, 28);
  EXPECT_EQ(getRules(), (CommandResult{1, "",
                                       std::string("ERROR: failed to get root ruleset: ") +
                                           FW_StatusToString(28)}));
}

TEST(GetRules, WithoutARootThereIsNothingToShow) {
  RuleKernel kernel;
  kernel.sets = {{"web", {}}};
  kernel.layer3 = "";
  EXPECT_EQ(getRules(), (CommandResult{0, "No root rule set.\n", ""}));
  kernel.layer2 = "l2";
  EXPECT_EQ(getRulesMasked(), (CommandResult{0, std::string(kOpen) + "}\n\n", ""}))
      << "one of the two roots is enough";
}

TEST(GetRules, AFailedListIsNumberZeroWhicheverRuleSetItWas) {
  RuleKernel kernel;
  kernel.sets = {{"web", {}}, {"db", {}}};
  kernel.fail(kList, 28, 2);
  EXPECT_EQ(getRulesMasked(), (CommandResult{1, std::string(kOpen) + "}\n\n",
                                             std::string("ERROR: failed to get #0 ruleset: ") +
                                                 FW_StatusToString(28) + "\n"}));
}

TEST(GetRules, AListWithoutANameIsAFailureToo) {
  RuleKernel kernel;
  kernel.sets = {{"web", {}}};
  kernel.on(kList, [](Body&) { return 0; });
  EXPECT_EQ(getRules(), (CommandResult{1, "",
                                       std::string("ERROR: failed to get #0 ruleset: ") +
                                           FW_StatusToString(0) + "\n"}));
}

TEST(GetRules, MoreThanTheOneNameThatWasAskedForIsAFailureToo) {
  RuleKernel kernel;
  kernel.sets = {{"web", {}}};
  const auto list = kernel.answerTo(kList);
  for (const std::uint32_t count : {2u, 0xffffffffu}) {
    kernel.on(kList, [list, count](Body& body) {
      const auto status = list(body);
      body.put32(8, count);
      return status;
    });
    EXPECT_EQ(getRules(), (CommandResult{1, "",
                                         std::string("ERROR: failed to get #0 ruleset: ") +
                                             FW_StatusToString(0) + "\n"}));
  }
}

TEST(GetRules, ANameThatFillsItsFieldIsCutByOne) {
  RuleKernel kernel;
  const std::string full(64, 'n');
  kernel.sets = {{full.substr(0, 63), {}}};
  kernel.on(kList, [&](Body& body) {
    body.put32(8, 1);
    body.putText(12, full);
    return 0;
  });
  EXPECT_EQ(getRules({"-i"}).out.find("ruleset " + full.substr(0, 63) + " {\n"), 0u);
}

TEST(GetRules, ShowsTheNamedRuleSetWhateverItsCase) {
  RuleKernel kernel;
  kernel.sets = {{"db", {}}, {"web", {}}, {"website", {}}};
  EXPECT_EQ(getRulesMasked({"-r", "WEB"}), (CommandResult{0, std::string(kOpen) + "}\n\n", ""}));
  EXPECT_EQ(getRules({"-r", "we"}), (CommandResult{0, "", ""}));
}

TEST(GetRules, NamesOfRuleSetsAreComparedUpToTheirEnd) {
  RuleKernel kernel;
  const std::string start(62, 'n');
  kernel.sets = {{start + "a", {}}, {start + "b", {}}};
  const CommandResult result = getRules({"-i", "-r", start + "B"});
  EXPECT_EQ(result.out.find("ruleset " + start + "b {\n"), 0u);
  EXPECT_EQ(kernel.timesAsked(kInfo), 1u);
}

// --- The list of rules

TEST(GetRules, ListsDnatRulesThenFilterRulesThenSnatRules) {
  RuleKernel kernel;
  kernel.sets = {
      {"web",
       {{0, {acceptRule(1001), dropRule(1002)}}, {1, {snatRule(1003)}}, {2, {dnatRule(1004)}}}}};
  EXPECT_EQ(getRulesMasked(),
            (CommandResult{0,
                           std::string(kOpen) +
                               "  rule 1004 at 1 inout protocol any from any to any dnat ip "
                               "10.0.0.9;\n"
                               "  rule 1001 at 1 inout protocol any from any to any accept;\n"
                               "  rule 1002 at 2 inout protocol any from any to any drop;\n"
                               "  rule 1003 at 1 out protocol any from any to any snat ip "
                               "192.0.2.20;\n"
                               "}\n\n",
                           ""}));
}

TEST(GetRules, PAsksForTheLabelledForm) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{0, {acceptRule(1001)}}}}};
  const CommandResult result = getRules({"-p"});
  EXPECT_EQ(result.status, 0);
  EXPECT_NE(result.out.find("  Rule : 1001\n"), std::string::npos);
  EXPECT_NE(result.out.find("Position : 1\n"), std::string::npos);
}

TEST(GetRules, WithoutInfoTheRulesFollowAtOnce) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{0, {acceptRule(1)}}}}};
  kernel.fail(kInfo, 7);
  EXPECT_EQ(getRules(), (CommandResult{0,
                                       "ruleset web {\n"
                                       "  rule 1 at 1 inout protocol any from any to any accept;\n"
                                       "}\n\n",
                                       ""}));
}

TEST(GetRules, AFailedRuleCountSkipsTheOtherKindsAndClosesTheBrace) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{1, {snatRule(1)}}}}};
  kernel.fail(kRuleCount, 28, 2);
  EXPECT_EQ(getRulesMasked(),
            (CommandResult{0, std::string(kOpen) + "}\n\n",
                           std::string("ERROR: failed to get 0 rule count for ruleset web: ") +
                               FW_StatusToString(28) + "\n"}));
  EXPECT_EQ(kernel.timesAsked(kRuleCount), 2u);
}

TEST(GetRules, AFailedRuleSkipsWhatFollowsItAndTheNextRuleSetIsShown) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{2, {dnatRule(1), dnatRule(2)}}, {0, {acceptRule(3)}}}}, {"db", {}}};
  kernel.fail(kInfo, 7);
  kernel.fail(kRules, 27, 2);
  EXPECT_EQ(getRules(),
            (CommandResult{0,
                           "ruleset web {\n"
                           "  rule 1 at 1 inout protocol any from any to any dnat ip 10.0.0.9;\n"
                           "}\n\n"
                           "ruleset db {\n"
                           "}\n\n",
                           std::string("ERROR: failed to get 2 rule in ruleset web: ") +
                               FW_StatusToString(27) + "\n"}));
}

TEST(GetRules, AReplyWithoutTheRuleIsAFailure) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{0, {acceptRule(1)}}}}};
  kernel.on(kRules, [](Body&) { return 0; });
  EXPECT_EQ(getRulesMasked(),
            (CommandResult{0, std::string(kOpen) + "}\n\n",
                           std::string("ERROR: failed to get 0 rule in ruleset web: ") +
                               FW_StatusToString(0) + "\n"}));
}

TEST(GetRules, AReplyOfMoreThanTheRuleIsAFailure) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{0, {acceptRule(1)}}}}};
  const auto rules = kernel.answerTo(kRules);
  for (const std::uint32_t count : {2u, 0xffffffffu}) {
    kernel.on(kRules, [rules, count](Body& body) {
      const auto status = rules(body);
      body.put32(76, count);
      return status;
    });
    EXPECT_EQ(getRulesMasked(),
              (CommandResult{0, std::string(kOpen) + "}\n\n",
                             std::string("ERROR: failed to get 0 rule in ruleset web: ") +
                                 FW_StatusToString(0) + "\n"}));
  }
}

TEST(GetRules, ARuleThatMakesNoTextEndsTheList) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{0, {brokenRule(), acceptRule(2)}}}}};
  EXPECT_EQ(getRulesMasked(), (CommandResult{0, std::string(kOpen) + "}\n\n",
                                             std::string("ERROR:   rule conversion failed ") +
                                                 FW_StatusToString(37) + "\n"}));
}

TEST(GetRules, ARuleTextOf511CharactersIsShownAndOneOf512EndsTheList) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{0, {longRule(511)}}}}};
  const CommandResult shown = getRules();
  EXPECT_EQ(shown.err, "");
  EXPECT_EQ(ruleLine(shown.out).size(), 2u + 511u);

  kernel.sets = {{"web", {{0, {longRule(512), acceptRule(2)}}}}};
  EXPECT_EQ(getRulesMasked(), (CommandResult{0, std::string(kOpen) + "}\n\n",
                                             std::string("ERROR:   rule conversion failed ") +
                                                 FW_StatusToString(9) + "\n"}));
}

TEST(GetRules, ACountBeyondTheRulesEndsAtTheFirstThatIsNotThere) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{0, {acceptRule(1)}}}}};
  kernel.on(kRuleCount, [](Body& body) {
    body.put32(68, body.at[64] == 0 ? 0xffffffff : 0);
    return 0;
  });
  kernel.fail(kRules, 27, 2);
  EXPECT_EQ(getRulesMasked(),
            (CommandResult{0,
                           std::string(kOpen) +
                               "  rule 1 at 1 inout protocol any from any to any accept;\n"
                               "}\n\n",
                           std::string("ERROR: failed to get 0 rule in ruleset web: ") +
                               FW_StatusToString(27) + "\n"}));
}

// --- A rule set that is being purged

TEST(GetRules, ARuleSetThatIsBeingPurgedIsNoError) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{0, {acceptRule(1)}}}}};
  kernel.fail(kRuleCount, 26);
  EXPECT_EQ(getRulesMasked(), (CommandResult{0, std::string(kOpen) + "}\n\n", ""}));
  EXPECT_EQ(kernel.timesAsked(kRuleCount), 9u) << "three tries of each of the three kinds";
}

TEST(GetRules, ARuleSetThatIsPurgedWhileItIsReadIsNoError) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{0, {acceptRule(1)}}}}};
  kernel.fail(kRules, 26);
  EXPECT_EQ(getRulesMasked(), (CommandResult{0, std::string(kOpen) + "}\n\n", ""}));
}

TEST(GetRules, ARuleThatIsPurgedWhileItIsReadEndsOnlyItsOwnKind) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{2, {dnatRule(1)}}, {0, {acceptRule(2)}}}}};
  const auto rules = kernel.answerTo(kRules);
  kernel.on(kRules, [rules](Body& body) { return body.at[74] == 2 ? 26 : rules(body); });
  EXPECT_EQ(getRulesMasked(),
            (CommandResult{0,
                           std::string(kOpen) +
                               "  rule 2 at 1 inout protocol any from any to any accept;\n"
                               "}\n\n",
                           ""}));
}

TEST(GetRulesStatistics, WhatIsPurgedEndsOnlyItsOwnKind) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{1, {snatRule(1)}}, {0, {acceptRule(2)}}}}};
  const std::string filterRule =
      "rule     2: 10 evals, 20 hits, 30 sessions, in 40 out 50 pkts, in 60 out 70 bytes\n";
  const auto stats = kernel.answerTo(kStats);
  kernel.on(kStats, [stats](Body& body) { return body.at[74] == 1 ? 26 : stats(body); });
  EXPECT_EQ(getRules({"-s"}), (CommandResult{0, filterRule, ""}));

  const auto count = kernel.answerTo(kRuleCount);
  kernel.on(kRuleCount, [count](Body& body) { return body.at[64] == 1 ? 26 : count(body); });
  EXPECT_EQ(getRules({"-s"}), (CommandResult{0, filterRule, ""}));
}

TEST(GetRules, VerbosityTellsWhichRuleSetIsBeingPurged) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{0, {acceptRule(1)}}}}};
  kernel.fail(kInfo, 7);
  kernel.fail(kRules, 26);
  EXPECT_EQ(getRules({"-v", "-m", "cache"}), (CommandResult{0,
                                                            "verbose level : 1\n"
                                                            "weirgate agent: kelpco-sfw\n"
                                                            "ruleset web {\n"
                                                            "DEBUG: ruleset web is being purged\n"
                                                            "}\n\n",
                                                            ""}));
}

TEST(GetRules, PurgingIsNoErrorInTheOtherModes) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{2, {balancingRule(1)}}}}};
  kernel.fail(kStats, 26);
  EXPECT_EQ(getRules({"-s"}), (CommandResult{0, "", ""}));
  kernel.fail(kInfo, 26);
  EXPECT_EQ(getRules({"-i"}), (CommandResult{0, "ruleset web {\n}\n", ""}));
  kernel.fail(kDlb, 26);
  EXPECT_EQ(getRules({"-d"}).err, "");
  kernel.fail(kRules, 26);
  EXPECT_EQ(getRules({"-d"}), (CommandResult{0, "ruleset web {\n", ""}));
  kernel.fail(kRuleCount, 26);
  EXPECT_EQ(getRules({"-s"}), (CommandResult{0, "", ""}));
  EXPECT_EQ(getRules({"-d"}), (CommandResult{0, "", ""}));
}
