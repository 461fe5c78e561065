/// States, and what texts make of them.

#include <gtest/gtest.h>

#include <cstring>

#include "LanguageText.h"
#include "State.h"
#include "StateText.h"
#include "TarnFWWire.h"

using namespace TarnFirewall;

namespace {

State stateOf(const std::string& text) { return stateOfText(text, "test.conf").state; }

/// The message of the `StateError` that a text ends with.
std::string errorOf(const std::string& text) {
  try {
    stateOf(text);
  } catch (const StateError& e) {
    return e.what();
  }
  return "no error";
}

std::vector<std::uint32_t> idsOf(const StateRuleSet::Rules& rules) {
  std::vector<std::uint32_t> ids;
  for (const FWRule_& rule : rules) ids.push_back(rule.id);
  return ids;
}

using Ids = std::vector<std::uint32_t>;
using Names = std::vector<std::string>;

std::vector<std::string> shown(const StateSet& set) {
  std::vector<std::string> texts;
  for (const FWAddress_& address : set.addresses) texts.push_back(shownAddress(address));
  return texts;
}

std::vector<std::byte> bytesOf(const std::vector<std::uint8_t>& values) {
  std::vector<std::byte> bytes;
  for (const std::uint8_t value : values) bytes.push_back(std::byte{value});
  return bytes;
}

}  // namespace

// --- Statements

TEST(PolicyStateText, RulesGoIntoTheirKindsAndByPositionInEach) {
  const State state = stateOf(
      "create ruleset web with {"
      " rule 1 at 5 in protocol any from any to any drop;"
      " rule 2 out protocol any from any to any snat ip 192.0.2.1;"
      " rule 3 in protocol any from any to any dnat ip 192.0.2.1;"
      " rule 4 in protocol any from any to any lb lbtype l4;"
      " rule 5 at 4294967295 in protocol any from any to any accept;"
      " rule 6 in protocol any from any to any accept; };");
  const StateRuleSet& set = state.ruleSets.at("web");
  EXPECT_EQ(idsOf(set.of(StateRules::filter)), (Ids{5, 6, 1}));
  EXPECT_EQ(idsOf(set.of(StateRules::snat)), Ids{2});
  EXPECT_EQ(idsOf(set.of(StateRules::dnat)), (Ids{3, 4}));
  EXPECT_EQ(set.count(), 6u);
}

TEST(PolicyStateText, RulesOfOnePositionKeepTheirOrder) {
  const std::string rest = " in protocol any from any to any drop;";
  const State state = stateOf("create ruleset web with { rule 9 at 5" + rest + " rule 1 at 1" +
                              rest + " rule 2 at 1" + rest + " rule 3 at 5" + rest + " };");
  EXPECT_EQ(idsOf(state.ruleSets.at("web").of(StateRules::filter)), (Ids{1, 2, 9, 3}));
}

TEST(PolicyStateText, MembersAreSortedAndStandOnce) {
  const State state =
      stateOf("create addrset a { 10.0.0.9, 10.0.0.1-3, 10.0.0.9, 2001:db8::1, 10.0.0.0/24 };");
  EXPECT_EQ(shown(state.sets.at("a")),
            (Names{"10.0.0.1", "10.0.0.9", "2001:db8::1", "10.0.0.0/24", "10.0.0.2/31"}));
}

TEST(PolicyStateText, ARangeInARuleMakesItsSet) {
  const State state =
      stateOf("create ruleset r with rule 7 in protocol any from 10.0.0.1-2 to any drop;");
  EXPECT_EQ(shown(state.sets.at("src7")), (Names{"10.0.0.1", "10.0.0.2"}));
  EXPECT_EQ(referencesOf(state.ruleSets.at("r").of(StateRules::filter)[0]).source, "src7");
}

TEST(PolicyStateText, ALaterStatementReplacesWhatAnEarlierOneMade) {
  const State state = stateOf(
      "create addrset a 10.0.0.1; create addrset a 10.0.0.2;"
      "create addrset p 10.0.0.1; create attrprofile p with { [ APP_ID : APP_HTTP ] };"
      "create ruleset x with rule 1 in protocol any from any to any drop;"
      "create ruleset y; set jumpto of ruleset x as y;"
      "create ruleset x with rule 2 in protocol any from any to any drop;");
  EXPECT_EQ(shown(state.sets.at("a")), Names{"10.0.0.2"});
  EXPECT_FALSE(state.sets.at("p").isAddresses());
  EXPECT_EQ(state.sets.at("p").elements.size(), 1u);
  EXPECT_TRUE(state.sets.at("p").addresses.empty());
  EXPECT_EQ(idsOf(state.ruleSets.at("x").of(StateRules::filter)), Ids{2});
  EXPECT_EQ(state.ruleSets.at("x").jump, "y");
}

TEST(PolicyStateText, WhatIsDestroyedIsGone) {
  const std::string all =
      "create addrset a 10.0.0.1; create addrset b 10.0.0.1;"
      "create ruleset x with rule 1 in protocol any from any to any drop; create ruleset y;"
      "set jumpto of ruleset x as y; set root ruleset x and y;";
  EXPECT_TRUE(stateOf(all + "destroy all addrset;").sets.empty());
  EXPECT_EQ(stateOf(all + "destroy addrset a;").sets.size(), 1u);
  EXPECT_TRUE(stateOf(all + "delete all from addrset a;").sets.at("a").addresses.empty());
  EXPECT_EQ(stateOf(all + "destroy ruleset x;").ruleSets.size(), 1u);
  EXPECT_EQ(stateOf(all + "clear rule of ruleset x;").ruleSets.at("x").count(), 0u);
  EXPECT_EQ(stateOf(all + "clear jumpto of ruleset x;").ruleSets.at("x").jump, "");
  EXPECT_FALSE(stateOf(all + "clear root ruleset;").hasRoot());
  const State none = stateOf(all + "destroy all ruleset;");
  EXPECT_TRUE(none.ruleSets.empty());
  EXPECT_FALSE(none.hasRoot());
  EXPECT_TRUE(stateOf("destroy addrset a; destroy ruleset x; clear rule of ruleset x;"
                      "delete all from addrset a; destroy all ruleset;")
                  .isEmpty());
}

TEST(PolicyStateText, TheRootHasTwoNames) {
  const std::string sets = "create ruleset a; create ruleset a_L2;";
  State state = stateOf(sets + "set root ruleset a;");
  EXPECT_EQ(state.layer3, "a");
  EXPECT_EQ(state.layer2, "a_L2");
  state = stateOf(sets + "set root ruleset \"\" and a_L2;");
  EXPECT_EQ(state.layer3, "");
  EXPECT_EQ(state.layer2, "a_L2");
  EXPECT_FALSE(state.ruleSets.contains(""));
}

TEST(PolicyStateText, EveryFilterThatAStatementNamesCounts) {
  EXPECT_EQ(
      stateOf("create addrset a of filter x 10.0.0.1; create addrset b of filter y;").sets.size(),
      2u);
}

TEST(PolicyStateText, WhatIsNoPartOfAStateIsListedUnlessItOnlyAsks) {
  const StateText text = stateOfText(
      "describe count of addrset; enable tcp strict; create addrset a; set timeout "
      "\"dfw.tcp.opening\" "
      "to 5; clear all connection;",
      "test.conf");
  EXPECT_EQ(text.others,
            (std::vector<std::string>{"enable tcp strict", "set timeout", "clear all connection"}));
  EXPECT_EQ(text.state.sets.size(), 1u);
}

TEST(PolicyStateText, NothingIsOpenedForAChannel) {
  EXPECT_EQ(
      stateOf("config socket 127.0.0.1:1; config ribs 127.0.0.1:1; create addrset a;").sets.size(),
      1u);
}

TEST(PolicyStateText, AMistakeIsNamedWithItsPlace) {
  EXPECT_EQ(errorOf("create addrset a;\ncreate addrset;\n"),
            "[test.conf:2] syntax error, unexpected ;, expecting double-quoted string");
  // Between two statements the library would take the text up to there.
  EXPECT_EQ(errorOf("create addrset a;\n10.0.0.1-999 ;"),
            "[test.conf:2] invalid ip address - 10.0.0.999");
  EXPECT_EQ(errorOf("create APP_ID attrset a with APP_HTTP;"),
            "[test.conf:1] a statement can't be carried out");
}

TEST(PolicyStateText, AJumpOfARuleSetThatIsNotThereIsRefused) {
  EXPECT_EQ(errorOf("create ruleset y; set jumpto of ruleset x as y;"),
            "`set jumpto of ruleset x as y' can't be carried out: there is no rule set \"x\"");
  EXPECT_EQ(
      errorOf("clear jumpto of ruleset \"a\nb\";"),
      "`clear jumpto of ruleset a\nb' can't be carried out: there is no rule set \"a\\x0ab\"");
}

TEST(PolicyStateText, AFileThatCannotBeReadIsNamed) {
  EXPECT_THROW(
      {
        try {
          stateOfFile("/no/such/file");
        } catch (const StateError& e) {
          EXPECT_STREQ(e.what(), "can't open /no/such/file: No such file or directory");
          throw;
        }
      },
      StateError);
}

// --- Records

TEST(PolicyState, WhatStandsAfterATextOrAnAddressIsNothing) {
  State state = stateOf(
      "create ruleset r with rule 1 in protocol tcp from addrset a to 10.0.0.1 accept tag \"t\";");
  const FWRule_ clean = state.ruleSets.at("r").of(StateRules::filter)[0];
  FWRule_ rule = clean;
  std::memset(rule.tag + 2, 0x55, sizeof rule.tag - 2);
  std::memset(rule.source.value + 2, 0x55, sizeof rule.source.value - 2);
  std::memset(rule.destination.value + 4, 0x55, sizeof rule.destination.value - 4);
  std::memset(rule.action.keyPolicy + 1, 0x55, sizeof rule.action.keyPolicy - 1);
  settleRule(rule);
  EXPECT_EQ(std::memcmp(&rule, &clean, sizeof rule), 0);
}

TEST(PolicyState, ATextThatFillsItsFieldIsClosed) {
  FWRule_ rule{};
  std::memset(rule.tag, 'x', sizeof rule.tag);
  settleRule(rule);
  EXPECT_EQ(std::string(rule.tag), std::string(31, 'x'));
}

TEST(PolicyState, RuleSetsComeAfterTheirTargetsAndOtherwiseByName) {
  const auto rule = [](const std::string& target) {
    return " with rule 1 in protocol any from any to any jumpto " + target + ";";
  };
  EXPECT_EQ(ruleSetsTargetsFirst(stateOf("create ruleset a" + rule("c") +
                                         "create ruleset b;"
                                         "create ruleset c" +
                                         rule("gone") +
                                         "create ruleset d;"
                                         "set jumpto of ruleset b as d;")),
            (Names{"c", "a", "d", "b"}));
  // A circle has no such order.
  EXPECT_EQ(ruleSetsTargetsFirst(stateOf("create ruleset a" + rule("b") + "create ruleset b" +
                                         rule("c") + "create ruleset c" + rule("a"))),
            (Names{"c", "b", "a"}));
}

TEST(PolicyState, AChainThatDoesNotLieInItsBytesIsRefused) {
  const auto chain = [](std::uint8_t count, std::uint8_t size, std::vector<std::uint8_t> rest) {
    std::vector<std::uint8_t> bytes = {2, 0, 0, 0, count, 0, 0, 0, size, 0, 0, 0};
    bytes.insert(bytes.end(), rest.begin(), rest.end());
    return bytesOf(bytes);
  };
  const std::vector<std::uint8_t> one = {1, 0, 0, 0, 2, 0, 0, 0, 'a', 'b'};
  EXPECT_EQ(chainElements(chain(1, 10, one)), Names{std::string(one.begin(), one.end())});
  EXPECT_EQ(chainElements(chain(0, 0, {9, 9})), Names{});
  for (std::size_t size = 0; size < 22; ++size) {
    auto cut = chain(1, 10, one);
    cut.resize(size);
    EXPECT_THROW(chainElements(cut), StateError) << size;
  }
  EXPECT_THROW(chainElements(chain(2, 10, one)), StateError);
  EXPECT_THROW(chainElements(chain(0, 10, one)), StateError);
  EXPECT_THROW(chainElements(chain(1, 9, one)), StateError);
  EXPECT_THROW(chainElements(chain(1, 255, one)), StateError);
  auto huge = chain(1, 10, one);
  for (std::size_t i = 16; i < 20; ++i) huge[i] = std::byte{0xff};
  EXPECT_THROW(chainElements(huge), StateError);
}

TEST(PolicyState, NamesAreShownWithoutWhatATerminalObeys) {
  EXPECT_EQ(shownName("\xf0\x80\x80\x80"), "\"\\xf0\\x80\\x80\\x80\"");  // longer than needed
  EXPECT_EQ(shownName("\xf0\x90\x80\x80"), "\"\xf0\x90\x80\x80\"");
  EXPECT_EQ(shownName("b\xc3\xbcro \xe2\x82\xac"), "\"b\xc3\xbcro \xe2\x82\xac\"");
  EXPECT_EQ(shownName("a\xc2\x9b\x1b[2J"), "\"a\\xc2\\x9b\\x1b[2J\"");
  EXPECT_EQ(shownName("web servers"), "\"web servers\"");
  EXPECT_EQ(shownName("a\"b\\c\n\xff"), "\"a\\x22b\\x5cc\\x0a\\xff\"");
}
