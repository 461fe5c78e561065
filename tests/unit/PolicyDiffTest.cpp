/// In what two states differ: by meaning, and as text.

#include <gtest/gtest.h>

#include <cstdio>

#include "DiffText.h"
#include "RunPolicy.h"
#include "StateText.h"

using namespace TarnFirewall;

namespace {

State stateOf(const std::string& text) { return stateOfText(text, "test.conf").state; }

std::string diff(const std::string& a, const std::string& b) {
  return diffText(differencesOf(stateOf(a), stateOf(b)));
}

/// A rule set "r" of rules with these ids, one action for all.
std::string ruleSet(const std::vector<int>& ids, const std::string& action = "drop") {
  std::string text = "create ruleset r";
  if (!ids.empty()) text += " with {";
  for (const int id : ids) {
    text += " rule " + std::to_string(id) + " in protocol any from any to any " + action + ";";
  }
  return text + (ids.empty() ? ";" : " };");
}

/// A file with a text, which is removed at the end.
class TextFile {
 public:
  explicit TextFile(const std::string& text) : path_(testing::TempDir() + "policy-diff-XXXXXX") {
    const int file = mkstemp(path_.data());
    EXPECT_GE(file, 0);
    std::FILE* const stream = fdopen(file, "w");
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fclose(stream);
  }
  ~TextFile() { std::remove(path_.c_str()); }
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace

TEST(PolicyDiff, EqualStatesHaveNone) {
  EXPECT_EQ(
      diff("create addrset a { 10.0.0.1, 10.0.0.2 };", "create addrset a { 10.0.0.2, 10.0.0.1 };"),
      "");
  // Ranges that cover the same, and positions that order the same.
  EXPECT_EQ(diff("create addrset a { 10.0.0.0-1 };", "create addrset a { 10.0.0.0/31 };"), "");
  EXPECT_EQ(diff(ruleSet({1, 2}),
                 "create ruleset r with { rule 2 at 9 in protocol any from any to any "
                 "drop; rule 1 at 4 in protocol any from any to any drop; };"),
            "");
}

TEST(PolicyDiff, SetsByTheirMembers) {
  EXPECT_EQ(diff("create addrset a { 10.0.0.1, 10.0.0.2 }; create addrset gone 10.0.0.1;",
                 "create addrset a { 10.0.0.2, 10.0.0.3 }; create addrset new;"),
            "addrset \"a\":\n"
            "  - 10.0.0.1\n"
            "  + 10.0.0.3\n"
            "addrset \"gone\" removed:\n"
            "  - 10.0.0.1\n"
            "addrset \"new\" added:\n");
  EXPECT_EQ(
      diff("create addrset p 10.0.0.1;", "create attrprofile p with { [ APP_ID : APP_HTTP ] };"),
      "container \"p\":\n"
      "  ~ it is of another type\n"
      "  - 10.0.0.1\n"
      "  + APP_ID : APP_HTTP\n");
}

TEST(PolicyDiff, RulesByTheirIdsPartByPart) {
  EXPECT_EQ(
      diff("create ruleset r with { rule 1 in protocol tcp from any to any port 80 accept;"
           " rule 2 in protocol any from any to any drop; };",
           "create ruleset r with { rule 1 in protocol tcp from \"web\" to any port { 80, 81 }"
           " drop with log tag x; rule 3 in protocol any from any to any drop; };"),
      "ruleset \"r\":\n"
      "  - rule 2 in protocol any from any to any drop\n"
      "  ~ rule 1\n"
      "      source: any -> addrset \"web\"\n"
      "      destination ports: port 80 -> port { 80, 81 }\n"
      "      action: accept -> drop\n"
      "      flags: none -> with log\n"
      "      tag: none -> tag \"x\"\n"
      "  + rule 3 in protocol any from any to any drop\n");
}

TEST(PolicyDiff, ARuleThatBecomesOfAnotherKindIsChanged) {
  EXPECT_EQ(diff(ruleSet({1}), ruleSet({1}, "dnat ip 10.0.0.1")),
            "ruleset \"r\":\n"
            "  ~ rule 1\n"
            "      action: drop -> dnat ip 10.0.0.1\n");
}

TEST(PolicyDiff, ARuleOfAnotherKindHasNotMoved) {
  const std::string drop = " in protocol any from any to any drop;";
  const StateDiff differences =
      differencesOf(stateOf("create ruleset r with { rule 3" + drop +
                            " rule 2 out protocol any from any to any snat ip 10.0.0.1; };"),
                    stateOf("create ruleset r with { rule 2" + drop + " rule 3" + drop + " };"));
  ASSERT_EQ(differences.ruleSets.size(), 1u);
  ASSERT_EQ(differences.ruleSets[0].rules.size(), 1u);
  EXPECT_EQ(differences.ruleSets[0].rules[0].id, 2u);
  EXPECT_EQ(differences.ruleSets[0].rules[0].place, "");
}

TEST(PolicyDiff, OnlyASetThatIsInBothIsOfAnotherType) {
  const std::string profile = "create attrprofile p with { [ APP_ID : APP_HTTP ] };";
  for (const auto& [before, after] :
       {std::pair{std::string(), profile}, {profile, std::string()}}) {
    const StateDiff differences = differencesOf(stateOf(before), stateOf(after));
    ASSERT_EQ(differences.sets.size(), 1u);
    EXPECT_FALSE(differences.sets[0].typeChanged) << before << after;
  }
}

TEST(PolicyDiff, OnlyTheFewestRulesHaveMoved) {
  EXPECT_EQ(diff(ruleSet({1, 2, 3, 4}), ruleSet({2, 3, 4, 1})),
            "ruleset \"r\":\n"
            "  ~ rule 1: moved, now after rule 4\n");
  EXPECT_EQ(diff(ruleSet({1, 2, 3, 4}), ruleSet({4, 1, 2, 3})),
            "ruleset \"r\":\n"
            "  ~ rule 4: moved, now first\n");
  // What is new or gone moves nothing.
  EXPECT_EQ(diff(ruleSet({1, 2, 3}), ruleSet({7, 1, 3})),
            "ruleset \"r\":\n"
            "  - rule 2 in protocol any from any to any drop\n"
            "  + rule 7 in protocol any from any to any drop\n");
  EXPECT_EQ(diff(ruleSet({1, 2}), ruleSet({2, 1}, "accept")),
            "ruleset \"r\":\n"
            "  ~ rule 2: moved, now first\n"
            "      action: drop -> accept\n"
            "  ~ rule 1\n"
            "      action: drop -> accept\n");
}

TEST(PolicyDiff, RulesOfOneIdAreToldApartByTheirNumber) {
  EXPECT_EQ(diff(ruleSet({1, 1, 1}), ruleSet({1, 1})),
            "ruleset \"r\":\n"
            "  - rule 1 in protocol any from any to any drop\n");
}

TEST(PolicyDiff, WhatHasNoWordsIsADifferenceToo) {
  const State a = stateOf(ruleSet({1}));
  State b = a;
  b.ruleSets.at("r").of(StateRules::filter)[0].reserved8 = 5;
  EXPECT_EQ(diffText(differencesOf(a, b)),
            "ruleset \"r\":\n"
            "  ~ rule 1\n"
            "      record: (its bytes) -> (other bytes)\n");
  b.ruleSets.at("r").of(StateRules::filter)[0].action.action = 99;
  EXPECT_EQ(diffText(differencesOf(a, b)),
            "ruleset \"r\":\n"
            "  ~ rule 1\n"
            "      action: drop -> (the action 99 is unknown)\n");
}

TEST(PolicyDiff, JumpsAndRoots) {
  const std::string sets = "create ruleset a; create ruleset b;";
  EXPECT_EQ(diff(sets + "set root ruleset a and \"\";",
                 sets + "set jumpto of ruleset a as b; set root ruleset b and a;"),
            "ruleset \"a\":\n"
            "  ~ jump: none -> \"b\"\n"
            "root:\n"
            "  ~ layer 3: \"a\" -> \"b\"\n"
            "  ~ layer 2: none -> \"a\"\n");
}

TEST(PolicyDiff, NamesAreShownWithoutWhatATerminalObeys) {
  EXPECT_EQ(diff("", "create addrset \"a\nb\xff\";"), "addrset \"a\\x0ab\\xff\" added:\n");
}

TEST(PolicyDiff, StatisticsCountEachKindOfDifference) {
  const StateDiff differences = differencesOf(
      stateOf("create addrset a { 10.0.0.1, 10.0.0.2 };" + ruleSet({1, 2, 3, 4})),
      stateOf(
          "create addrset a 10.0.0.3; create addrset b;"
          "create ruleset r with { rule 4 in protocol any from any to any drop;"
          " rule 1 in protocol any from any to any drop;"
          " rule 2 in protocol any from any to any accept; rule 9 in protocol any from any to any"
          " drop; }; set jumpto of ruleset r as r; set root ruleset r;"));
  EXPECT_EQ(
      diffStatistics(differences),
      "addrset \"a\": 1 member added, 2 members removed\n"
      "addrset \"b\": added\n"
      "ruleset \"r\": 1 rule added, 1 rule removed, 1 rule changed, 1 rule moved, jump changed\n"
      "root: changed\n"
      "in all: 2 sets with 3 members, 1 rule set with 4 rules\n");
}

// --- The subcommand

TEST(PolicyDiffSubcommand, JsonHoldsEveryDifference) {
  const TextFile a(
      "create addrset a 10.0.0.1; create ruleset r with { rule 1 in protocol any from any "
      "to any drop; rule 2 in protocol any from any to any drop; };");
  const TextFile b(
      "create ruleset r with rule 1 in protocol any from any to any accept tag '\"';"
      "set jumpto of ruleset r as r; set root ruleset r and \"\";");
  EXPECT_EQ(runPolicy({"diff", "--json", a.path(), b.path()}), (PolicyResult{1, R"({
  "equal": false,
  "sets": [
    {
      "name": "a",
      "change": "removed",
      "container": false,
      "typeChanged": false,
      "added": [],
      "removed": [
        "10.0.0.1"
      ]
    }
  ],
  "ruleSets": [
    {
      "name": "r",
      "change": "changed",
      "jump": {
        "before": "",
        "after": "r"
      },
      "rules": [
        {
          "id": 2,
          "kind": "filter",
          "change": "removed",
          "text": "rule 2 in protocol any from any to any drop",
          "place": "",
          "parts": []
        },
        {
          "id": 1,
          "kind": "filter",
          "change": "changed",
          "text": "rule 1 in protocol any from any to any accept tag '\"'",
          "place": "",
          "parts": [
            {
              "part": "action",
              "before": "drop",
              "after": "accept"
            },
            {
              "part": "tag",
              "before": "",
              "after": "tag '\"'"
            }
          ]
        }
      ]
    }
  ],
  "root": {
    "layer3": {
      "before": "",
      "after": "r"
    },
    "layer2": {
      "before": "",
      "after": ""
    }
  }
}
)",
                                                                             ""}));
  EXPECT_EQ(runPolicy({"diff", "--json", a.path(), a.path()}).status, 0);
}

TEST(PolicyDiffSubcommand, TheStatusSaysWhetherTheyDiffer) {
  const TextFile a("create addrset a 10.0.0.1;");
  const TextFile b("create addrset a 10.0.0.2;");
  EXPECT_EQ(runPolicy({"diff", a.path(), a.path()}), (PolicyResult{0, "", ""}));
  EXPECT_EQ(runPolicy({"diff", a.path(), b.path()}),
            (PolicyResult{1, "addrset \"a\":\n  - 10.0.0.1\n  + 10.0.0.2\n", ""}));
  EXPECT_EQ(runPolicy({"diff", "--stat", a.path(), b.path()}),
            (PolicyResult{1,
                          "addrset \"a\": 1 member added, 1 member removed\n"
                          "in all: 1 set with 2 members, 0 rule sets with 0 rules\n",
                          ""}));
  EXPECT_EQ(runPolicy({"diff", a.path(), a.path(), "--stat"}), (PolicyResult{0, "", ""}));
}

TEST(PolicyDiffSubcommand, TroubleHasAStatusOfItsOwn) {
  const TextFile good("create addrset a;");
  const TextFile bad("create addrset;");
  const std::string usage = "Its usage is shown by: tarnpolicy diff --help\n";
  EXPECT_EQ(runPolicy({"diff", good.path(), bad.path()}),
            (PolicyResult{2, "",
                          "tarnpolicy diff: [" + bad.path() +
                              ":1] syntax error, unexpected ;, expecting double-quoted string\n"}));
  EXPECT_EQ(
      runPolicy({"diff", good.path()}),
      (PolicyResult{2, "", "tarnpolicy diff: there must be two policies to compare\n" + usage}));
  EXPECT_EQ(runPolicy({"diff", "-", "-"}),
            (PolicyResult{2, "",
                          "tarnpolicy diff: standard input can be one of the two only\n" + usage}));
  EXPECT_EQ(
      runPolicy({"diff", "--stat", "--json", "a", "b"}),
      (PolicyResult{2, "", "tarnpolicy diff: --stat and --json exclude each other\n" + usage}));
  EXPECT_EQ(runPolicy({"diff", good.path(), "filter:" + std::string(100, 'x')}),
            (PolicyResult{2, "",
                          "tarnpolicy diff: the filter's name is too long\n"
                          "Its usage is shown by: tarnpolicy diff --help\n"}));
  EXPECT_EQ(
      runPolicy({"diff", good.path(), "/no/such"}),
      (PolicyResult{2, "", "tarnpolicy diff: can't open /no/such: No such file or directory\n"}));
}

TEST(PolicyDiffSubcommand, StatementsThatAreNoPartOfAPolicyAreNamed) {
  const TextFile a("enable tcp strict; create addrset a;");
  const TextFile b("create addrset a;");
  EXPECT_EQ(runPolicy({"diff", a.path(), b.path()}),
            (PolicyResult{0, "",
                          a.path() + ": 1 statement is no part of a policy, the first is "
                                     "`enable tcp strict'\n"}));
}

TEST(PolicySaveSubcommand, IsCalledWithAFilter) {
  const std::string usage = "Its usage is shown by: tarnpolicy save --help\n";
  EXPECT_EQ(runPolicy({"save"}),
            (PolicyResult{2, "", "tarnpolicy save: the filter is missing (-f)\n" + usage}));
  EXPECT_EQ(runPolicy({"save", "-f", "x", "more"}),
            (PolicyResult{2, "", "tarnpolicy save: unexpected more\n" + usage}));
  EXPECT_EQ(runPolicy({"save", "-f", std::string(100, 'x')}),
            (PolicyResult{2, "",
                          "tarnpolicy save: the filter's name is too long\n"
                          "Its usage is shown by: tarnpolicy save --help\n"}));
}
