#include <gtest/gtest.h>

#include <set>

#include "LabBench.h"
#include "LabSetFile.h"

namespace TarnLab {
namespace {

class LabRuleSets : public LabBench {
 protected:
  static ByteVector name(const std::string& text, std::size_t size) {
    return Record().text(text, 64).to(size);
  }

  /// A rule at a position.
  static ByteVector at(unsigned id, std::uint32_t position, unsigned action = 1) {
    return Record().bytes(ruleRecord(id, action)).set(4, position & 0xff);
  }

  static ByteVector translation(unsigned id, unsigned action) {
    ByteVector rule = ruleRecord(id, action);
    const ByteVector address = ipv4("192.0.2.1");
    std::copy(address.begin(), address.end(), rule.begin() + 460);
    return rule;
  }

  static ByteVector jump(unsigned id, const std::string& target, bool layer3) {
    Record rule;
    rule.bytes(ruleRecord(id, 4)).set(4, id).set(790, layer3 ? 16 : 0).set(796, 1);
    ByteVector bytes = rule;
    std::memcpy(&bytes[460], target.data(), target.size());
    return bytes;
  }

  std::uint32_t setRoot(const std::string& layer3, const std::string& layer2) {
    std::vector<ByteVector> rules;
    if (!layer3.empty()) rules.push_back(jump(1, layer3, true));
    if (!layer2.empty()) rules.push_back(jump(2, layer2, false));
    return createRuleSet("", rules);
  }

  /// Reads up to `max` rules by index; their ids.
  std::vector<unsigned> read(const std::string& set, unsigned max, unsigned from,
                             unsigned kind = 0) {
    const ByteVector body =
        Record().text(set, 64).u32(max).u32(from).u16(1).u8(kind).to(96 + 896 * max);
    std::vector<unsigned> ids;
    status = command(10, body);
    if (status != 0) return ids;
    for (unsigned i = 0; i < get32(reply, 76); ++i) {
      ids.push_back(get32(reply, 96 + 4 * max + 892 * i));
    }
    return ids;
  }

  std::uint32_t status = 0;
};

TEST_F(LabRuleSets, ASetIsStoredCountedListedAndStaysForTheNextProgram) {
  ASSERT_EQ(createRuleSet("web", {ruleRecord(1), ruleRecord(2)}), 0u);
  ASSERT_EQ(createRuleSet("app", {}), 0u);
  ASSERT_EQ(command(1, ByteVector(4)), 0u);
  EXPECT_EQ(get32(reply, 0), 2u);
  ASSERT_EQ(command(2, Record().u32(5).u32(0).u32(0).zero(5 * 64)), 0u);
  EXPECT_EQ(get32(reply, 8), 2u);
  EXPECT_EQ(getText(reply, 12, 64), "app");
  EXPECT_EQ(getText(reply, 76, 64), "web");
  ASSERT_EQ(command(2, Record().u32(1).u32(1).u32(0).zero(64)), 0u);
  EXPECT_EQ(get32(reply, 8), 1u);
  EXPECT_EQ(getText(reply, 12, 64), "web");
  ASSERT_EQ(command(2, Record().u32(1).u32(2).u32(0).zero(64)), 0u);
  EXPECT_EQ(get32(reply, 8), 0u);
}

TEST_F(LabRuleSets, SetsOfOneFilterAreNotThoseOfAnother) {
  ASSERT_EQ(createRuleSet("web", {}), 0u);
  ASSERT_EQ(command(1, ByteVector(4), filterSelector(other)), 0u);
  EXPECT_EQ(get32(reply, 0), 0u);
}

TEST_F(LabRuleSets, EachChangeIsANewGenerationRealizedNow) {
  ASSERT_EQ(createRuleSet("web", {ruleRecord(1)}), 0u);
  ASSERT_EQ(createRuleSet("web", {ruleRecord(1), ruleRecord(2)}), 0u);
  ASSERT_EQ(command(9, name("web", 84)), 0u);
  EXPECT_EQ(get32(reply, 64), 2u);
  EXPECT_EQ(get64(reply, 76), 2u);
  EXPECT_NEAR(static_cast<double>(get64(reply, 68)), static_cast<double>(bootSeconds()), 2.0);
  ASSERT_EQ(command(6, name("web", 72)), 0u);
  ASSERT_EQ(command(9, name("web", 84)), 0u);
  EXPECT_EQ(get32(reply, 64), 0u);
  EXPECT_EQ(get64(reply, 76), 3u);
}

TEST_F(LabRuleSets, RulesAreKeptByKindAndByPosition) {
  ASSERT_EQ(createRuleSet("web", {at(1, 3), translation(2, 8), at(3, 1), translation(4, 7),
                                  at(5, 3), translation(6, 7), ruleRecord(7, 13)}),
            0u);
  EXPECT_EQ(read("web", 10, 0, 0), (std::vector<unsigned>{3, 1, 5}));
  EXPECT_EQ(read("web", 10, 0, 1), (std::vector<unsigned>{4, 6}));
  EXPECT_EQ(read("web", 10, 0, 2), (std::vector<unsigned>{2, 7}));
  for (unsigned kind = 0; kind < 3; ++kind) {
    ASSERT_EQ(command(8, Record().text("web", 64).u32(kind).u32(0)), 0u);
    EXPECT_EQ(get32(reply, 68), kind == 0 ? 3u : 2u);
  }
}

TEST_F(LabRuleSets, RulesAreReadByIndexAPageAtATime) {
  ASSERT_EQ(createRuleSet("web", {ruleRecord(10), ruleRecord(11), ruleRecord(12)}), 0u);
  EXPECT_EQ(read("web", 2, 0), (std::vector<unsigned>{10, 11}));
  EXPECT_EQ(get64(reply, 88), 1u);
  EXPECT_EQ(read("web", 2, 2), (std::vector<unsigned>{12}));
  EXPECT_EQ(read("web", 2, 3), (std::vector<unsigned>{}));
  EXPECT_EQ(status, 0u);
  read("web", 2, 4);
  EXPECT_EQ(status, 27u);
  read("none", 2, 0);
  EXPECT_EQ(status, 28u);
  read("web", 2, 0, 3);
  EXPECT_EQ(status, 3u);
}

TEST_F(LabRuleSets, RulesAreReadByTheirIdsInTheOrderAsked) {
  ASSERT_EQ(createRuleSet("web", {ruleRecord(10), ruleRecord(11), ruleRecord(12)}), 0u);
  const auto body = [](unsigned second) {
    return Record().text("web", 64).u32(2).u32(0).u32(0).to(96).u32(12).u32(second).to(96 + 1792);
  };
  ASSERT_EQ(command(10, body(10)), 0u);
  EXPECT_EQ(get32(reply, 76), 2u);
  EXPECT_EQ(get32(reply, 104), 12u);
  EXPECT_EQ(get32(reply, 104 + 892), 10u);
  EXPECT_EQ(command(10, body(13)), 27u);
  EXPECT_EQ(note(), "there is no rule 13");
}

TEST_F(LabRuleSets, CountersAreTheSameAtEveryReading) {
  ASSERT_EQ(createRuleSet("web", {ruleRecord(4), ruleRecord(1004)}), 0u);
  ASSERT_EQ(command(11, Record().text("web", 64).u32(2).u32(0).u16(1).to(80 + 136)), 0u);
  EXPECT_EQ(get32(reply, 76), 2u);
  EXPECT_EQ(get32(reply, 88), 4u);
  const std::uint64_t expected[] = {200, 60, 25, 155, 135, 99200, 55350};
  for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(get64(reply, 96 + 8 * i), expected[i]) << i;
  EXPECT_EQ(get32(reply, 88 + 64), 1004u);
}

TEST_F(LabRuleSets, BalancersComeWithTheirIdsAndTheirStates) {
  ASSERT_EQ(createRuleSet("web", {ruleRecord(4, 13), ruleRecord(9, 13)}), 0u);
  ASSERT_EQ(command(12, Record().text("web", 64).u32(2).u32(0).u16(1).u8(2).to(80 + 2 * 164)), 0u);
  EXPECT_EQ(get32(reply, 76), 2u);
  EXPECT_EQ(get32(reply, 80), 4u);
  EXPECT_EQ(get32(reply, 84), 9u);
  const ByteVector four = Record().u32(0).u32(5145).u32(5000).u32(9).bytes(ipv4("203.0.113.5"));
  const ByteVector nine =
      Record().u32(30).u32(10290).u32(10000).u32(12).bytes(ipv4("203.0.113.10"));
  const auto states = reply.begin() + 88;
  EXPECT_EQ(ByteVector(states, states + 160), four) << "no flows left: the time-out runs";
  EXPECT_EQ(ByteVector(states + 160, states + 320), nine);
}

TEST_F(LabRuleSets, NoTwoNumbersOfABalancersStateAreAlike) {
  std::vector<ByteVector> rules;
  for (unsigned i = 1; i <= 1000; ++i) rules.push_back(ruleRecord(i, 13));
  ASSERT_EQ(createRuleSet("web", rules), 0u);
  const std::size_t size = 80 + 1000 * 164;
  ASSERT_EQ(command(12, Record().text("web", 64).u32(1000).u32(0).u16(1).u8(2).to(size)), 0u);
  for (std::size_t i = 0; i < rules.size(); ++i) {
    std::set<std::uint32_t> numbers;
    for (std::size_t at = 0; at < 16; at += 4) {
      numbers.insert(get32(reply, 80 + 4000 + 160 * i + at));
    }
    EXPECT_EQ(numbers.size(), 4u) << "rule " << i + 1;
  }
}

TEST_F(LabRuleSets, APageNeedsTheRoomThatItAsksFor) {
  ASSERT_EQ(createRuleSet("web", {ruleRecord(1)}), 0u);
  EXPECT_EQ(command(10, Record().text("web", 64).u32(2).u32(0).u16(1).to(96 + 896)), 25u);
  EXPECT_EQ(command(10, Record().text("web", 64).u32(0xffffffff).u32(0).u16(1).to(96)), 25u);
  EXPECT_EQ(command(2, Record().u32(2).u32(0).u32(0).zero(64)), 25u);
  EXPECT_EQ(command(2, Record().u32(0xffffffff).u32(0).u32(0).zero(64)), 25u);
}

TEST_F(LabRuleSets, TheRootSaysItsTargetsByLayer) {
  ASSERT_EQ(command(4, ByteVector(132)), 0u);
  EXPECT_TRUE(isZero(reply));
  ASSERT_EQ(createRuleSet("web", {}), 0u);
  ASSERT_EQ(setRoot("web", "web_L2"), 0u);
  ASSERT_EQ(command(4, ByteVector(132)), 0u);
  EXPECT_EQ(getText(reply, 0, 64), "web");
  EXPECT_EQ(getText(reply, 64, 64), "web_L2");
  ASSERT_EQ(command(1, ByteVector(4)), 0u);
  EXPECT_EQ(get32(reply, 0), 1u) << "the root has no name and is not counted";
  ASSERT_EQ(command(36, ByteVector(4)), 0u);
  ASSERT_EQ(command(4, ByteVector(132)), 0u);
  EXPECT_TRUE(isZero(reply));
}

TEST_F(LabRuleSets, ARootThatLeadsNowhereIsRefused) {
  EXPECT_EQ(setRoot("web", "web_L2"), 28u);
  ASSERT_EQ(createRuleSet("web_L2", {}), 0u);
  EXPECT_EQ(setRoot("web", "web_L2"), 0u);
}

TEST_F(LabRuleSets, ASetInUseIsNotDestroyed) {
  ASSERT_EQ(createRuleSet("web", {}), 0u);
  ASSERT_EQ(createRuleSet("app", {}), 0u);
  ASSERT_EQ(setRoot("web", ""), 0u);
  ASSERT_EQ(command(61, Record().text("web", 64).text("app", 64)), 0u);
  EXPECT_EQ(command(7, name("web", 64)), 26u);
  EXPECT_EQ(command(7, name("app", 64)), 26u);
  EXPECT_EQ(note(), "rule set app is in use");
  ASSERT_EQ(command(63, name("web", 64)), 0u);
  ASSERT_EQ(command(36, ByteVector(4)), 0u);
  EXPECT_EQ(command(7, name("app", 64)), 0u);
  EXPECT_EQ(command(7, name("web", 64)), 0u);
  EXPECT_EQ(command(7, name("web", 64)), 28u);
}

TEST_F(LabRuleSets, AJumpIsSetReadAndTakenAwayAndOutlivesNewRules) {
  ASSERT_EQ(createRuleSet("web", {}), 0u);
  EXPECT_EQ(command(61, Record().text("web", 64).text("app", 64)), 28u);
  ASSERT_EQ(createRuleSet("app", {}), 0u);
  EXPECT_EQ(command(61, Record().text("none", 64).text("app", 64)), 28u);
  ASSERT_EQ(command(61, Record().text("web", 64).text("app", 64)), 0u);
  ASSERT_EQ(createRuleSet("web", {ruleRecord(1)}), 0u);
  ASSERT_EQ(command(62, name("web", 128)), 0u);
  EXPECT_EQ(getText(reply, 64, 64), "app");
  ASSERT_EQ(command(63, name("web", 64)), 0u);
  ASSERT_EQ(command(62, name("web", 128)), 0u);
  EXPECT_EQ(getText(reply, 64, 64), "");
  EXPECT_EQ(command(62, name("none", 128)), 28u);
  EXPECT_EQ(command(63, name("none", 64)), 28u);
}

TEST_F(LabRuleSets, AllSetsGoAtOnceRootIncluded) {
  ASSERT_EQ(createRuleSet("web", {}), 0u);
  ASSERT_EQ(setRoot("web", ""), 0u);
  ASSERT_EQ(command(60, ByteVector(4)), 0u);
  ASSERT_EQ(command(1, ByteVector(4)), 0u);
  EXPECT_EQ(get32(reply, 0), 0u);
  ASSERT_EQ(command(4, ByteVector(132)), 0u);
  EXPECT_TRUE(isZero(reply));
}

TEST_F(LabRuleSets, ACreationIsCheckedByteForByte) {
  const ByteVector good =
      Record().zero(64).text("web", 64).u64(0).u32(1).u8(3).to(168).bytes(ruleRecord(1));
  ASSERT_EQ(command(3, good), 0u);
  for (const std::size_t reserved : {0u, 63u, 128u, 135u, 141u, 143u, 160u, 167u}) {
    EXPECT_EQ(command(3, Record().bytes(good).set(reserved, 1)), 25u) << reserved;
  }
  EXPECT_EQ(command(3, Record().bytes(good).set(70, 'x')), 25u) << "bytes after the name";
  EXPECT_EQ(command(3, Record().bytes(good).set(136, 2)), 25u);
  EXPECT_EQ(command(3, Record().bytes(good).set(140, 1)), 23u);
  EXPECT_EQ(command(3, ByteVector(167)), 25u);
  EXPECT_EQ(command(3, Record().bytes(good).set(168 + 750, 15)), 45u);
  EXPECT_EQ(note(), "rule 1: action 15");
  ASSERT_EQ(command(9, name("web", 84)), 0u);
  EXPECT_EQ(get64(reply, 76), 1u) << "what was refused changed nothing";
}

TEST_F(LabRuleSets, ASetBeyondTheHostsMemoryIsStatus65) {
  Host host = Host::load(store);
  host.setMemory(2 * 892);
  host.save(store);
  EXPECT_EQ(createRuleSet("web", std::vector<ByteVector>(2, ruleRecord(1))), 0u);
  EXPECT_EQ(createRuleSet("web", std::vector<ByteVector>(3, ruleRecord(1))), 65u);
}

TEST_F(LabRuleSets, AHundredThousandRulesAreStoredAndReadOneByOne) {
  std::vector<ByteVector> rules(100000, ruleRecord(1));
  for (std::size_t i = 0; i < rules.size(); ++i) {
    put32(rules[i], 0, static_cast<std::uint32_t>(i + 1));
  }
  ASSERT_EQ(createRuleSet("big", rules), 0u);
  EXPECT_EQ(read("big", 1, 99999), (std::vector<unsigned>{100000}));
  EXPECT_EQ(read("big", 1, 0), (std::vector<unsigned>{1}));
}

TEST_F(LabRuleSets, EveryTruncatedRequestIsABadMessage) {
  ASSERT_EQ(createRuleSet("web", {ruleRecord(1)}), 0u);
  const std::pair<unsigned, std::size_t> sizes[] = {
      {1, 4},  {2, 12},  {3, 168}, {4, 128}, {6, 64},   {7, 64},   {8, 72},
      {9, 84}, {10, 96}, {11, 80}, {12, 80}, {61, 128}, {62, 128}, {63, 64}};
  for (const auto& [number, size] : sizes) {
    for (std::size_t cut = 0; cut < size; ++cut) {
      EXPECT_EQ(command(number, name("web", cut)), 25u) << number << " with " << cut;
    }
  }
}

TEST_F(LabRuleSets, TheSharedSetsOfAnAgentHaveNoRules) {
  EXPECT_EQ(command(1, ByteVector(4), filterSelector("shared-addrset-filter-")), 7u);
}

}  // namespace
}  // namespace TarnLab
