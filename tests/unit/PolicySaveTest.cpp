/// States as texts: exact texts, what can't be said, and the property that a text makes its state.

#include <gtest/gtest.h>

#include <cstring>

#include "LanguageText.h"
#include "RuleGenerator.h"
#include "RuleText.h"
#include "SaveText.h"
#include "StateText.h"
#include "TarnFWException.h"

using namespace TarnFirewall;

namespace {

constexpr char kHead[] =
    "# A policy as tarnpolicy saved it. A filter that holds nothing gets it by:\n"
    "#     tarnioctl tarnfwcli -Override -f FILTER -l FILE\n";

using Texts = std::vector<std::string>;

State stateOf(const std::string& text) { return stateOfText(text, "test.conf").state; }

/// The text after its head.
std::string savedText(const State& state) {
  const std::string text = saveText(state).text;
  EXPECT_EQ(text.substr(0, sizeof kHead - 1), kHead);
  return text.substr(sizeof kHead - 1);
}

/// The one rule of a rule set "r".
FWRule_& ruleIn(State& state) {
  for (auto& rules : state.ruleSets.at("r").rules) {
    if (!rules.empty()) return rules.front();
  }
  throw StateError("no rule");
}

State withRule(const std::string& rest) {
  return stateOf("create ruleset r with rule 1 " + rest + ";");
}

FWAddress_ address(FWAddressType_t type, std::initializer_list<int> value, std::uint8_t flags = 0) {
  FWAddress_ record{};
  record.type = static_cast<std::uint16_t>(type);
  record.flags = flags;
  std::size_t i = 0;
  for (const int byte : value) record.value[i++] = static_cast<std::uint8_t>(byte);
  return record;
}

State withMembers(std::vector<FWAddress_> addresses) {
  State state;
  state.sets["a"].addresses = std::move(addresses);
  settleSet(state.sets["a"]);
  return state;
}

std::uint64_t fromEnvironment(const char* name, std::uint64_t otherwise) {
  const char* text = std::getenv(name);
  return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

/// A name of any bytes but NUL, not empty.
std::string anyName(Choices& choices, std::uint32_t longest) {
  if (choices.chance(70)) return choices.name(longest);
  std::string name;
  for (std::uint32_t i = 1 + choices.below(longest); i > 0; --i) {
    name += static_cast<char>(1 + choices.below(255));
  }
  return name;
}

StateSet generatedSet(RuleGenerator& generator) {
  StateSet set;
  const int family = generator.choices().chance(20) ? 2 : generator.choices().chance(50) ? 4 : 6;
  for (std::uint32_t i = generator.choices().below(6); i > 0; --i) {
    RuleLosses losses;
    FWAddress_ record{};
    unsigned int written = 0;
    EXPECT_TRUE(generator.address(family, &losses)->toMessage(&record, sizeof record, &written));
    set.addresses.push_back(record);
  }
  settleSet(set);
  return set;
}

/// A filter's state with whatever its kernel might hold.
State generatedState(std::uint64_t seed) {
  RuleGenerator generator{Choices(seed)};
  Choices& choices = generator.choices();
  State state;
  // Small ones are often such that a text can say all of them.
  const bool isSmall = choices.chance(50);
  for (std::uint32_t i = choices.below(isSmall ? 2 : 4); i > 0; --i) {
    state.sets[anyName(choices, 37)] = generatedSet(generator);
  }
  std::uint32_t id = 1;
  for (std::uint32_t i = 1 + choices.below(3); i > 0; --i) {
    std::vector<FWRule_> rules;
    for (std::uint32_t n = choices.below(isSmall ? 2 : 8); n > 0; --n) {
      RuleLosses losses;
      const auto rule = generator.rule(&losses);
      FWRule_ record{};
      unsigned int written = 0;
      EXPECT_TRUE(rule->toMessage(&record, sizeof record, &written));
      record.id = choices.chance(90) ? id++ : static_cast<std::uint32_t>(choices.bits());
      rules.push_back(record);
    }
    StateRuleSet set;
    addRules(set, std::move(rules));
    if (choices.chance(30)) set.jump = anyName(choices, 63);
    state.ruleSets[anyName(choices, 63)] = std::move(set);
  }
  if (choices.chance(70)) state.layer3 = state.ruleSets.begin()->first;
  if (choices.chance(30)) state.layer2 = anyName(choices, 63);
  return state;
}

std::size_t ruleCount(const State& state) {
  std::size_t count = 0;
  for (const auto& [name, set] : state.ruleSets) count += set.count();
  return count;
}

}  // namespace

TEST(PolicySave, AnEmptyStateIsTheHeadAlone) { EXPECT_EQ(savedText({}), ""); }

TEST(PolicySave, EverythingStandsInItsOrder) {
  const State state = stateOf(
      "create ruleset a with { rule 1 in protocol any from any to any jumpto z;"
      "  rule 2 at 7 in protocol tcp strict from addrset m port 1 to not 10.0.0.0/8 port { 80, "
      "90-99 }"
      "    accept with { log, copy } as ftp tag 'say \"hi\"';"
      "  rule 3 in protocol any from any to any dnat addrset m port 80-90 poolopt random 5; };"
      "create ruleset z; set jumpto of ruleset z as a; set root ruleset a and \"\";"
      "create addrset m { 10.0.0.2, 10.0.0.1 }; create addrset empty;"
      "create addrset one 10.0.0.1-10.0.0.9;"
      "create attrprofile p with { [ FQDN : www uuid 502e1f3a-c21a-632a-4ae1-00505699b626 ],"
      "  [ APP_ID : APP_HTTP ], [ USER_SID : \"S-1-5-32-544\" ] };");
  EXPECT_EQ(
      savedText(state),
      "\ncreate addrset \"empty\";\n"
      "\ncreate addrset \"m\" with {\n    10.0.0.1,\n    10.0.0.2\n};\n"
      "\ncreate addrset \"one\" with 10.0.0.1-10.0.0.9;\n"
      "\ncreate attrprofile \"p\" with {\n"
      "    [ APP_ID : \"APP_HTTP\" ],\n"
      "    [ FQDN : \"www\" uuid 502e1f3a-c21a-632a-4ae1-00505699b626 ],\n"
      "    [ USER_SID : \"S-1-5-32-544\" ]\n"
      "};\n"
      "\ncreate ruleset \"z\";\n"
      "\ncreate ruleset \"a\" with {\n"
      "    rule 3 in protocol any from any to any dnat addrset \"m\" port 80-90 poolopt random 5;\n"
      "    rule 1 in protocol any from any to any jumpto \"z\";\n"
      "    rule 2 at 7 in protocol tcp strict from addrset \"m\" port 1 to not 10.0.0.0/8"
      " port { 90-99, 80 } accept with { log, copy } as ftp tag 'say \"hi\"';\n"
      "};\n"
      "\nset jumpto of ruleset \"z\" as \"a\";\n"
      "\nset root ruleset \"a\" and \"\";\n");
  EXPECT_TRUE(saveText(state).missing.empty());
  EXPECT_EQ(saveText(state).made, state);
}

TEST(PolicySave, WhatPrintedRulesLoseIsSaid) {
  for (const char* rest : {
           "at 4294967295 in protocol any from any to any drop",
           "in protocol 0 from any to any drop",
           "in protocol tcp with { dscp 46, option \"abcdefghijkl\" } from any to any drop",
           "in ethertype any from 00:11:22:33:44:55-00:11:22:33:44:66 to any drop",
           "in protocol any from any to any macrewrite 00:01:02:03:04:05",
           "in protocol any from \"port\" to \"10 x\" jumpto \"rule 7\"",
           "in protocol any from any to any lb lbtype l7 lboptions \"\"",
           "in protocol any from any to any encrypt keypolicy "
           "\"502e1f3a-c21a-632a-4ae1-00505699b626\" with log",
           "in protocol any from any to any extsrcprofile \"u v\" attrprofile 'in' accept tag "
           "\"a'b\"",
           "in protocol tcp flag 0 from any to any drop",
       }) {
    const State state = withRule(rest);
    const SavedText saved = saveText(state);
    EXPECT_EQ(saved.missing, Texts{}) << rest;
    EXPECT_EQ(stateOf(saved.text), state) << saved.text;
  }
}

TEST(PolicySave, AFamilyIsSaidWhereTheRuleNamedIt) {
  for (const char* rest :
       {"in inet protocol any from any to any drop", "in inet6 protocol any from any to any drop",
        "in protocol any from any to any drop",
        // It follows from the address, and is not said a second time.
        "in protocol any from 10.0.0.1 to any drop"}) {
    State state = withRule(rest);
    EXPECT_EQ(ruleText(ruleIn(state)), std::string("rule 1 ") + rest);
    EXPECT_EQ(saveText(state).made, state);
  }
}

TEST(PolicySave, IdsAndPositionsOf32BitsAreSaid) {
  State state = stateOf(
      "create ruleset r with rule 4294967295 at 2147483648 in protocol any from any "
      "to any drop;");
  EXPECT_EQ(ruleText(ruleIn(state)),
            "rule 4294967295 at 2147483648 in protocol any from any to any drop");
}

// --- What can't be said

TEST(PolicySave, ARuleThatCannotBeSaidIsACommentInItsPlace) {
  State state = stateOf(
      "create ruleset r with { rule 1 in protocol any from any to any drop;"
      " rule 2 in protocol any from any to any accept; };");
  state.ruleSets.at("r").of(StateRules::filter)[0].origin = kRuleInternal;
  const SavedText saved = saveText(state);
  EXPECT_EQ(saved.missing, Texts{"rule 1 of rule set \"r\": the kernel made it for itself"});
  EXPECT_EQ(saved.text.substr(sizeof kHead - 1),
            "\ncreate ruleset \"r\" with {\n"
            "    # missing: rule 1 of rule set \"r\": the kernel made it for itself\n"
            "    #   rule 1 in protocol any from any to any drop (the kernel made it for itself)\n"
            "    rule 2 in protocol any from any to any accept;\n"
            "};\n");
  EXPECT_EQ(stateOf(saved.text), saved.made);
  EXPECT_EQ(saved.made.ruleSets.at("r").count(), 1u);
}

TEST(PolicySave, ARuleSetOfWhichNothingCanBeSaidIsEmpty) {
  State state = withRule("in protocol any from any to any drop");
  ruleIn(state).origin = kRuleInternal;
  const SavedText saved = saveText(state);
  EXPECT_EQ(saved.text.substr(sizeof kHead - 1),
            "\n# missing: rule 1 of rule set \"r\": the kernel made it for itself\n"
            "#   rule 1 in protocol any from any to any drop (the kernel made it for itself)\n"
            "create ruleset \"r\";\n");
  EXPECT_EQ(stateOf(saved.text), saved.made);
}

TEST(PolicySave, EveryReasonIsNamed) {
  struct Case {
    const char* rest;
    void (*change)(FWRule_& rule);
    const char* reason;
  };
  static const FWAddress_ range = address(FW_ADDRESS_IPV4_RANGE, {10, 0, 0, 1, 10, 0, 0, 9});
  static const FWAddress_ attribute = address(FW_ADDRESS_ATTR_INT, {1});
  const Case cases[] = {
      {"in protocol any from 10.0.0.1 to any drop", [](FWRule_& r) { r.source = range; },
       "a range in a rule comes back as an address set"},
      {"in protocol any from 10.0.0.1 to any drop", [](FWRule_& r) { r.source = attribute; },
       "it is an attribute in place of an address"},
      {"in protocol any from 10.0.0.1 to any drop", [](FWRule_& r) { r.source.type = 77; },
       "the type of address 77 is unknown"},
      {"in protocol any from 10.0.0.1 to any drop", [](FWRule_& r) { r.source.type = 0; },
       "it is any, and yet there"},
      {"in protocol any from any to any dnat ip 10.0.0.1",
       [](FWRule_& r) { storeRecord(r.action.data, range); },
       "a range that a rule translates to comes back as an address set"},
      {"in protocol any from any to any dnat ip 10.0.0.1",
       [](FWRule_& r) { r.action.data[2] = kAddressNegated; },
       "it translates to every address but one"},
      {"in protocol any from any to any dnat addrset a poolopt random",
       [](FWRule_& r) { r.action.present = FW_POOL_BITMASK << kActionPoolShift; },
       "its pool option has no word"},
      {"in protocol any from any to any dnat addrset a poolopt random",
       [](FWRule_& r) { r.action.present = 15 << kActionPoolShift; },
       "its pool option has no word"},
      {"in protocol any from any to any dnat ip 10.0.0.1",
       [](FWRule_& r) { r.action.present = FW_POOL_RANDOM << kActionPoolShift; },
       "its text can't be read again"},
      {"in protocol any from any to any dnat ip 10.0.0.1 port 80-81",
       [](FWRule_& r) { r.action.lastPort = 80; }, "its text can't be read again"},
      {"in protocol any from any to any drop", [](FWRule_& r) { r.action.action = 99; },
       "the action 99 is unknown"},
      {"in protocol any from any to any drop", [](FWRule_& r) { r.action.flags = 0x8000; },
       "its action has the unknown flags 0x8000"},
      {"in protocol any from any to any accept as ftp",
       [](FWRule_& r) { r.action.dynamicApp = 9 << 4; }, "the application 9 is unknown"},
      {"in protocol any from any to any accept as ftp",
       [](FWRule_& r) { r.action.dynamicApp = FW_DYNAMIC_FTP << 4; },
       "its record has bytes that no text makes"},
      {"in protocol any from any to any pbr keypolicy 502e1f3a-c21a-632a-4ae1-00505699b626",
       [](FWRule_& r) { r.action.keyPolicy[0] = '\0'; }, "it has no key policy"},
      {"in protocol any from any to any pbr keypolicy 502e1f3a-c21a-632a-4ae1-00505699b626",
       [](FWRule_& r) { r.action.keyPolicy[0] = 'x'; }, "its text can't be read again"},
      {"in protocol any from any to any lb lbtype l7", [](FWRule_& r) { r.action.lbType = 2; },
       "the type of load balancing 2 is unknown"},
      {"in protocol any from any to any drop", [](FWRule_& r) { r.flags = r.flags | 0x60; },
       "its direction is unknown"},
      {"in protocol tcp from any port 1 to any drop",
       [](FWRule_& r) { r.sourcePorts.header.word = 9 << 3; }, "the kind of ports 9 is unknown"},
      {"in protocol tcp from any port { 1, 2 } to any drop",
       [](FWRule_& r) { r.sourcePorts.body[0] = 0; }, "its list of ports is empty"},
      {"in protocol tcp flag SYN from any to any drop",
       [](FWRule_& r) { r.session.flagsHeader.word = 9 << 3; }, "the kind of spec 9 is unknown"},
      {"in protocol tcp option x from any to any drop",
       [](FWRule_& r) { r.session.optionsHeader.word = 9 << 3; },
       "the kind of options 9 is unknown"},
      {"in protocol tcp option x from any to any drop",
       [](FWRule_& r) { r.session.options[0] = 41; }, "its TCP options are too long"},
      {"in protocol tcp option x from any to any drop",
       [](FWRule_& r) { r.session.options[0] = 2; }, "its TCP options hold a zero"},
      {"in protocol any from any to any drop tag \"'\"", [](FWRule_& r) { r.tag[1] = '"'; },
       "no quotes fit around \"'\\x22\""},
      {"in protocol any from any to any drop", [](FWRule_& r) { r.reserved888 = 1; },
       "its record has bytes that no text makes"},
      {"in protocol any from any to any accept", [](FWRule_& r) { r.profileMode = kProfileNone; },
       "its record has bytes that no text makes"},
  };
  for (const Case& one : cases) {
    State state = withRule(one.rest);
    FWRule_ rule = ruleIn(state);
    one.change(rule);
    State changed;
    addRules(changed.ruleSets["r"], {rule});
    const SavedText saved = saveText(changed);
    EXPECT_EQ(saved.missing, Texts{std::string("rule 1 of rule set \"r\": ") + one.reason})
        << one.rest;
    EXPECT_EQ(stateOf(saved.text), saved.made) << saved.text;
  }
}

TEST(PolicySave, RulesThatAreNotInTheOrderOfTheirPositionsAreNamed) {
  State state = stateOf(
      "create ruleset r with { rule 1 at 1 in protocol any from any to any drop;"
      " rule 2 at 2 in protocol any from any to any drop; };");
  auto& rules = state.ruleSets.at("r").of(StateRules::filter);
  std::swap(rules[0], rules[1]);
  EXPECT_EQ(saveText(state).missing,
            Texts{"rule set \"r\": its rules come back in another order or kind"});
}

TEST(PolicySave, MembersThatCannotBeSaidAreNamedOneByOne) {
  const FWAddress_ ip = address(FW_ADDRESS_IPV4, {10, 0, 0, 1});
  const FWAddress_ other = address(FW_ADDRESS_IPV4, {10, 0, 0, 7});
  const SavedText saved = saveText(
      withMembers({ip, other, address(FW_ADDRESS_ANY, {}),
                   address(FW_ADDRESS_IPV4, {1, 1, 1, 1}, kAddressNegated),
                   address(FW_ADDRESS_ATTR_UINT, {1}), address(FW_ADDRESS_ADDRSET, {'b'})}));
  EXPECT_EQ(saved.missing,
            (Texts{"address set \"a\": any stands alone in a text only",
                   "address set \"a\": not 1.1.1.1 is excluded, which no set can say",
                   "address set \"a\": addrset \"b\" is a set in a set, which no text makes",
                   "address set \"a\": (it is an attribute in place of an address) has no words in "
                   "the language"}));
  EXPECT_EQ(stateOf(saved.text), saved.made);
  EXPECT_EQ(saved.made, withMembers({ip, other}));
}

TEST(PolicySave, ARangeAmongOthersComesBackAsItsBlocks) {
  const SavedText saved =
      saveText(withMembers({address(FW_ADDRESS_IPV4_RANGE, {10, 0, 0, 1, 10, 0, 0, 2}),
                            address(FW_ADDRESS_IPV4, {10, 0, 0, 9})}));
  EXPECT_EQ(saved.missing,
            Texts{"address set \"a\": 10.0.0.1-10.0.0.2 comes back as the blocks that cover it"});
  EXPECT_EQ(saved.made, stateOf("create addrset a { 10.0.0.1, 10.0.0.2, 10.0.0.9 };"));
  EXPECT_EQ(stateOf(saved.text), saved.made);
}

TEST(PolicySave, SetsThatCannotBeSaidAreNamed) {
  State state = stateOf("create attrprofile p with { [ APP_ID : APP_HTTP ] };");
  const StateSet profile = state.sets.at("p");
  const auto missing = [](const std::string& name, const StateSet& set) {
    State one;
    one.sets[name] = set;
    const SavedText saved = saveText(one);
    EXPECT_EQ(stateOf(saved.text), State{});
    return saved.missing;
  };
  StateSet set = profile;
  set.elements.clear();
  EXPECT_EQ(missing("p", set),
            Texts{"container \"p\": the language has no attribute profile without values"});
  set.type = 9;
  EXPECT_EQ(missing("p", set), Texts{"container \"p\": the language has no container of type 9"});
  EXPECT_EQ(missing("a\"'\n", profile),
            Texts{"container \"a\\x22'\\x0a\": no quotes fit around \"a\\x22'\\x0a\""});
  set = profile;
  set.elements[0].resize(9);
  EXPECT_EQ(missing("p", set), Texts{"container \"p\": it has an element that is no attribute"});
  set = profile;
  set.elements[0][8] = 99;
  EXPECT_EQ(missing("p", set), Texts{"container \"p\": it has the unknown key 99"});
  set = profile;
  set.elements[0].pop_back();
  EXPECT_EQ(missing("p", set), Texts{"container \"p\": it has an attribute that is cut off"});
  set = profile;
  set.elements[0].back() = '\x7f';
  EXPECT_EQ(missing("p", set),
            Texts{"container \"p\": it has a value without a name, 9151314442816847953"});
  // Each cut of an element of each kind gives a name made of its own bytes only.
  for (const char* values :
       {"FQDN : www uuid 502e1f3a-c21a-632a-4ae1-00505699b626", "USER_SID : \"S-1-5-32-544\""}) {
    const State other = stateOf(std::string("create attrprofile p with { [ ") + values + " ] };");
    const std::string element = other.sets.at("p").elements[0];
    for (std::size_t size = 0; size < element.size(); ++size) {
      set.elements[0] = std::string(element.begin(), element.begin() + static_cast<long>(size));
      EXPECT_EQ(missing("p", set).size(), 1u) << size;
    }
  }
}

TEST(PolicySave, ARootAndAJumpWithoutQuotesThatFitAreNamed) {
  State state = stateOf("create ruleset r;");
  state.ruleSets.at("r").jump = "a\"'";
  state.layer3 = "b\"'";
  EXPECT_EQ(saveText(state).missing,
            (Texts{"jump of rule set \"r\" to \"a\\x22'\": no quotes fit around \"a\\x22'\"",
                   "the root: no quotes fit around \"b\\x22'\""}));
}

TEST(PolicySave, ARootAndAJumpWhoseNamesFillTheirFieldsAreNamed) {
  const std::string longest(63, 'n'), whole(64, 'n');
  State state = stateOf("create ruleset r;");
  state.ruleSets.at("r").jump = longest;
  state.layer3 = state.layer2 = longest;
  const SavedText saved = saveText(state);
  EXPECT_EQ(saved.missing, Texts{});
  EXPECT_EQ(stateOf(saved.text), state);
  state.ruleSets.at("r").jump = whole;
  state.layer3 = whole;
  EXPECT_EQ(saveText(state).missing,
            (Texts{"jump of rule set \"r\" to \"" + whole + "\": its text can't be read again",
                   "the root: its text can't be read again"}));
}

// --- Verification

TEST(PolicySave, DifferencesOfRecordsAreNamed) {
  const State a = stateOf(
      "create addrset a 10.0.0.1; create addrset gone; create ruleset r with { rule 1 in protocol "
      "any "
      "from any to any drop; rule 2 in protocol any from any to any drop; }; set root ruleset r;");
  const State b = stateOf(
      "create addrset a 10.0.0.2; create ruleset new; create ruleset r with { rule 1 at 1 in "
      "protocol "
      "any from any to any drop; }; set jumpto of ruleset r as r;");
  EXPECT_EQ(
      recordDifferences(a, b, 100),
      (Texts{"set \"a\" has other members", "set \"gone\" is not in the text",
             "rule set \"r\" jumps to another one", "rule set \"r\" has another number of rules",
             "rule 1 of rule set \"r\" has another record", "rule set \"new\" is in the text only",
             "the root is another one"}));
  EXPECT_EQ(recordDifferences(a, b, 2).size(), 2u);
  EXPECT_TRUE(recordDifferences(a, a, 100).empty());
}

// --- The property

/// TARNFW_PROPERTY_STATES sets how many states, TARNFW_PROPERTY_SEED where they begin.
TEST(PolicySave, ATextMakesWhatItSaysAndTheSameTextAgain) {
  const std::uint64_t count = fromEnvironment("TARNFW_PROPERTY_STATES", 1500);
  const std::uint64_t seed = fromEnvironment("TARNFW_PROPERTY_SEED", 1);
  std::size_t whole = 0, rules = 0, said = 0;
  for (std::uint64_t i = 0; i < count; ++i) {
    SCOPED_TRACE("seed " + std::to_string(seed + i));
    const State state = generatedState(seed + i);
    const SavedText saved = saveText(state);
    ASSERT_EQ(stateOf(saved.text), saved.made) << saved.text;
    rules += ruleCount(state);
    said += ruleCount(saved.made);
    if (saved.missing.empty()) {
      ++whole;
      ASSERT_EQ(saved.made, state) << saved.text;
    } else {
      ASSERT_FALSE(saved.made == state) << saved.missing.front();
    }
    // What can be said is said the same way again.
    const SavedText again = saveText(saved.made);
    ASSERT_EQ(again.missing, Texts{});
    ASSERT_EQ(again.made, saved.made);
    if (saved.missing.empty()) {
      ASSERT_EQ(again.text, saved.text);
    }
  }
  // The generator also makes what no text can say; most is not that.
  EXPECT_GT(said, rules / 2);
  EXPECT_GT(whole, count / 20);
}
