/// Plans against a search of all sequences of statements: none that keeps the rules is shorter.
///
/// The rules: no moment refers to a rule set that is not there, and the kernel refuses none of the
/// statements. The root changes when all that stays is as it is to be, and is not without a rule
/// set meanwhile; after it things only go. What is in both states is not destroyed.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Choices.h"
#include "Plan.h"
#include "PolicyTextGenerator.h"
#include "StateText.h"

using namespace TarnFirewall;

namespace {

State stateOf(const std::string& text) { return stateOfText(text, "test.conf").state; }

constexpr unsigned int kMost = 4;  // rule sets in both states together

/// What a rule set's rules, or its jump, may be on the way.
enum : unsigned char { kAbsent, kBefore, kAfter, kEmpty };
enum : unsigned char { kRootBefore, kRootThere, kRootAfter };

/// One moment: rules and jump of each rule set, and the root, in a number.
struct Moment {
  unsigned char rules[kMost] = {};
  unsigned char jump[kMost] = {};  // kBefore, kAfter or kEmpty for none
  unsigned char root = kRootBefore;

  std::size_t number() const {
    std::size_t value = root;
    for (unsigned int i = 0; i < kMost; ++i) value = value * 16 + rules[i] * 4u + jump[i];
    return value;
  }
};
constexpr std::size_t kMoments = std::size_t{3} << (4 * kMost);

/// The search. Bit `i` of a set of names stands for the rule set `i`.
class Search {
 public:
  Search(const State& from, const State& to) {
    for (const auto& [name, set] : from.ruleSets) names_.push_back(name);
    for (const auto& [name, set] : to.ruleSets) {
      if (!from.ruleSets.contains(name)) names_.push_back(name);
    }
    EXPECT_LE(names_.size(), kMost);
    for (unsigned int i = 0; i < names_.size(); ++i) {
      read(from, i, kBefore);
      read(to, i, kAfter);
    }
    setsOfStatements(from, to);
    roots_[kRootBefore] = {from.layer3, from.layer2};
    roots_[kRootAfter] = {to.layer3, to.layer2};
    for (unsigned int layer = 0; layer < 2; ++layer) {
      const std::string& name = roots_[kRootAfter][layer];
      roots_[kRootThere][layer] = to.ruleSets.contains(name) ? name : "";
    }
    clears_ = to.ruleSets.empty() && !to.hasRoot();
  }

  /// Statements of the shortest sequence.
  std::optional<std::size_t> run() {
    std::vector<Moment> now = {start()};
    seen_.assign(kMoments, false);
    for (std::size_t steps = 0; !now.empty(); ++steps) {
      next_.clear();
      for (const Moment& moment : now) {
        if (isEnd(moment)) return steps + addressStatements_;
        // With this all is gone at once, the root too.
        if (clears_ && steps + addressStatements_ + 1 < best_)
          best_ = steps + addressStatements_ + 1;
        if (steps + addressStatements_ >= best_) return best_;
        expand(moment);
      }
      now.swap(next_);
    }
    return {};
  }

 private:
  using Names = unsigned int;

  void read(const State& state, unsigned int i, unsigned char when) {
    const auto at = state.ruleSets.find(names_[i]);
    if (at == state.ruleSets.end()) return;
    isThere_[when] |= 1u << i;
    for (const std::string& target : ruleTargetsOf(at->second)) {
      // What leads to nothing in both states is not the plan's matter.
      if (indexOf(target) < names_.size() && target != names_[i]) {
        rules_[i][when] |= 1u << indexOf(target);
      }
    }
    if (!at->second.jump.empty()) jumps_[i][when] = static_cast<int>(indexOf(at->second.jump));
    contents_[i][when] = &at->second;
  }

  std::size_t indexOf(const std::string& name) const {
    return static_cast<std::size_t>(std::find(names_.begin(), names_.end(), name) - names_.begin());
  }

  /// Sets of addresses: nothing is shorter than one statement each, or one for all that go.
  void setsOfStatements(const State& from, const State& to) {
    for (const auto& [name, set] : to.sets) {
      const auto old = from.sets.find(name);
      if (old == from.sets.end() || !(old->second == set)) ++addressStatements_;
    }
    std::size_t gone = 0;
    for (const auto& [name, set] : from.sets) gone += to.sets.contains(name) ? 0 : 1;
    addressStatements_ += to.sets.empty() ? std::min<std::size_t>(gone, 1) : gone;
  }

  bool sameRules(unsigned int i) const {
    const StateRuleSet* const before = contents_[i][kBefore];
    const StateRuleSet* const after = contents_[i][kAfter];
    if (before == nullptr || after == nullptr) return false;
    StateRuleSet rules = *before;
    rules.jump = after->jump;
    return rules == *after;
  }

  /// The one number for what is the same.
  unsigned char rulesAs(unsigned int i, unsigned char which) const {
    const StateRuleSet* const after = contents_[i][kAfter];
    if (which == kBefore && sameRules(i)) return kAfter;
    if (which == kEmpty && after != nullptr && after->count() == 0) return kAfter;
    return which;
  }
  unsigned char jumpAs(unsigned int i, unsigned char which) const {
    if (which != kEmpty && jumps_[i][which] < 0) return kEmpty;
    if (which == kBefore && jumps_[i][kBefore] == jumps_[i][kAfter]) return kAfter;
    return which;
  }

  Moment start() const {
    Moment moment;
    for (unsigned int i = 0; i < names_.size(); ++i) {
      moment.jump[i] = kEmpty;
      if ((isThere_[kBefore] >> i & 1) == 0) continue;
      moment.rules[i] = rulesAs(i, kBefore);
      moment.jump[i] = jumpAs(i, kBefore);
    }
    if (roots_[kRootBefore] == roots_[kRootAfter]) moment.root = kRootAfter;
    return moment;
  }

  bool stays(unsigned int i) const { return (isThere_[kAfter] >> i & 1) != 0; }

  /// Whether all that stays is as it is to be.
  bool isMade(const Moment& moment) const {
    for (unsigned int i = 0; i < names_.size(); ++i) {
      if (stays(i) && (moment.rules[i] != kAfter || moment.jump[i] != jumpAs(i, kAfter)))
        return false;
    }
    return true;
  }

  bool isEnd(const Moment& moment) const {
    if (!isMade(moment) || moment.root != kRootAfter) return false;
    for (unsigned int i = 0; i < names_.size(); ++i) {
      if (!stays(i) && moment.rules[i] != kAbsent) return false;
    }
    return true;
  }

  Names there(const Moment& moment) const {
    Names names = 0;
    for (unsigned int i = 0; i < names_.size(); ++i) {
      if (moment.rules[i] != kAbsent) names |= 1u << i;
    }
    return names;
  }

  bool dangles(const Moment& moment) const {
    const Names names = there(moment);
    for (unsigned int i = 0; i < names_.size(); ++i) {
      if (moment.rules[i] == kAbsent) continue;
      const unsigned char rules = moment.rules[i];
      if (rules != kEmpty && (rules_[i][rules] & ~names) != 0) return true;
      const unsigned char jump = moment.jump[i];
      if (jump != kEmpty && (names >> jumps_[i][jump] & 1) == 0) return true;
    }
    return false;
  }

  /// Whether the kernel keeps the rule set, since the root or a jump leads to it.
  bool isHeld(const Moment& moment, unsigned int i) const {
    const auto& root = roots_[moment.root];
    if (root[0] == names_[i] || root[1] == names_[i]) return true;
    for (unsigned int other = 0; other < names_.size(); ++other) {
      const unsigned char jump = moment.jump[other];
      if (moment.rules[other] == kAbsent || jump == kEmpty) continue;
      if (jumps_[other][jump] == static_cast<int>(i)) return true;
    }
    return false;
  }

  void take(const Moment& moment) {
    if (dangles(moment) || seen_[moment.number()]) return;
    seen_[moment.number()] = true;
    next_.push_back(moment);
  }

  void expand(const Moment& moment) {
    for (unsigned int i = 0; i < names_.size(); ++i) {
      expandRules(moment, i);
      if (moment.rules[i] == kAbsent) continue;
      for (const unsigned char jump : {kBefore, kAfter, kEmpty}) {
        Moment next = moment;
        next.jump[i] = jumpAs(i, jump);
        take(next);
      }
      if (stays(i) || isHeld(moment, i)) continue;
      Moment next = moment;
      next.rules[i] = kAbsent;
      next.jump[i] = kEmpty;
      take(next);
    }
    if (!isMade(moment)) return;
    for (const unsigned char root : {kRootThere, kRootAfter}) {
      // Without a root at the end, it is cleared; it never leads to nothing on the way.
      if (root == kRootThere && roots_[root][0].empty() && roots_[root][1].empty()) continue;
      Moment next = moment;
      next.root = root;
      take(next);
    }
  }

  void expandRules(const Moment& moment, unsigned int i) {
    for (const unsigned char rules : {kBefore, kAfter, kEmpty}) {
      if (rules != kEmpty && contents_[i][rules] == nullptr) continue;
      Moment next = moment;
      next.rules[i] = rulesAs(i, rules);
      take(next);
    }
  }

  std::vector<std::string> names_;
  Names isThere_[3] = {};
  Names rules_[kMost][3] = {};  // what they lead to
  int jumps_[kMost][3] = {{-1, -1, -1}, {-1, -1, -1}, {-1, -1, -1}, {-1, -1, -1}};
  const StateRuleSet* contents_[kMost][3] = {};
  std::array<std::string, 2> roots_[3];
  std::size_t addressStatements_ = 0;
  std::size_t best_ = SIZE_MAX;
  bool clears_ = false;
  std::vector<bool> seen_;
  std::vector<Moment> next_;
};

/// Compares the plans of generated pairs of states with the search.
void compare(std::uint64_t first, std::uint64_t count, const PolicyShape& shape) {
  for (std::uint64_t seed = first; seed < first + count; ++seed) {
    Choices choices(seed);
    const std::string before = choices.chance(10) ? "" : generatedPolicyText(choices, shape);
    const std::string after = choices.chance(10) ? "" : generatedPolicyText(choices, shape);
    const State from = stateOf(before), to = stateOf(after);
    const auto fewest = Search(from, to).run();
    ASSERT_TRUE(fewest) << "from " << before << "\nto " << after;
    std::string shown;
    const auto steps = planSteps(from, to);
    for (const PlanStep& step : steps) shown += "  " + shownStep(step, to) + "\n";
    ASSERT_EQ(steps.size(), *fewest)
        << "seed " << seed << "\nfrom " << before << "\nto " << after << "\n"
        << shown;
  }
}

}  // namespace

TEST(PolicyPlanSearch, NothingIsShorterBetweenStatesOfThreeRuleSets) {
  compare(1, 1500, {.names = 3, .chanceOfRuleSet = 70, .chanceOfOpenLayer = 10});
}

TEST(PolicyPlanSearch, NothingIsShorterBetweenStatesOfFourRuleSets) {
  compare(10001, 300, {.names = 4, .chanceOfRuleSet = 75, .chanceOfOpenLayer = 10});
}

/// Where nearly everything jumps somewhere, circles meet.
TEST(PolicyPlanSearch, NothingIsShorterThroughCircles) {
  compare(20001, 500,
          {.names = 4, .chanceOfRuleSet = 90, .chanceOfJumpRule = 95, .chanceOfJump = 80});
}
