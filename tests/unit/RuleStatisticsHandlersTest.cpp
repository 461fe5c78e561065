// getrules against a scripted kernel: statistics and the frame of rule sets.
#include <gtest/gtest.h>

#include "DeviceShim.h"
#include "RuleKernel.h"
#include "tarnfw.h"

using namespace RuleTest;

// --- Statistics

TEST(GetRulesStatistics, HaveNoRulesetLineAndTheirOwnOrderOfKinds) {
  RuleKernel kernel;
  kernel.sets = {
      {"web", {{0, {acceptRule(1), acceptRule(2)}}, {1, {snatRule(3)}}, {2, {dnatRule(4)}}}}};
  const std::string counters =
      ": 10 evals, 20 hits, 30 sessions, in 40 out 50 pkts, in 60 out 70 "
      "bytes\n";
  EXPECT_EQ(getRules({"-s"}), (CommandResult{0,
                                             "rule     3" + counters + "rule     1" + counters +
                                                 "rule     2" + counters + "rule     4" + counters,
                                             ""}));
}

TEST(GetRulesStatistics, LeaveNoPrinterBehind) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{0, {acceptRule(1)}}}}};
  const std::string list = getRulesMasked().out;
  getRules({"-s"});
  EXPECT_EQ(getRulesMasked().out, list);
  getRules({"-i"});
  EXPECT_EQ(getRulesMasked().out, list);
}

TEST(GetRulesStatistics, ARuleSetWithoutRulesIsNotAskedFor) {
  RuleKernel kernel;
  kernel.sets = {{"web", {}}};
  EXPECT_EQ(getRules({"-s"}), (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.timesAsked(kStats), 0u);
}

TEST(GetRulesStatistics, AFailedCountSkipsTheOtherKinds) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{0, {acceptRule(1)}}}}};
  kernel.fail(kRuleCount, 28, 1);
  EXPECT_EQ(getRules({"-s"}), (CommandResult{0, "",
                                             std::string("ERROR: failed to get 1 rule count: ") +
                                                 FW_StatusToString(28) + "\n"}));
  EXPECT_EQ(kernel.timesAsked(kStats), 0u);
}

TEST(GetRulesStatistics, AFailedReadingSkipsTheOtherKinds) {
  RuleKernel kernel;
  kernel.sets = {{"web", {{0, {acceptRule(1)}}, {2, {dnatRule(2)}}}}};
  kernel.fail(kStats, 7);
  EXPECT_EQ(getRules({"-s"}), (CommandResult{0, "",
                                             std::string("ERROR: failed to get 0 rule stat: ") +
                                                 FW_StatusToString(7) + "\n"}));
  EXPECT_EQ(kernel.timesAsked(kStats), 1u);
}

TEST(GetRulesStatistics, SayThatThereIsNoMemory) {
  RuleKernel kernel;
  kernel.sets = {{"web", {}}};
  kernel.on(kRuleCount, [](Body& body) {
    body.put32(68, 5);
    DeviceShim::failNextCalloc();
    return 0;
  });
  EXPECT_EQ(getRules({"-s"}),
            (CommandResult{0, "", "ERROR: no memory for getting 5 1 rule stats\n"}));
}

// --- Info

TEST(GetRulesInfo, StandsInAFrame) {
  RuleKernel kernel;
  kernel.sets = {{"web", {}}};
  EXPECT_EQ(getRulesMasked({"-i"}), (CommandResult{0,
                                                   "ruleset web {\n"
                                                   "rule count       : 3\n"
                                                   "generation number: 42\n"
                                                   "realization time : TIME\n"
                                                   "}\n",
                                                   ""}));
}

TEST(GetRulesInfo, AFailureStandsInAFrameToo) {
  RuleKernel kernel;
  kernel.sets = {{"web", {}}};
  kernel.fail(kInfo, 28);
  EXPECT_EQ(getRules({"-i"}),
            (CommandResult{0, "ruleset web {\n}\n",
                           std::string("ERROR: failed to get info of ruleset web: ") +
                               FW_StatusToString(28) + "\n"}));
}
