#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "Choices.h"
#include "PolicyText.h"
#include "StateText.h"

namespace {

using Lines = std::vector<std::string>;

const std::string kRule = "rule 1 in protocol any from any to any ";

TEST(PolicyNames, AnUnknownNameIsReportedOnceWithTheNumberOfItsUses) {
  EXPECT_EQ(foundOf("unknown-set",
                    "create ruleset \"r\" {\n"
                    " rule 1 in protocol tcp from \"a\" to not addrset a accept;\n"
                    " rule 2 out protocol tcp from any to any snat addrset \"b\";\n"
                    "};"),
            (Lines{"2:30 unknown-set: nothing creates the set `a` (used in 2 places)",
                   "3:55 unknown-set: nothing creates the set `b`"}));
}

TEST(PolicyNames, OfTwoNamesThatAreEquallyNearTheFirstIsProposed) {
  for (const char* sets : {"create addrset \"nets1\"; create addrset \"nets2\";",
                           "create addrset \"nets2\"; create addrset \"nets1\";"}) {
    const Diagnostics diagnostics =
        checked({std::string(sets) +
                 "create ruleset \"r\" { rule 1 in protocol any from \"nets3\" to any drop; };"});
    std::string help;
    for (const Diagnostic& diagnostic : diagnostics.all()) {
      if (diagnostic.check == Check::unknownSet) help = diagnostic.help;
    }
    EXPECT_EQ(help, "did you mean `nets1`?") << sets;
  }
}

TEST(PolicyNames, OrderDoesNotMatterForRulesAndMattersForStatements) {
  EXPECT_EQ(
      found("create ruleset \"r\" { rule 1 in protocol tcp from \"a\" to any jumpto \"s\"; };\n"
            "create addrset \"a\" 10.0.0.1;\n"
            "create ruleset \"s\" { " +
            kRule + "drop; };"),
      Lines{});
  EXPECT_EQ(found("destroy addrset \"a\";\ncreate addrset \"a\" 10.0.0.1;\n"
                  "destroy addrset \"a\";\ndestroy addrset \"a\";"),
            (Lines{"1:17 unknown-set: the set `a` is not there when this statement is carried out",
                   "4:17 unknown-set: the set `a` is not there when this statement is carried "
                   "out"}));
  EXPECT_EQ(found("create ruleset \"r\"; destroy all ruleset; clear rule of ruleset \"r\";"),
            (Lines{"1:64 unknown-ruleset: the rule set `r` is not there when this statement is "
                   "carried out"}));
}

TEST(PolicyNames, EveryStatementThatNeedsANameIsLookedAt) {
  for (const char* statement :
       {"set jumpto of ruleset \"x\" as \"y\";", "describe jumpto of ruleset \"x\";",
        "clear jumpto of ruleset \"x\";", "clear rule of ruleset \"x\";", "destroy ruleset \"x\";",
        "describe rule count of ruleset \"x\";", "describe snat rule of ruleset \"x\" from 2;",
        "describe stat of ruleset \"x\" with { 1, 2 };", "describe info of ruleset \"x\";",
        "set root ruleset \"x\" and \"y\";"}) {
    const std::string text = std::string("create ruleset \"y\";\n") + statement;
    EXPECT_EQ(foundOf("unknown-ruleset", text).size(), 1u) << text;
    EXPECT_EQ(found("create ruleset \"x\";\n" + text), Lines{}) << text;
  }
  for (const char* statement :
       {"delete all from addrset \"x\";", "destroy addrset \"x\";",
        "describe size of addrset \"x\";", "describe address of addrset \"x\" from 5;",
        "describe info of addrset \"x\";",
        "create spoofguard with addrset \"x\" and mac 00:11:22:33:44:55;"}) {
    EXPECT_EQ(foundOf("unknown-set", statement).size(), 1u) << statement;
    EXPECT_EQ(found(std::string("create addrset \"x\" 10.0.0.1;\n") + statement), Lines{})
        << statement;
  }
}

TEST(PolicyNames, FiltersHaveNamesOfTheirOwn) {
  const std::string a = "create addrset \"a\" of filter \"f1\" { 10.0.0.1 };\n";
  EXPECT_EQ(found(a + "create addrset \"a\" of filter \"f2\" { 10.0.0.1 };"), Lines{});
  EXPECT_EQ(foundOf("unknown-set", a + "create ruleset \"r\" of filter \"f2\" { rule 1 in protocol "
                                       "any from a to any drop; };")
                .size(),
            1u);
  EXPECT_EQ(
      found(a + "create ruleset \"r\" of filter \"f1\" { rule 1 in protocol any from a to any "
                "drop; };"),
      Lines{});
}

TEST(PolicyNames, WhatAFilterHoldsIsKnownAndWhatItDoesNotHoldIsAnError) {
  HeldNames held;
  held.names[static_cast<std::size_t>(NameKind::set)].insert("a");
  held.names[static_cast<std::size_t>(NameKind::ruleSet)].insert({"s", "r_L2"});
  const auto errorsIn = [&](const std::string& text) {
    SourceTexts sources;
    sources.emplace_back("1", text);
    const Diagnostics diagnostics = checkTexts(sources, &held);
    std::string messages;
    for (const Diagnostic& diagnostic : diagnostics.all()) {
      messages += (diagnostic.severity == Severity::error ? "error " : "warning ") +
                  diagnostic.message + "\n";
    }
    return messages;
  };
  EXPECT_EQ(
      errorsIn("create ruleset \"r\" of filter \"other\" { rule 1 in protocol any from a to any "
               "jumpto s; };\nset root ruleset \"r\";"),
      "");
  EXPECT_EQ(errorsIn("create ruleset \"r\" { rule 1 in protocol any from b to any jumpto t; };"),
            "error nothing creates the set `b`, and the filter does not hold it\n"
            "error the jump leads to the rule set `t`, which nothing creates, and the filter does "
            "not hold it\n");
  EXPECT_EQ(
      errorsIn("destroy all addrset; describe info of addrset a;"),
      "error the set `a` is not there when this statement is carried out, and the filter does "
      "not hold it\n");
}

TEST(PolicyNames, NamesInStatementsWithErrorsAreTakenForRight) {
  EXPECT_EQ(found("create addrset \"a\" { 10.0.0.1 10.0.0.2 };\n"
                  "create ruleset \"r\" { rule 1 in protocol any from a to any accept; };"),
            (Lines{"1:30 syntax: `,` is missing after `10.0.0.1`"}));
}

TEST(PolicyNames, CirclesOfAllLengthsAreFoundOnce) {
  const auto jump = [](const std::string& from, const std::string& to) {
    return "create ruleset \"" + from + "\" { rule 1 in protocol any from any to any jumpto \"" +
           to + "\"; };\n";
  };
  EXPECT_EQ(foundOf("jump-circle", jump("a", "a")),
            (Lines{"1:68 jump-circle: the jumps lead in a circle: `a`, `a`"}));
  EXPECT_EQ(foundOf("jump-circle", jump("a", "b") + jump("b", "c") + jump("c", "a")).size(), 1u);
  EXPECT_EQ(foundOf("jump-circle", jump("a", "b") + jump("b", "c") + jump("d", "b")).size(), 0u);
  std::string chain;
  for (int i = 0; i < 20000; ++i) chain += jump(std::to_string(i), std::to_string(i + 1));
  EXPECT_EQ(foundOf("jump-circle", chain).size(), 0u);
  EXPECT_EQ(foundOf("jump-circle", chain + jump("20000", "0")).size(), 1u);
}

TEST(PolicyNames, GeneratedSetsHaveTheNamesOfTheLibrary) {
  EXPECT_EQ(foundOf("generated-set",
                    "create addrset \"dst7\" 10.0.0.1; create addrset \"target7\" 10.0.0.1;\n"
                    "create addrset \"src-1\" 10.0.0.1;\n"
                    "create ruleset \"r\" {\n"
                    " rule 7 out protocol tcp from any to 10.0.0.1-9 snat ip 192.0.2.1-192.0.2.9;\n"
                    " rule 0xffffffff in protocol tcp from 2001:db8::1-2001:db8::9 to any accept;\n"
                    "};")
                .size(),
            3u);
  // The order of the two does not matter.
  EXPECT_EQ(
      foundOf("generated-set",
              "create ruleset \"r\" { rule 7 in protocol tcp from 10.0.0.1-9 to any accept; };\n"
              "create addrset \"src7\" 10.0.0.1;"),
      (Lines{"2:16 generated-set: the set `src7` has the name of one that is made for a "
             "range"}));
}

TEST(PolicyNames, EveryPartWithoutEffectIsNamed) {
  for (const char* statement :
       {"debug \"xx\" 1;", "describe tcp strict;", "config file \"a\" save to \"b\";",
        "config file \"a\"; config file \"b\";"}) {
    EXPECT_EQ(foundOf("no-effect", statement).size(), 1u) << statement;
  }
  EXPECT_EQ(found("debug \"dp\" 1; config device \"a\"; enable tcp strict; describe stat of kif; "
                  "describe config of lb; describe stat of lb;"),
            Lines{});
}

/// A rule set with one rule that jumps.
std::string jumping(const std::string& from, const std::string& to) {
  return "create ruleset \"" + from + "\" { rule 1 in protocol any from any to any jumpto \"" + to +
         "\"; };\n";
}

TEST(PolicyNames, OnlyJumpsThatAreLeftMakeCircles) {
  const std::string back = jumping("b", "a");
  const std::string sets = "create ruleset \"a\"; create ruleset \"b\"; create ruleset \"c\";\n";
  const std::string own = sets + "set jumpto of ruleset \"a\" as \"b\";\n";
  ASSERT_EQ(foundOf("jump-circle", jumping("a", "b") + back).size(), 1u);
  ASSERT_EQ(foundOf("jump-circle", own + back).size(), 1u);
  for (const std::string& text :
       {jumping("a", "b") + "create ruleset \"a\"; " + back,
        jumping("a", "b") + jumping("a", "c") + back,
        jumping("a", "b") + "destroy ruleset \"a\"; create ruleset \"a\"; " + back,
        jumping("a", "b") + "destroy all ruleset; create ruleset \"a\"; " + back,
        jumping("a", "b") + "clear rule of ruleset \"a\"; " + back,
        own + "set jumpto of ruleset \"a\" as \"c\"; " + back,
        own + "clear jumpto of ruleset \"a\"; " + back,
        own + "destroy ruleset \"a\"; create ruleset \"a\"; " + back}) {
    EXPECT_EQ(foundOf("jump-circle", text), Lines{}) << text;
  }
  // The kernel keeps the jump of a rule set that is created again, and that of one that is cleared.
  EXPECT_EQ(
      foundOf("jump-circle", own + "create ruleset \"a\"; clear rule of ruleset \"a\"; " + back)
          .size(),
      1u);
  // One that its rules have does not go with its own.
  EXPECT_EQ(
      foundOf("jump-circle", jumping("a", "b") + "clear jumpto of ruleset \"a\"; " + back).size(),
      1u);
}

TEST(PolicyNames, ALongCircleIsShownByItsEnds) {
  std::string text;
  for (int i = 10; i < 19; ++i) text += jumping(std::to_string(i), std::to_string(i + 1));
  EXPECT_EQ(foundOf("jump-circle", text + jumping("18", "11")),
            (Lines{
                "10:69 jump-circle: the jumps lead in a circle: `11`, `12`, `13`, `14`, `15`, "
                "`16`, `17`, `18`, `11`",
            }));
  EXPECT_EQ(foundOf("jump-circle", text + jumping("19", "10")),
            (Lines{"10:69 jump-circle: the jumps lead in a circle: `10`, `11`, `12`, `13`, ..., "
                   "`16`, `17`, `18`, `19`, `10`"}));
}

TEST(PolicyNames, ASetThatIsOnlyDestroyedIsNotCreated) {
  EXPECT_EQ(found("destroy addrset \"a\";\n"
                  "create ruleset \"r\" { rule 1 in protocol any from \"a\" to any drop; };"),
            (Lines{"1:17 unknown-set: the set `a` is not there when this statement is carried out",
                   "2:50 unknown-set: nothing creates the set `a`"}));
  HeldNames held;
  held.names[static_cast<std::size_t>(NameKind::set)].insert("a");
  SourceTexts sources;
  sources.emplace_back(
      "1", "destroy addrset \"a\"; create ruleset \"r\" { " + kRule +
               "drop; }; create ruleset \"s\" { rule 1 in protocol any from \"a\" to any drop; };");
  const Diagnostics diagnostics = checkTexts(sources, &held);
  ASSERT_EQ(diagnostics.all().size(), 1u);
  EXPECT_EQ(diagnostics.all()[0].message,
            "nothing creates the set `a`, and the filter does not hold it");
}

TEST(PolicyNames, ASetThatIsDestroyedIsMissingToTheRulesThatAreLeft) {
  const std::string sets =
      "create addrset \"a\" 10.0.0.1; create attrprofile \"p\" with { [ APP_ID : APP_HTTP ] };\n";
  const std::string rules =
      "create ruleset \"r\" {\n"
      " rule 1 in protocol any from \"a\" to any drop;\n"
      " rule 2 in protocol any from any to not addrset a attrprofile \"p\" accept;\n"
      "};\n";
  const Lines noSet{
      "3:30 unknown-set: the set `a` is destroyed, but this rule still uses it (used in 2 places)"};
  const Lines noContainer{
      "4:63 unknown-container: the container `p` is destroyed, but this rule still uses it"};
  Lines none = noSet;
  none.insert(none.end(), noContainer.begin(), noContainer.end());
  EXPECT_EQ(found(sets + rules + "destroy addrset \"a\";"), noSet);
  EXPECT_EQ(
      found(sets + "destroy addrset \"a\"; " + rules),
      Lines{"3:30 unknown-set: the set `a` is destroyed, but this rule still uses it (used in "
            "2 places)"});
  EXPECT_EQ(found(sets + rules + "delete attrprofile \"p\";"), noContainer);
  EXPECT_EQ(found(sets + rules + "destroy all addrset;"), none);
  for (const char* end :
       {"", "destroy addrset \"a\"; create addrset \"a\" 10.0.0.2;",
        "destroy all addrset; create addrset \"a\" 10.0.0.2; create addrset \"p\" 10.0.0.3;",
        "destroy addrset \"a\"; destroy ruleset \"r\"; delete attrprofile \"p\";",
        "destroy all addrset; destroy all ruleset;",
        "destroy all addrset; clear rule of ruleset r;",
        "destroy addrset \"a\"; create attrprofile \"a\" with { [ APP_ID : APP_DNS ] };"}) {
    EXPECT_EQ(foundOf("unknown-set", sets + rules + end), Lines{}) << end;
    EXPECT_EQ(foundOf("unknown-container", sets + rules + end), Lines{}) << end;
  }
  EXPECT_EQ(found("create ruleset \"r\" { rule 7 in protocol any from 10.0.0.1-9 to any drop; };\n"
                  "destroy all addrset;"),
            Lines{"1:50 unknown-set: the set `src7` is destroyed, but this rule still uses it"});
  // A statement with a mistake may be the one that helps.
  EXPECT_EQ(
      foundOf("unknown-set", sets + rules + "destroy addrset \"a\"; destroy ruleset \"r\" r;"),
      Lines{});
  EXPECT_EQ(foundOf("unknown-set",
                    sets + rules + "destroy addrset \"a\"; create addrset \"a\" 10.0.0.300;"),
            Lines{});
}

TEST(PolicyNames, ADestroyedSetIsAnErrorWhereTheFilterIsKnown) {
  HeldNames held;
  SourceTexts sources;
  sources.emplace_back("1",
                       "create addrset \"a\" 10.0.0.1; create ruleset \"r\" { rule 1 in "
                       "protocol any from \"a\" to any drop; }; destroy addrset \"a\";");
  const Diagnostics diagnostics = checkTexts(sources, &held);
  ASSERT_EQ(diagnostics.all().size(), 1u);
  const Diagnostic& diagnostic = diagnostics.all()[0];
  EXPECT_EQ(diagnostic.severity, Severity::error);
  EXPECT_EQ(diagnostic.help, "destroy what uses it first, or keep it");
  EXPECT_EQ(diagnostic.relatedMessage, "destroyed here");
  EXPECT_EQ(sources[0].place(diagnostic.related.begin).column, 115u);
}

/// A text of some sets, profiles and rule sets that are made and destroyed in any order, and what
/// of them it ever creates.
struct DestroyingText {
  explicit DestroyingText(std::uint64_t seed) : choices_(seed) {
    const std::uint32_t statements = 3 + choices_.below(10);
    for (std::uint32_t i = 0; i < statements; ++i) add();
  }

  std::string text;
  std::set<std::string> sets, profiles;

 private:
  std::string name() { return std::string(1, "abc"[choices_.below(3)]); }

  void add() {
    const std::string set = name(), ruleSet = "r" + name();
    switch (choices_.below(14)) {
      case 0:
        text += "destroy all addrset;\n";
        return;
      case 1:
        text += "destroy all ruleset;\n";
        return;
      case 2:
        text += "destroy ruleset \"" + ruleSet + "\";\n";
        return;
      case 3:
        text += "clear rule of ruleset \"" + ruleSet + "\";\n";
        return;
      case 4:
      case 5:
        text += "destroy addrset \"" + set + "\";\n";
        return;
      case 6:
        text += "delete attrprofile \"" + set + "\";\n";
        return;
      case 7:
        text += "create attrprofile \"" + set + "\" with { [ APP_ID : APP_HTTP ] };\n";
        profiles.insert(set);
        return;
      case 8:
      case 9:
      case 10:
        text += "create addrset \"" + set + "\" 10.0.0.1;\n";
        sets.insert(set);
        return;
      case 11:
        text += "destroy addrset \"src" + std::to_string(choices_.below(3)) + "\";\n";
        return;
      default:
        if (choices_.chance(20)) {
          text += "create ruleset \"" + ruleSet + "\";\n";
          return;
        }
        text += "create ruleset \"" + ruleSet + "\" {\n";
        for (std::uint32_t i = 1 + choices_.below(3); i > 0; --i) addRule();
        text += "};\n";
    }
  }

  void addRule() {
    const std::string id = std::to_string(choices_.below(3));
    text += "rule " + id + " in protocol any from ";
    if (choices_.chance(30)) {
      text += "10.0.0.1-9";
      sets.insert("src" + id);
    } else {
      text += choices_.chance(50) ? "any" : "addrset " + name();
    }
    text += " to " + (choices_.chance(50) ? "any" : "not addrset " + name());
    if (choices_.chance(30)) text += " attrprofile \"" + name() + "\"";
    text += " drop;\n";
  }

  Choices choices_;
};

/// What rules of the text's final state refer to that is not there, of what the text created.
Lines missingSets(const DestroyingText& text) {
  const State state = stateOfText(text.text, "test").state;
  std::map<std::string, unsigned int> missing;
  const auto refer = [&](const char* kind, const std::string& name, bool wasCreated) {
    if (name.empty() || !wasCreated || state.sets.contains(name)) return;
    ++missing["unknown-" + std::string(kind) + ": the " + kind + " `" + name +
              "` is destroyed, but this rule still uses it"];
  };
  for (const auto& [ruleSet, rules] : state.ruleSets) {
    for (const TarnFirewall::FWRule_& rule : rules.of(StateRules::filter)) {
      const StateReferences references = referencesOf(rule);
      for (const std::string_view set : {references.source, references.destination}) {
        refer("set", std::string(set), text.sets.contains(std::string(set)));
      }
      const std::string profile(references.attributeProfile);
      refer("container", profile, text.sets.contains(profile) || text.profiles.contains(profile));
    }
  }
  Lines lines;
  for (const auto& [line, count] : missing) {
    lines.push_back(count > 1 ? line + " (used in " + std::to_string(count) + " places)" : line);
  }
  return lines;
}

TEST(PolicyNames, DestroyedSetsAreThoseThatTheFinalStateLacks) {
  std::size_t texts = 0, names = 0;
  for (std::uint64_t seed = 1; seed <= 4000; ++seed) {
    const DestroyingText text(seed);
    Lines lines;
    for (const std::string& line : found(text.text)) {
      if (line.find(" is destroyed, but") != line.npos)
        lines.push_back(line.substr(line.find(' ') + 1));
    }
    std::sort(lines.begin(), lines.end());
    const Lines expected = missingSets(text);
    ASSERT_EQ(lines, expected) << "seed " << seed << "\n" << text.text;
    texts += expected.empty() ? 0 : 1;
    names += expected.size();
  }
  EXPECT_GT(texts, 400u);
  EXPECT_LT(texts, 3600u);
  EXPECT_GT(names, texts);
}

TEST(PolicyNames, SetsAndContainersShareTheirNames) {
  const std::string set = "create addrset \"a\" 10.0.0.1;\n";
  const std::string container = "create attrprofile \"a\" with { [ APP_ID : APP_HTTP ] };\n";
  EXPECT_EQ(found(set + container),
            (Lines{"2:20 duplicate-name: the container `a` has the name of a set"}));
  EXPECT_EQ(found(container + set),
            (Lines{"2:16 duplicate-name: the set `a` has the name of a container"}));
  EXPECT_EQ(found(container + container),
            (Lines{"2:20 duplicate-name: the container `a` is created a second time"}));
  EXPECT_EQ(found(container + "destroy addrset \"a\";\n" + set + "delete attrprofile \"a\";\n" +
                  container + "destroy all addrset;\n" + set),
            Lines{});
  EXPECT_EQ(found("create ruleset \"a\";\n" + set), Lines{});
  const std::string range =
      "create ruleset \"r\" { rule 7 in protocol any from 10.0.0.1-9 to any attrprofile \"src7\" "
      "drop; };\n";
  EXPECT_EQ(foundOf("generated-set",
                    "create attrprofile \"src7\" with { [ APP_ID : APP_HTTP ] };\n" + range),
            (Lines{"2:50 generated-set: the set `src7` that is made for this range takes the place "
                   "of a container that the text creates"}));
}

TEST(PolicyNames, OnlyTheLastRootNeedsItsLayer2RuleSet) {
  const std::string sets = "create ruleset \"a\"; create ruleset \"b\";\n";
  EXPECT_EQ(foundOf("missing-layer2", sets + "set root ruleset \"a\";").size(), 1u);
  EXPECT_EQ(foundOf("missing-layer2", sets + "set root ruleset \"a\"; clear root ruleset;"),
            Lines{});
  EXPECT_EQ(
      foundOf("missing-layer2", sets + "set root ruleset \"a\"; set root ruleset \"b\" and \"\";"),
      Lines{});
  EXPECT_EQ(foundOf("missing-layer2",
                    sets + "create ruleset \"a_L2\"; set root ruleset \"a\"; destroy ruleset "
                           "\"a_L2\";")
                .size(),
            1u);
  EXPECT_EQ(foundOf("missing-layer2", sets + "set root ruleset \"a\"; create ruleset \"a_L2\";"),
            Lines{});
}

TEST(PolicyNames, StatementsThatDestroyAllCostNoMoreWithManyNames) {
  std::string text;
  for (int i = 0; i < 20000; ++i) {
    text += "create addrset \"a" + std::to_string(i) + "\"; " + "create ruleset \"r" +
            std::to_string(i) + "\" { rule 1 in protocol any from any to any jumpto \"s\"; };\n";
  }
  for (int i = 0; i < 20000; ++i) text += "destroy all addrset; destroy all ruleset;\n";
  EXPECT_EQ(foundOf("unused-set", text), Lines{});
}

}  // namespace
