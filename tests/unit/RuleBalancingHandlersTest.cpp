// getrules against a scripted kernel: the state of load-balancing rules.
#include <gtest/gtest.h>

#include "RuleKernel.h"
#include "tarnfw.h"

using namespace RuleTest;

namespace {

const char kBalancing[] =
    "ruleset web {\n"
    "  rule 1 at 1 inout protocol any from any to any lb  lbtype L4 lboptions rr;\n";

/// The line about the state of the only load-balancing rule.
std::string stateLine(const Balancing& state) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{2, {balancingRule(1)}}}}};
  kernel.state = state;
  const CommandResult result = getRules({"-d"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  const std::string end = "\n}\n\n";
  EXPECT_EQ(result.out.find(kBalancing), 0u) << result.out;
  EXPECT_EQ(result.out.substr(result.out.size() - end.size()), end);
  const std::string line = result.out.substr(sizeof kBalancing - 1);
  return line.substr(0, line.size() - end.size());
}

}  // namespace

TEST(GetRulesBalancing, ARuleWithFlowsHasItsWholeTimeoutAndItsAddress) {
  EXPECT_EQ(stateLine({3, 100, 50, 5, ipv4()}),
            "      num flows = 3, persist timeout = 5m, timeout remaining = 5:00s, persist addr = "
            "ip 10.1.2.3");
}

TEST(GetRulesBalancing, WithoutFlowsTheRestOfTheTimeoutIsLeft) {
  EXPECT_EQ(stateLine({0, 1000, 905, 2, ipv4()}),
            "      num flows = 0, persist timeout = 2m, timeout remaining = 0:25s, persist addr = "
            "ip 10.1.2.3");
  EXPECT_EQ(stateLine({0, 1000, 1000, 2, ipv4()}),
            "      num flows = 0, persist timeout = 2m, timeout remaining = 2:00s, persist addr = "
            "ip 10.1.2.3");
  EXPECT_EQ(stateLine({0, 1000, 881, 2, ipv4()}),
            "      num flows = 0, persist timeout = 2m, timeout remaining = 0:01s, persist addr = "
            "ip 10.1.2.3");
}

TEST(GetRulesBalancing, AtTheTimeoutNothingIsLeftAndNoAddressIsTold) {
  EXPECT_EQ(stateLine({0, 1000, 880, 2, ipv4()}),
            "      num flows = 0, persist timeout = 2m, timeout remaining = 0:00s");
  EXPECT_EQ(stateLine({0, 1000, 1, 2, ipv4()}),
            "      num flows = 0, persist timeout = 2m, timeout remaining = 0:00s");
}

TEST(GetRulesBalancing, WithoutATimeoutNoneIsTold) {
  EXPECT_EQ(stateLine({0, 9, 9, 0, ipv4()}), "      num flows = 0, timeout remaining = 0:00s");
  EXPECT_EQ(stateLine({1, 9, 9, 0, ipv4()}),
            "      num flows = 1, timeout remaining = 0:00s, persist addr = ip 10.1.2.3");
}

TEST(GetRulesBalancing, AnAddressOfNoFamilyIsNotTold) {
  EXPECT_EQ(stateLine({1, 9, 9, 0, Bytes(144).at(0, {3})}),
            "      num flows = 1, timeout remaining = 0:00s");
  EXPECT_EQ(stateLine({1, 9, 9, 0, Bytes(144)}), "      num flows = 1, timeout remaining = 0:00s");
  EXPECT_EQ(stateLine({1, 9, 9, 0, Bytes(144).at(0, {2}).at(4, {0x20, 1}).at(19, {9})}),
            "      num flows = 1, timeout remaining = 0:00s, persist addr = ip 2001::9");
}

TEST(GetRulesBalancing, ATimeoutAndAClockOfAllOnesDoNoHarm) {
  EXPECT_EQ(stateLine({0, 5, 0xffffffff, 1, ipv4()}),
            "      num flows = 0, persist timeout = 1m, timeout remaining = 0:54s, persist addr = "
            "ip 10.1.2.3");
  EXPECT_EQ(stateLine({0, 0, 0, 0xffffffff, Bytes(144)}),
            "      num flows = 0, persist timeout = -1m, timeout remaining = -1:00s");
}

TEST(GetRulesBalancing, OtherRulesAreNotShownAndKeepTheirPlaces) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{2, {dnatRule(8), balancingRule(9)}}, {0, {acceptRule(1)}}}}};
  kernel.balancingIndex = 1;
  EXPECT_EQ(getRules({"-d"}),
            (CommandResult{0,
                           "ruleset web {\n"
                           "  rule 9 at 2 inout protocol any from any to any lb  lbtype L4 "
                           "lboptions rr;\n"
                           "      num flows = 0, timeout remaining = 0:00s\n"
                           "}\n\n",
                           ""}));
}

TEST(GetRulesBalancing, SaysThatThereAreNone) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{2, {dnatRule(8)}}}}, {"db", {}}};
  EXPECT_EQ(getRules({"-d"}), (CommandResult{0,
                                             "ruleset web {\n"
                                             "  <no DLB rules in active ruleset>\n"
                                             "}\n\n"
                                             "ruleset db {\n"
                                             "  <no DLB rules in active ruleset>\n"
                                             "}\n\n",
                                             ""}));
}

TEST(GetRulesBalancing, AFailedCountGoesOnWithTheNextRuleSet) {
  RuleKernel kernel;
  kernel.sets = {{"web", {}}, {"db", {}}};
  kernel.fail(kRuleCount, 28, 1);
  EXPECT_EQ(getRules({"-d"}),
            (CommandResult{0,
                           "ruleset db {\n"
                           "  <no DLB rules in active ruleset>\n"
                           "}\n\n",
                           std::string("ERROR: failed to get dnat rule count for ruleset web: ") +
                               FW_StatusToString(28) + "\n"}));
}

TEST(GetRulesBalancing, AFailedRuleLeavesTheBraceOpenAndGoesOnWithTheNextRuleSet) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{2, {dnatRule(1)}}}}, {"db", {}}};
  const std::string out =
      "ruleset web {\n"
      "ruleset db {\n"
      "  <no DLB rules in active ruleset>\n"
      "}\n\n";
  kernel.fail(kRules, 27);
  EXPECT_EQ(getRules({"-d"}),
            (CommandResult{0, out,
                           std::string("ERROR: failed to get dnat rule in ruleset web: ") +
                               FW_StatusToString(27) + "\n"}));
  kernel.on(kRules, [](Body&) { return 0; });
  EXPECT_EQ(getRules({"-d"}),
            (CommandResult{0, out,
                           std::string("ERROR: failed to get dnat rule in ruleset web: ") +
                               FW_StatusToString(0) + "\n"}));
}

TEST(GetRulesBalancing, AReplyOfMoreThanWasAskedForLeavesTheBraceOpen) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{2, {balancingRule(1)}}}}};
  const auto twice = [&](unsigned int number) {
    const auto answer = kernel.answerTo(number);
    kernel.on(number, [answer](Body& body) {
      const auto status = answer(body);
      body.put32(76, 2);
      return status;
    });
  };
  twice(kDlb);
  EXPECT_EQ(getRules({"-d"}), (CommandResult{0, kBalancing,
                                             std::string("ERROR: failed to get dlb rule info: ") +
                                                 FW_StatusToString(0) + "\n"}));
  twice(kRules);
  EXPECT_EQ(getRules({"-d"}),
            (CommandResult{0, "ruleset web {\n",
                           std::string("ERROR: failed to get dnat rule in ruleset web: ") +
                               FW_StatusToString(0) + "\n"}));
}

TEST(GetRulesBalancing, ARuleThatMakesNoTextLeavesTheBraceOpen) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{2, {brokenRule()}}}}};
  EXPECT_EQ(getRules({"-d"}), (CommandResult{0, "ruleset web {\n",
                                             std::string("ERROR:   rule conversion failed ") +
                                                 FW_StatusToString(37) + "\n"}));
}

TEST(GetRulesBalancing, ARuleTextOf255CharactersIsShownAndOneOf256LeavesTheBraceOpen) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{2, {longRule(255)}}}}};
  const CommandResult shown = getRules({"-d"});
  EXPECT_EQ(shown.err, "");
  EXPECT_EQ(ruleLine(shown.out).size(), 2u + 255u);

  kernel.sets = {{"web", {{2, {longRule(256)}}}}};
  EXPECT_EQ(getRules({"-d"}), (CommandResult{0, "ruleset web {\n",
                                             std::string("ERROR:   rule conversion failed ") +
                                                 FW_StatusToString(9) + "\n"}));
  const CommandResult list = getRules();
  EXPECT_EQ(list.err, "") << "the list of rules has more room";
  EXPECT_EQ(ruleLine(list.out).size(), 2u + 256u);
}

TEST(GetRulesBalancing, AFailedStateLeavesTheBraceOpenAndGoesOnWithTheNextRuleSet) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{2, {balancingRule(1)}}}}, {"db", {}}};
  const std::string out = std::string(kBalancing) +
                          "ruleset db {\n"
                          "  <no DLB rules in active ruleset>\n"
                          "}\n\n";
  kernel.fail(kDlb, 7);
  EXPECT_EQ(getRules({"-d"}), (CommandResult{0, out,
                                             std::string("ERROR: failed to get dlb rule info: ") +
                                                 FW_StatusToString(7) + "\n"}));
  kernel.on(kDlb, [](Body&) { return 0; });
  EXPECT_EQ(getRules({"-d"}), (CommandResult{0, out,
                                             std::string("ERROR: failed to get dlb rule info: ") +
                                                 FW_StatusToString(0) + "\n"}));
}
