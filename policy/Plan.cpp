#include "Plan.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "LanguageText.h"
#include "SaveText.h"

using namespace TarnFirewall;

namespace {

using Kind = PlanStep::Kind;
using Names = std::set<std::string, std::less<>>;

bool sameButPosition(const FWRule_& a, const FWRule_& b) {
  constexpr std::size_t kAt = offsetof(FWRule_, position);
  constexpr std::size_t kAfter = kAt + sizeof(FWRule_::position);
  const auto* const left = reinterpret_cast<const char*>(&a);
  const auto* const right = reinterpret_cast<const char*>(&b);
  return std::memcmp(left, right, kAt) == 0 &&
         std::memcmp(left + kAfter, right + kAfter, sizeof a - kAfter) == 0;
}

/// A position only makes the order.
bool sameRules(const StateRuleSet& a, const StateRuleSet& b) {
  for (std::size_t kind = 0; kind < kStateRuleKinds; ++kind) {
    const auto& left = a.rules[kind];
    const auto& right = b.rules[kind];
    if (!std::equal(left.begin(), left.end(), right.begin(), right.end(), sameButPosition)) {
      return false;
    }
  }
  return true;
}

template <typename Map>
bool has(const Map& map, std::string_view name) {
  return map.find(name) != map.end();
}

class Planner {
 public:
  Planner(const State& from, const State& to) : from_(from), to_(to) {
    for (const auto& [name, set] : from.ruleSets) there_.insert(name);
  }

  std::vector<PlanStep> run() {
    makeSets();
    makeRuleSets();
    makeJumps();
    const bool clears = to_.ruleSets.empty() && !to_.hasRoot();
    if (clears && from_.ruleSets.size() + (from_.hasRoot() ? 1 : 0) > 1) {
      add(Kind::destroyAllRuleSets);  // with the root
    } else {
      makeRoot();
      removeRuleSets();
    }
    removeSets();
    return std::move(steps_);
  }

 private:
  void add(Kind kind, std::string name = {}) { steps_.push_back({kind, std::move(name)}); }

  void makeSets() {
    for (const auto& [name, set] : to_.sets) {
      const auto old = from_.sets.find(name);
      if (old == from_.sets.end() || !(old->second == set)) add(Kind::createSet, name);
    }
  }

  void makeRuleSets() {
    for (const std::string& name : ruleSetsTargetsFirst(to_)) {
      const StateRuleSet& set = to_.ruleSets.find(name)->second;
      const auto old = from_.ruleSets.find(name);
      if (old != from_.ruleSets.end() && sameRules(old->second, set)) continue;
      for (const std::string& target : ruleTargetsOf(set)) {
        if (target == name || !has(to_.ruleSets, target)) continue;
        if (there_.insert(target).second) add(Kind::createEmptyRuleSet, target);
      }
      add(Kind::createRuleSet, name);
      there_.insert(name);
    }
  }

  void makeJumps() {
    for (const auto& [name, set] : to_.ruleSets) {
      const auto old = from_.ruleSets.find(name);
      const std::string& before = old != from_.ruleSets.end() ? old->second.jump : kNone;
      if (set.jump != before) add(set.jump.empty() ? Kind::clearJump : Kind::setJump, name);
    }
  }

  void makeRoot() {
    if (from_.layer3 == to_.layer3 && from_.layer2 == to_.layer2) return;
    add(to_.hasRoot() ? Kind::setRoot : Kind::clearRoot);
  }

  // ---- what goes

  void removeRuleSets() {
    std::vector<std::string> gone = ruleSetsTargetsFirst(from_);
    std::erase_if(gone, [&](const std::string& name) { return has(to_.ruleSets, name); });
    std::reverse(gone.begin(), gone.end());
    findReferrers(gone);
    Names left(gone.begin(), gone.end());
    for (const std::string& name : gone) {
      // Only rule sets in a circle are still led to here.
      for (const std::string& other : jumpers_[name]) {
        if (has(left, other)) add(Kind::clearJump, other);
      }
      for (const std::string& other : callers_[name]) {
        if (other == name || !has(left, other)) continue;
        if (cleared_.insert(other).second) add(Kind::clearRules, other);
      }
      add(Kind::destroyRuleSet, name);
      left.erase(name);
    }
  }

  /// Which of those that go lead to which of them, by their jumps and by their rules.
  void findReferrers(const std::vector<std::string>& gone) {
    for (const std::string& name : gone) {
      const StateRuleSet& set = from_.ruleSets.find(name)->second;
      if (!set.jump.empty()) jumpers_[set.jump].push_back(name);
      for (const std::string& target : ruleTargetsOf(set)) callers_[target].push_back(name);
    }
  }

  void removeSets() {
    if (to_.sets.empty() && from_.sets.size() > 1) {
      add(Kind::destroyAllSets);
      return;
    }
    for (const auto& [name, set] : from_.sets) {
      if (!has(to_.sets, name)) add(Kind::destroySet, name);
    }
  }

  static const std::string kNone;

  const State& from_;
  const State& to_;
  Names there_;    // rule sets, while the plan goes on
  Names cleared_;  // of those that go, the ones without rules by now
  std::map<std::string, std::vector<std::string>> jumpers_;
  std::map<std::string, std::vector<std::string>> callers_;
  std::vector<PlanStep> steps_;
};

const std::string Planner::kNone;

const StateRuleSet& ruleSetIn(const State& state, const PlanStep& step) {
  return state.ruleSets.at(step.name);
}

}  // namespace

std::vector<PlanStep> planSteps(const State& from, const State& to) {
  return Planner(from, to).run();
}

std::string stepStatement(const PlanStep& step, const State& to) {
  const auto named = [&](const char* words) { return words + quoted(step.name); };
  switch (step.kind) {
    case Kind::createSet:
      return setStatement(step.name, to.sets.at(step.name));
    case Kind::createRuleSet:
      return ruleSetStatement(step.name, ruleSetIn(to, step));
    case Kind::createEmptyRuleSet:
      return named("create ruleset ");
    case Kind::setJump:
      return named("set jumpto of ruleset ") + " as " + quoted(ruleSetIn(to, step).jump);
    case Kind::clearJump:
      return named("clear jumpto of ruleset ");
    case Kind::setRoot:
      return "set root ruleset " + quoted(to.layer3) + " and " + quoted(to.layer2);
    case Kind::clearRoot:
      return "clear root ruleset";
    case Kind::clearRules:
      return named("clear rule of ruleset ");
    case Kind::destroyRuleSet:
      return named("destroy ruleset ");
    case Kind::destroyAllRuleSets:
      return "destroy all ruleset";
    case Kind::destroySet:
      return named("destroy addrset ");
    default:
      return "destroy all addrset";
  }
}

std::string shownStep(const PlanStep& step, const State& to) {
  const std::string name = shownName(step.name);
  switch (step.kind) {
    case Kind::createSet: {
      const StateSet& set = to.sets.at(step.name);
      return (set.isAddresses() ? "create addrset " : "create attrprofile ") + name + " with " +
             countedText(set.addresses.size() + set.elements.size(), "member");
    }
    case Kind::createRuleSet:
      return "create ruleset " + name + " with " + countedText(ruleSetIn(to, step).count(), "rule");
    case Kind::createEmptyRuleSet:
      return "create ruleset " + name;
    case Kind::setJump:
      return "set jumpto of ruleset " + name + " as " + shownName(ruleSetIn(to, step).jump);
    case Kind::clearJump:
      return "clear jumpto of ruleset " + name;
    case Kind::setRoot:
      return "set root ruleset " + shownName(to.layer3) + " and " + shownName(to.layer2);
    case Kind::clearRules:
      return "clear rule of ruleset " + name;
    case Kind::destroyRuleSet:
      return "destroy ruleset " + name;
    case Kind::destroySet:
      return "destroy addrset " + name;
    default:
      return stepStatement(step, to);
  }
}

void applyStep(State& state, const PlanStep& step, const State& to) {
  switch (step.kind) {
    case Kind::createSet:
      state.sets[step.name] = to.sets.at(step.name);
      break;
    case Kind::createRuleSet:
      state.ruleSets[step.name].rules =
          ruleSetIn(to, step).rules;  // one that is there keeps its jump
      break;
    case Kind::createEmptyRuleSet:
    case Kind::clearRules:
      state.ruleSets[step.name].rules = {};
      break;
    case Kind::setJump:
      state.ruleSets[step.name].jump = ruleSetIn(to, step).jump;
      break;
    case Kind::clearJump:
      state.ruleSets[step.name].jump.clear();
      break;
    case Kind::setRoot:
      state.layer3 = to.layer3;
      state.layer2 = to.layer2;
      break;
    case Kind::destroyRuleSet:
      state.ruleSets.erase(step.name);
      break;
    case Kind::destroyAllRuleSets:
      state.ruleSets.clear();
      [[fallthrough]];
    case Kind::clearRoot:
      state.layer3.clear();
      state.layer2.clear();
      break;
    case Kind::destroySet:
      state.sets.erase(step.name);
      break;
    case Kind::destroyAllSets:
      state.sets.clear();
      break;
  }
}
