// getrules against a scripted kernel.

#include <gtest/gtest.h>

#include "DeviceShim.h"
#include "HandlerKernel.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

using Body = HandlerKernel::Body;

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

/// Numbers of the commands.
enum : unsigned int {
  kCount = 1,
  kList = 2,
  kRoot = 4,
  kRuleCount = 8,
  kInfo = 9,
  kRules = 10,
  kStats = 11,
  kDlb = 12,
};

/// A layer-3 rule for both directions, from any to any, with an action.
Bytes rule(int id, int action) {
  Bytes record(892);
  put32(record, 0, static_cast<std::uint32_t>(id));
  put32(record, 4, 77);  // a place that is not shown
  return record.at(790, {0x10}).at(750, {action}).at(884, {1});
}
Bytes acceptRule(int id) { return rule(id, 1); }
Bytes dropRule(int id) { return rule(id, 2); }

/// A rule with a load-balancing action that has options.
Bytes balancingRule(int id) { return rule(id, 13).at(742, {0x40}).text(614, "rr"); }

/// A rule that makes no text: its action's code is none.
Bytes brokenRule() { return rule(1, 15).at(742, {0x40}); }

Bytes snatRule(int id) { return rule(id, 7).at(790, {0x50}).at(460, {1}).at(464, {192, 0, 2, 20}); }
Bytes dnatRule(int id) { return rule(id, 8).at(460, {1}).at(464, {10, 0, 0, 9}); }

/// A load-balancing rule whose text has so many characters.
Bytes longRule(std::size_t length) {
  Bytes record = balancingRule(1).at(790, {0x13}).at(12, {4}).at(156, {4});
  for (std::size_t i = 0; i < 16; ++i) {
    for (const std::size_t address : {16u, 160u}) record.at(address + i, {0x11});
    for (const std::size_t mask : {32u, 176u}) record.at(mask + i, {0x22});
  }
  record.text(852, "t");
  std::size_t rest = length - 238;
  if (rest > 127) {
    // Both profiles and both timeouts.
    record.at(884, {0x0c}).text(380, std::string(37, 'e')).text(422, std::string(37, 'a'));
    record.at(610, {0xff, 0xff, 0xff, 0xff});
    rest -= 56 + 61 + 20 + 21;
  }
  return record.text(614, std::string(rest, 'o'));
}

/// State of a load-balancing rule.
struct Balancing {
  std::uint32_t flows = 0, now = 0, lastUse = 0, timeout = 0;
  Bytes address = Bytes(144);
};
Bytes ipv4() { return Bytes(144).at(0, {1}).at(4, {10, 1, 2, 3}); }

struct RuleSet {
  std::string name;
  std::map<unsigned int, std::vector<Bytes>> rules;  // by kind
};

/// What the filter holds.
class RuleKernel : public HandlerKernel {
 public:
  RuleKernel() {
    on(kCount, [this](Body& body) {
      body.put32(0, static_cast<std::uint32_t>(sets.size()));
      return 0;
    });
    on(kRoot, [this](Body& body) {
      body.putText(0, layer3);
      body.putText(64, layer2);
      return 0;
    });
    on(kList, [this](Body& body) {
      EXPECT_EQ(body.word(0), 1u);
      body.put32(8, 1);
      body.putText(12, sets.at(body.word(4)).name);
      return 0;
    });
    on(kRuleCount, [this](Body& body) {
      body.put32(68, static_cast<std::uint32_t>(rulesOf(body, body.at[64]).size()));
      return 0;
    });
    on(kInfo, [](Body& body) {
      body.put32(64, 3);
      body.put64(68, 1000);
      body.put64(76, 42);
      return 0;
    });
    on(kRules, [this](Body& body) {
      EXPECT_EQ(body.word(64), 1u);
      EXPECT_EQ(body.at[72], 1) << "by index";
      body.put32(76, 1);
      body.put(100, rulesOf(body, body.at[74]).at(body.word(68)));
      return 0;
    });
    on(kStats, [this](Body& body) {
      const auto& rules = rulesOf(body, body.at[74]);
      EXPECT_EQ(body.word(64), rules.size());
      EXPECT_EQ(body.word(68), 0u);
      body.put32(76, static_cast<std::uint32_t>(rules.size()));
      for (std::size_t i = 0; i < rules.size(); ++i) {
        const std::size_t record = 80 + 4 * rules.size() + 64 * i;
        body.put32(record, rules[i][0]);
        for (std::size_t counter = 0; counter < 7; ++counter)
          body.put64(record + 8 + 8 * counter, 10 * (counter + 1));
      }
      return 0;
    });
    on(kDlb, [this](Body& body) {
      EXPECT_EQ(body.at[74], 2);
      EXPECT_EQ(body.word(64), 1u);
      EXPECT_EQ(body.word(68), balancingIndex);
      body.put32(76, 1);
      body.put32(84, state.flows);
      body.put32(88, state.now);
      body.put32(92, state.lastUse);
      body.put32(96, state.timeout);
      body.put(100, state.address);
      return 0;
    });
  }

  std::vector<RuleSet> sets;
  std::string layer3 = "web";
  std::string layer2;
  Balancing state;
  unsigned int balancingIndex = 0;

 private:
  std::vector<Bytes>& rulesOf(const Body& body, unsigned int kind) {
    for (RuleSet& set : sets) {
      if (set.name == body.text(0, 64)) return set.rules[kind];
    }
    ADD_FAILURE() << "no rule set " << body.text(0, 64);
    return sets.at(0).rules[kind];
  }
};

CommandResult getRules(std::vector<std::string> options = {}) {
  std::vector<std::string> words{"getrules", "-f", kFilter};
  words.insert(words.end(), options.begin(), options.end());
  return runCommand(words);
}

/// With the realization times of the reply replaced.
CommandResult getRulesMasked(std::vector<std::string> options = {}) {
  CommandResult result = getRules(std::move(options));
  result.out = maskTime(result.out, 1000);
  return result;
}

/// The first line about a rule.
std::string ruleLine(const std::string& out) {
  const std::size_t at = out.find("  rule ");
  return at == std::string::npos ? "" : out.substr(at, out.find('\n', at) - at);
}

const char kOpen[] =
    "ruleset web {\n"
    "  # generation number: 42\n"
    "  # realization time : TIME\n";

}  // namespace

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

// --- Load balancing

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
