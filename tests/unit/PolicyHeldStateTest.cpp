/// Whether a filter holds a state, asked by one message.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <utility>

#include "Choices.h"
#include "HeldState.h"
#include "Plan.h"
#include "PolicyKernel.h"
#include "PolicyTextGenerator.h"
#include "StateFilter.h"
#include "StateText.h"

using namespace TarnFirewall;

namespace {

const dvs_port_ kPort = filterSelector("nic-1-eth0-kelpco-sfw.2");

State stateOf(const std::string& text) { return stateOfText(text, "test.conf").state; }

State sample() {
  return stateOf(
      "create addrset a { 10.0.0.1, 10.0.0.0/8, 2001:db8::1 }; create addrset b;"
      "create attrprofile p with { [ APP_ID : APP_HTTP, APP_DNS ] };"
      "create ruleset r with { rule 1 in protocol any from addrset a to any jumpto s;"
      "  rule 4 in protocol any from any to any drop;"
      "  rule 2 in protocol any from any to any dnat ip 10.0.0.1;"
      "  rule 3 out protocol any from any to any snat ip 10.0.0.1; };"
      "create ruleset s; set jumpto of ruleset s as r; set root ruleset r and s;");
}

bool holds(PolicyKernel& kernel, const State& state) {
  return filterHolds(kernel.handle(), kPort, state);
}

}  // namespace

TEST(PolicyHeldState, OneMessageAsksForAllOfIt) {
  for (const State& state : {sample(), State(), stateOf("create ruleset r;")}) {
    PolicyKernel kernel(state);
    EXPECT_TRUE(holds(kernel, state));
    EXPECT_EQ(kernel.messages(), 1u);
  }
}

TEST(PolicyHeldState, OtherPositionsAreNoDifference) {
  State held = sample();
  for (FWRule_& rule : held.ruleSets.at("r").of(StateRules::filter)) rule.position = 7;
  PolicyKernel kernel(held);
  EXPECT_TRUE(holds(kernel, sample()));
}

TEST(PolicyHeldState, EveryDifferenceIsFound) {
  const std::function<void(State&)> changes[] = {
      [](State& state) { state.sets.erase("b"); },
      [](State& state) { state.sets["c"] = {}; },
      [](State& state) { state.sets["A"] = {}; },
      [](State& state) { state.sets.at("a").addresses.pop_back(); },
      [](State& state) { state.sets.at("a").addresses[0].value[3] ^= 1; },
      [](State& state) { state.sets.at("b").addresses = {state.sets.at("a").addresses[0]}; },
      [](State& state) { state.sets.at("b").type = 3; },
      [](State& state) { state.sets.at("p").type = 3; },
      [](State& state) { state.sets.at("p").elements[0].back() ^= 1; },
      [](State& state) { state.sets.at("p").elements.clear(); },
      [](State& state) { state.ruleSets.erase("s"); },
      [](State& state) { state.ruleSets["t"] = {}; },
      [](State& state) { state.ruleSets.at("r").of(StateRules::filter)[0].tag[0] = 't'; },
      [](State& state) {
        auto& rules = state.ruleSets.at("r").of(StateRules::filter);
        std::swap(rules[0], rules[1]);
      },
      [](State& state) { state.ruleSets.at("r").of(StateRules::snat).clear(); },
      [](State& state) {
        auto& rules = state.ruleSets.at("s");
        rules.of(StateRules::dnat) = state.ruleSets.at("r").of(StateRules::dnat);
      },
      [](State& state) { state.ruleSets.at("s").jump.clear(); },
      [](State& state) { state.ruleSets.at("r").jump = "s"; },
      [](State& state) { state.layer3.clear(); },
      [](State& state) { state.layer2 = "r"; },
  };
  std::size_t number = 0;
  for (const auto& change : changes) {
    State held = sample();
    change(held);
    PolicyKernel kernel(held);
    EXPECT_FALSE(holds(kernel, sample())) << "change " << number;
    PolicyKernel other(sample());
    EXPECT_FALSE(holds(other, held)) << "change " << number;
    ++number;
  }
}

TEST(PolicyHeldState, WhatIsNotAnsweredIsNotKnown) {
  for (const unsigned int command : {1u, 2u, 4u, 8u, 9u, 10u, 15u, 16u, 17u, 20u, 21u, 56u, 62u}) {
    PolicyKernel kernel(sample());
    kernel.fail(command, 26);
    EXPECT_FALSE(holds(kernel, sample())) << command;
    EXPECT_EQ(kernel.messages(), 1u);
  }
  PolicyKernel silent(sample());
  silent.refuseMessages(19);
  EXPECT_FALSE(holds(silent, sample()));
}

TEST(PolicyHeldState, AFilterThatChangesMeanwhileIsNotKnown) {
  for (const unsigned int command : {9u, 16u}) {
    PolicyKernel kernel(sample());
    std::uint64_t generation = 0;
    kernel.after(command, [&](PolicyKernel::Body body) {
      body.put64(command == 9 ? 76 : 50, ++generation);
    });
    EXPECT_FALSE(holds(kernel, sample()));
  }
}

/// Counts and names that are not believed.
TEST(PolicyHeldState, WhateverIsAnsweredIsNotReadPast) {
  const std::pair<unsigned int, std::size_t> words[] = {{1, 0},   {2, 8},   {8, 68},  {10, 64},
                                                        {10, 76}, {15, 38}, {15, 42}, {17, 50},
                                                        {20, 4},  {21, 12}, {56, 74}, {56, 78}};
  for (const auto& word : words) {
    for (const std::uint32_t value : {0u, 5u, 0x10000u, 0xffffffffu}) {
      PolicyKernel kernel(sample());
      kernel.after(word.first, [&](PolicyKernel::Body body) { body.put32(word.second, value); });
      EXPECT_FALSE(holds(kernel, sample())) << word.first << " at " << word.second << ": " << value;
    }
  }
  // All that an answer has room for.
  for (const unsigned int command : {1u, 2u, 4u, 8u, 9u, 10u, 15u, 16u, 17u, 20u, 21u, 56u, 62u}) {
    PolicyKernel kernel(sample());
    kernel.after(command, [](PolicyKernel::Body body) { std::memset(body.at, 0xff, body.size); });
    const bool isMark = command == 9 || command == 16;  // the same at both times
    EXPECT_EQ(holds(kernel, sample()), isMark) << command;
  }
}

/// It knows exactly what reading everything finds.
TEST(PolicyHeldState, AgreesWithThePlanOfGeneratedStates) {
  unsigned int equal = 0;
  for (std::uint64_t seed = 1; seed <= 1000; ++seed) {
    Choices choices(seed);
    const PolicyShape shape{.names = 2, .chanceOfRuleSet = 80};
    const State held = stateOf(generatedPolicyText(choices, shape));
    const State wanted = choices.chance(40) ? held : stateOf(generatedPolicyText(choices, shape));
    PolicyKernel kernel(held);
    const bool isHeld = planSteps(held, wanted).empty();
    ASSERT_EQ(holds(kernel, wanted), isHeld) << "seed " << seed;
    equal += isHeld ? 1 : 0;
  }
  EXPECT_GT(equal, 300u);
  EXPECT_LT(equal, 900u);
}

/// The header of a message counts its commands in 16 bits. An empty rule set takes six.
TEST(PolicyHeldState, MoreQuestionsThanAMessageHoldsAreSeveralMessages) {
  State state;
  for (unsigned int i = 0; i < 10921; ++i) state.ruleSets[std::to_string(i)] = {};
  PolicyKernel full(state);
  EXPECT_TRUE(holds(full, state));
  EXPECT_EQ(full.messages(), 1u);
  state.ruleSets["one more"] = {};
  PolicyKernel over(state);
  EXPECT_TRUE(holds(over, state));
  EXPECT_EQ(over.messages(), 2u);
}

TEST(PolicyHeldState, MoreBytesThanAMessageHoldsAreSeveralMessages) {
  const State state = sample();
  const auto messages = [&](const QuestionLimits& limits) {
    PolicyKernel kernel(state);
    EXPECT_TRUE(filterHolds(kernel.handle(), kPort, state, limits));
    return kernel.messages();
  };
  PolicyKernel all(state);
  EXPECT_TRUE(holds(all, state));
  const std::size_t size = all.bytesOfLastMessage();
  const std::size_t questions = all.questions();
  EXPECT_EQ(messages({.bytes = size}), 1u);
  EXPECT_EQ(messages({.bytes = size - 1}), 2u);
  EXPECT_EQ(messages({.questions = questions}), 1u);
  EXPECT_EQ(messages({.questions = questions - 1}), 2u);
  // One that is larger than the limit has a message of its own.
  EXPECT_EQ(messages({.bytes = 1}), questions);
  EXPECT_EQ(messages({.questions = 1}), questions);
}

TEST(PolicyHeldState, ADifferenceInALaterMessageIsFound) {
  State held = sample();
  held.layer2 = "r";
  for (std::size_t most = 1; most < 30; ++most) {
    PolicyKernel kernel(held);
    EXPECT_FALSE(filterHolds(kernel.handle(), kPort, sample(), {.questions = most})) << most;
  }
}

TEST(PolicyHeldState, TheLimitsAreThoseOfTheHeaderAndOfTheMemory) {
  EXPECT_EQ(QuestionLimits{}.questions, 65535u);
  EXPECT_EQ(QuestionLimits{}.bytes, 268435456u);
}
