#pragma once

/// A filter with rule sets, for the tests of getrules.

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "Expect.h"
#include "HandlerKernel.h"
#include "RunCommand.h"

namespace RuleTest {

using Body = HandlerKernel::Body;

inline const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

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
inline Bytes rule(int id, int action) {
  Bytes record(892);
  put32(record, 0, static_cast<std::uint32_t>(id));
  put32(record, 4, 77);  // a place that is not shown
  return record.at(790, {0x10}).at(750, {action}).at(884, {1});
}
inline Bytes acceptRule(int id) { return rule(id, 1); }
inline Bytes dropRule(int id) { return rule(id, 2); }

/// A rule with a load-balancing action that has options.
inline Bytes balancingRule(int id) { return rule(id, 13).at(742, {0x40}).text(614, "rr"); }

/// A rule that makes no text: its action's code is none.
inline Bytes brokenRule() { return rule(1, 15).at(742, {0x40}); }

inline Bytes snatRule(int id) {
  return rule(id, 7).at(790, {0x50}).at(460, {1}).at(464, {192, 0, 2, 20});
}
inline Bytes dnatRule(int id) { return rule(id, 8).at(460, {1}).at(464, {10, 0, 0, 9}); }

/// A load-balancing rule whose text has so many characters.
inline Bytes longRule(std::size_t length) {
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
inline Bytes ipv4() { return Bytes(144).at(0, {1}).at(4, {10, 1, 2, 3}); }

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

inline CommandResult getRules(std::vector<std::string> options = {}) {
  std::vector<std::string> words{"getrules", "-f", kFilter};
  words.insert(words.end(), options.begin(), options.end());
  return runCommand(words);
}

/// With the realization times of the reply replaced.
inline CommandResult getRulesMasked(std::vector<std::string> options = {}) {
  CommandResult result = getRules(std::move(options));
  result.out = maskTime(result.out, 1000);
  return result;
}

/// The first line about a rule.
inline std::string ruleLine(const std::string& out) {
  const std::size_t at = out.find("  rule ");
  return at == std::string::npos ? "" : out.substr(at, out.find('\n', at) - at);
}

inline const char kOpen[] =
    "ruleset web {\n"
    "  # generation number: 42\n"
    "  # realization time : TIME\n";

}  // namespace RuleTest
