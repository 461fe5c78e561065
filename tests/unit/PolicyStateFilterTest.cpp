/// What is read from a filter, whatever its kernel answers.

#include <gtest/gtest.h>

#include <functional>

#include "PolicyKernel.h"
#include "StateFilter.h"
#include "StateText.h"

using namespace TarnFirewall;

namespace {

constexpr char kName[] = "nic-1-eth0-kelpco-sfw.2";

State sample() {
  return stateOfText(
             "create addrset a { 10.0.0.1, 10.0.0.0/8 }; create addrset b;"
             "create attrprofile p with { [ APP_ID : APP_HTTP, APP_DNS ] };"
             "create ruleset r with { rule 1 in protocol any from addrset a to any jumpto s;"
             "  rule 2 in protocol any from any to any dnat ip 10.0.0.1;"
             "  rule 3 out protocol any from any to any snat ip 10.0.0.1; };"
             "create ruleset s; set jumpto of ruleset s as r; set root ruleset r and s;",
             "sample")
      .state;
}

State read(PolicyKernel& kernel) {
  return stateOfFilter(kernel.handle(), filterSelector(kName), kName);
}

/// The message of the `StateError` that the reading ends with.
std::string errorOf(PolicyKernel& kernel) {
  try {
    read(kernel);
  } catch (const StateError& e) {
    return e.what();
  }
  return "no error";
}

std::string failed(const std::string& what) { return std::string("filter ") + kName + ": " + what; }

}  // namespace

TEST(PolicyStateFilter, EverythingIsRead) {
  PolicyKernel kernel(sample());
  EXPECT_EQ(read(kernel), sample());
}

TEST(PolicyStateFilter, LongListsAreReadPageByPage) {
  std::string rules, addresses;
  for (int i = 1; i <= 4100; ++i) {
    rules += "rule " + std::to_string(i) + " in protocol any from any to any drop;";
  }
  for (int i = 0; i < 20100; ++i) {
    addresses += "10.1." + std::to_string(i / 200) + "." + std::to_string(i % 200) + ",";
  }
  const State state =
      stateOfText("create ruleset r with { " + rules + " }; create addrset a {" + addresses + "};",
                  "")
          .state;
  PolicyKernel kernel(state);
  EXPECT_EQ(read(kernel), state);
  EXPECT_EQ(kernel.timesAsked(10), 3u);
  EXPECT_EQ(kernel.timesAsked(17), 3u);
}

TEST(PolicyStateFilter, EachQuestionThatFailsIsNamed) {
  const std::pair<unsigned int, const char*> questions[] = {
      {1, "counting its rule sets failed: kernel unsupported"},
      {2, "listing its rule sets failed: kernel unsupported"},
      {4, "asking for its root failed: kernel unsupported"},
      {8, "counting the rules of \"r\" failed: kernel unsupported"},
      {9, "asking for the generation of \"r\" failed: kernel unsupported"},
      {10, "reading the rules of \"r\" failed: kernel unsupported"},
      {15, "asking for the type of \"a\" failed: kernel unsupported"},
      {16, "asking for the generation of \"a\" failed: kernel unsupported"},
      {17, "reading the addresses of \"a\" failed: kernel unsupported"},
      {20, "counting its address sets failed: kernel unsupported"},
      {21, "listing its address sets failed: kernel unsupported"},
      {56, "reading the elements of \"p\" failed: kernel unsupported"},
      {62, "asking for the jump of \"r\" failed: kernel unsupported"},
  };
  const std::string status = FW_StatusToString(22);
  for (const auto& [command, text] : questions) {
    PolicyKernel kernel(sample());
    kernel.fail(command, 22);
    std::string wanted = failed(text);
    wanted.replace(wanted.find("kernel unsupported"), 18, status);
    EXPECT_EQ(errorOf(kernel), wanted) << command;
  }
}

TEST(PolicyStateFilter, ARuleSetThatIsPurgedIsNotThere) {
  PolicyKernel kernel(sample());
  kernel.before(9, [](PolicyKernel::Body body) -> FWStatus_t {
    return body.text(0, 64) == "s" ? 26 : PolicyKernel::kUsual;
  });
  EXPECT_FALSE(read(kernel).ruleSets.contains("s"));
  EXPECT_THROW(stateOfFilter(kernel.handle(), filterSelector(kName), kName, PurgedRuleSets::refuse),
               StateError);
}

TEST(PolicyStateFilter, AFilterThatChangesIsReadAgain) {
  PolicyKernel kernel(sample());
  std::uint64_t generation = 0;
  kernel.after(9,
               [&](PolicyKernel::Body body) { body.put64(76, generation++ < 3 ? generation : 9); });
  EXPECT_EQ(read(kernel), sample());
  EXPECT_EQ(kernel.timesAsked(8), 12u);  // three kinds of rules of two rule sets, twice
}

TEST(PolicyStateFilter, WhatIsNewWhileAFilterIsReadIsRead) {
  const State after =
      stateOfText("create addrset new; create ruleset new; set root ruleset new and \"\";", "after")
          .state;
  // The filter is changed at the last question of a first reading that is about what it held.
  for (const auto& [command, times] : {std::pair{16u, 3u}, {62u, 2u}, {4u, 1u}, {20u, 1u}}) {
    PolicyKernel kernel(sample());
    unsigned int asked = 0;
    kernel.after(command, [&, last = times](PolicyKernel::Body) {
      if (++asked != last) return;
      kernel.state().sets.merge(State(after).sets);
      kernel.state().ruleSets.merge(State(after).ruleSets);
      kernel.state().layer3 = after.layer3;
      kernel.state().layer2 = after.layer2;
    });
    EXPECT_EQ(read(kernel), kernel.state()) << command;
    EXPECT_TRUE(kernel.state().ruleSets.contains("new"));
  }
}

TEST(PolicyStateFilter, EachChangeByItselfMakesItReadAgain) {
  const std::function<void(State&)> changes[] = {
      [](State& state) { state.sets["new"] = {}; },
      [](State& state) { state.ruleSets["new"] = {}; },
      [](State& state) { state.layer3 = "s"; },
      [](State& state) { state.layer2 = "r"; },
  };
  std::size_t number = 0;
  for (const auto& change : changes) {
    PolicyKernel kernel(sample());
    unsigned int asked = 0;
    kernel.after(62, [&](PolicyKernel::Body) {
      if (++asked == 2) change(kernel.state());  // after the last question about its rule sets
    });
    EXPECT_EQ(read(kernel), kernel.state()) << "change " << number;
    EXPECT_NE(kernel.state(), sample()) << "change " << number++;
  }
}

TEST(PolicyStateFilter, AFilterThatNeverStaysTheSameIsGivenUp) {
  const std::string wanted = failed("it does not stay the same while it is read");
  for (const unsigned int command : {9u, 16u}) {
    PolicyKernel kernel(sample());
    std::uint64_t generation = 0;
    kernel.after(command, [&](PolicyKernel::Body body) {
      body.put64(command == 9 ? 76 : 50, ++generation);
    });
    EXPECT_EQ(errorOf(kernel), wanted);
    EXPECT_EQ(kernel.timesAsked(8), 18u);
  }
  // A set that is listed and gone, and lists that are shorter than counted.
  for (const unsigned int command : {8u, 15u}) {
    PolicyKernel kernel(sample());
    kernel.fail(command, command == 8 ? 28 : 29);
    EXPECT_EQ(errorOf(kernel), wanted);
  }
  const std::pair<unsigned int, std::size_t> returned[] = {{2, 8}, {10, 76}, {17, 50}, {21, 12}};
  for (const auto& [command, offset] : returned) {
    PolicyKernel kernel(sample());
    kernel.after(command, [at = offset](PolicyKernel::Body body) { body.put32(at, 0); });
    EXPECT_EQ(errorOf(kernel), wanted) << command;
  }
}

TEST(PolicyStateFilter, CountsThatNoFilterHasAreNotBelieved) {
  struct Case {
    unsigned int command;
    std::size_t offset;
    const char* text;
  };
  const Case cases[] = {
      {1, 0, "it says that it has 4294967295 rule sets, which is not believed"},
      {20, 4, "it says that it has 4294967295 address sets, which is not believed"},
      {8, 68, "it says that it has 4294967295 rules, which is not believed"},
      {15, 38, "it says that it has 4294967295 addresses, which is not believed"}};
  for (const Case& one : cases) {
    PolicyKernel kernel(sample());
    kernel.after(one.command, [&](PolicyKernel::Body body) { body.put32(one.offset, 0xffffffff); });
    EXPECT_EQ(errorOf(kernel), failed(one.text));
  }
  PolicyKernel kernel(sample());
  kernel.after(15, [](PolicyKernel::Body body) {
    body.put32(42, 2);
    body.put32(46, 0xffffffff);
  });
  EXPECT_EQ(errorOf(kernel),
            failed("it says that it has 4294967295 bytes of elements, which is not believed"));
}

TEST(PolicyStateFilter, MoreThanWasAskedForIsNotTaken) {
  PolicyKernel kernel(sample());
  for (const unsigned int command : {2u, 10u, 17u, 21u}) {
    const std::size_t at = command == 2 ? 8 : command == 10 ? 76 : command == 17 ? 50 : 12;
    kernel.after(command, [=](PolicyKernel::Body body) { body.put32(at, 0xffffffff); });
  }
  EXPECT_EQ(read(kernel), sample());
}

TEST(PolicyStateFilter, NamesMayFillTheirFieldsAndHoldAnything) {
  PolicyKernel kernel(sample());
  kernel.after(4, [](PolicyKernel::Body body) {
    for (std::size_t i = 0; i < 128; ++i) body.at[i] = static_cast<std::uint8_t>(0x80 + i % 64);
  });
  const State state = read(kernel);
  EXPECT_EQ(state.layer3.size(), 63u);
  EXPECT_EQ(state.layer2.front(), '\x80');
}

TEST(PolicyStateFilter, AChainThatIsBrokenIsNamed) {
  PolicyKernel kernel(sample());
  kernel.after(56, [](PolicyKernel::Body body) { body.put32(74, 0xffffffff); });
  EXPECT_EQ(errorOf(kernel), failed("reading the elements of \"p\" failed: "
                                    "a container's elements are cut off"));
}

TEST(PolicyStateFilter, ANameThatIsTooLongIsRefused) {
  EXPECT_THROW(filterSelector(std::string(100, 'a')), StateError);
  EXPECT_EQ(selectorType(filterSelector(kName)), FW_SELECTOR_FILTER);
  EXPECT_EQ(std::string(filterSelector(kName).agent), "kelpco-sfw");
  const dvs_port_ vif = filterSelector("8d0c7a10-55f4-4c1e-9b02-0000632a0000");
  EXPECT_EQ(selectorType(vif), FW_SELECTOR_VIF);
  EXPECT_EQ(std::string(vif.agent), "kelpco-sfw");
}
