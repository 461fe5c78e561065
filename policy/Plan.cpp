#include "Plan.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <set>

#include "Circles.h"
#include "LanguageText.h"
#include "SaveText.h"

using namespace TarnFirewall;

namespace {

using Kind = PlanStep::Kind;

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

/// The layers of a root that lead to a rule set of its state. One of the two may lead to nothing.
struct Root {
  std::string layer3, layer2;

  bool operator==(const Root& other) const = default;
};

Root rootOf(const State& state) { return {state.layer3, state.layer2}; }

Root rootThatIsThere(const State& state) {
  Root root = rootOf(state);
  if (!has(state.ruleSets, root.layer3)) root.layer3.clear();
  if (!has(state.ruleSets, root.layer2)) root.layer2.clear();
  return root;
}

/// Hands out numbers, each after those that it waits for, otherwise the lowest first.
class Waiting {
 public:
  explicit Waiting(std::size_t count) : open_(count, 0), waiting_(count) {}

  void add(std::uint32_t who, std::uint32_t waitsFor) {
    waiting_[waitsFor].push_back(who);
    ++open_[who];
  }

  template <typename Take>
  void run(Take take) {
    std::set<std::uint32_t> ready;
    for (std::uint32_t i = 0; i < open_.size(); ++i) {
      if (open_[i] == 0) ready.insert(i);
    }
    while (!ready.empty()) {
      const std::uint32_t next = *ready.begin();
      ready.erase(ready.begin());
      take(next);
      for (const std::uint32_t who : waiting_[next]) {
        if (--open_[who] == 0) ready.insert(who);
      }
    }
  }

 private:
  std::vector<std::uint32_t> open_;  // what each still waits for
  std::vector<std::vector<std::uint32_t>> waiting_;
};

/// The statements that make what is to be there of rule sets.
class Making {
 public:
  Making(const State& from, const State& to) : to_(to) {
    for (const std::string& name : ruleSetsTargetsFirst(to)) {
      const auto old = from.ruleSets.find(name);
      const StateRuleSet& set = to.ruleSets.find(name)->second;
      if (old != from.ruleSets.end() && sameRules(old->second, set)) continue;
      if (old == from.ruleSets.end()) numbers_.emplace(name, static_cast<Number>(names_.size()));
      names_.push_back(name);
    }
  }

  /// Each after the new ones that its rules jump to; in a circle of new ones, an empty one ahead.
  template <typename Add>
  void run(Add add) {
    const CircleGraph graph = newTargets();
    for (const Number number : circleBreakers(graph)) ahead_.insert(number);
    Waiting waiting(names_.size());
    for (Number number = 0; number < names_.size(); ++number) {
      for (const Number target : graph[number]) {
        if (!ahead_.contains(target)) waiting.add(number, target);
      }
    }
    waiting.run([&](Number number) {
      for (const Number target : graph[number]) {
        if (made_.insert(target).second) add(Kind::createEmptyRuleSet, names_[target]);
      }
      made_.insert(number);
      add(Kind::createRuleSet, names_[number]);
    });
  }

 private:
  using Number = std::uint32_t;

  /// A rule set may jump to itself: it is there when its rules are.
  CircleGraph newTargets() const {
    CircleGraph graph(names_.size());
    for (Number number = 0; number < names_.size(); ++number) {
      for (const std::string& name : ruleTargetsOf(to_.ruleSets.find(names_[number])->second)) {
        const auto target = numbers_.find(name);
        if (target != numbers_.end() && target->second != number) {
          graph[number].push_back(target->second);
        }
      }
    }
    return graph;
  }

  const State& to_;
  std::vector<std::string> names_;         // of those to be made
  std::map<std::string, Number> numbers_;  // of the new ones among them
  std::set<Number> ahead_;
  std::set<Number> made_;
};

/// The statements that remove rule sets. Where the root is to name, for one of its layers, a rule
/// set that goes, it changes among them: after that one, and before what it leads to now.
class Removing {
 public:
  Removing(const State& from, const State& to) : from_(from), names_(ruleSetsTargetsFirst(from)) {
    std::erase_if(names_, [&](const std::string& name) { return has(to.ruleSets, name); });
    std::reverse(names_.begin(), names_.end());
    for (Number number = 0; number < names_.size(); ++number) numbers_[names_[number]] = number;
    findLeads();
    for (const std::string* const name : {&to.layer3, &to.layer2}) {
      if (has(numbers_, *name)) rootWaitsFor_ = numbers_[*name];
    }
    if (changesRoot()) leads_.push_back({root(), Kind::setRootThatIsThere, rootTargets()});
  }

  bool changesRoot() const { return rootWaitsFor_.has_value(); }

  /// Each after those that lead to it; in a circle, after a statement that opens it.
  template <typename Add>
  void run(Add add) {
    openCircles();
    Waiting waiting(names_.size() + 1);
    std::vector<std::vector<const Lead*>> opened(names_.size());  // by what they led to
    for (const Lead& lead : leads_) {
      for (const Number target : lead.targets) {
        if (lead.isOpened) {
          opened[target].push_back(&lead);
        } else {
          waiting.add(target, lead.owner);
        }
      }
    }
    if (changesRoot()) waiting.add(root(), *rootWaitsFor_);
    std::set<const Lead*> ended;
    std::vector<bool> isGone(names_.size() + 1, false);
    waiting.run([&](Number number) {
      isGone[number] = true;
      if (number == root()) {
        if (changesRoot()) add(Kind::setRoot, {});
        return;
      }
      for (const Lead* const lead : opened[number]) {
        const bool leads = lead->owner == number || !isGone[lead->owner];
        if (leads && ended.insert(lead).second) add(lead->opening, nameOf(lead->owner));
      }
      add(Kind::destroyRuleSet, names_[number]);
    });
  }

 private:
  using Number = std::uint32_t;

  /// What one rule set of those, or the root, leads to by its rules, or by its jump, and the
  /// statement that ends this.
  struct Lead {
    Number owner;
    Kind opening;
    std::vector<Number> targets;
    bool isOpened = false;
  };

  Number root() const { return static_cast<Number>(names_.size()); }

  std::string nameOf(Number number) const { return number == root() ? "" : names_[number]; }

  void findLeads() {
    // From the last on: of two that do alike, the one that is destroyed later is opened.
    for (Number number = root(); number-- > 0;) {
      const StateRuleSet& set = from_.ruleSets.find(names_[number])->second;
      Lead rules{number, Kind::clearRules, {}};
      for (const std::string& name : ruleTargetsOf(set)) {
        const auto target = numbers_.find(name);
        // Its own rules go with it.
        if (target != numbers_.end() && target->second != number) {
          rules.targets.push_back(target->second);
        }
      }
      if (!rules.targets.empty()) leads_.push_back(std::move(rules));
      const auto jump = numbers_.find(set.jump);
      if (jump != numbers_.end()) leads_.push_back({number, Kind::clearJump, {jump->second}});
    }
  }

  /// Those of them that the root leads to now.
  std::vector<Number> rootTargets() const {
    std::set<Number> found;
    for (const std::string* const name : {&from_.layer3, &from_.layer2}) {
      if (const auto at = numbers_.find(*name); at != numbers_.end()) found.insert(at->second);
    }
    return {found.begin(), found.end()};
  }

  /// The fewest leads without which there is no circle: a lead leads to those of its targets, and
  /// to those of the root where the root waits for the target.
  void openCircles() {
    std::vector<std::vector<Number>> own(names_.size() + 1);
    for (Number i = 0; i < leads_.size(); ++i) own[leads_[i].owner].push_back(i);
    if (changesRoot()) {
      auto& waitedFor = own[*rootWaitsFor_];
      waitedFor.insert(waitedFor.end(), own[root()].begin(), own[root()].end());
    }
    CircleGraph graph(leads_.size());
    for (Number i = 0; i < leads_.size(); ++i) {
      for (const Number target : leads_[i].targets) {
        graph[i].insert(graph[i].end(), own[target].begin(), own[target].end());
      }
    }
    for (const Number i : circleBreakers(graph)) leads_[i].isOpened = true;
  }

  const State& from_;
  std::vector<std::string> names_;  // of those that go; after them stands the root
  std::map<std::string, Number, std::less<>> numbers_;
  std::optional<Number> rootWaitsFor_;
  std::vector<Lead> leads_;
};

class Planner {
 public:
  Planner(const State& from, const State& to) : from_(from), to_(to) {}

  std::vector<PlanStep> run() {
    const auto take = [this](Kind kind, const std::string& name) { add(kind, name); };
    makeSets();
    Making(from_, to_).run(take);
    makeJumps();
    const std::size_t before = steps_.size();
    Removing removing(from_, to_);
    if (!removing.changesRoot() && rootOf(from_) != rootOf(to_)) {
      add(to_.hasRoot() ? Kind::setRoot : Kind::clearRoot);
    }
    removing.run(take);
    if (to_.ruleSets.empty() && !to_.hasRoot() && steps_.size() > before + 1) {
      steps_.resize(before);
      add(Kind::destroyAllRuleSets);  // with the root
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

  void makeJumps() {
    for (const auto& [name, set] : to_.ruleSets) {
      const auto old = from_.ruleSets.find(name);
      const std::string& before = old != from_.ruleSets.end() ? old->second.jump : kNone;
      if (set.jump != before) add(set.jump.empty() ? Kind::clearJump : Kind::setJump, name);
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
    case Kind::setRootThatIsThere: {
      const Root root = rootThatIsThere(to);
      return "set root ruleset " + quoted(root.layer3) + " and " + quoted(root.layer2);
    }
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
    case Kind::setRootThatIsThere: {
      const Root root = rootThatIsThere(to);
      return "set root ruleset " + shownName(root.layer3) + " and " + shownName(root.layer2);
    }
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
    case Kind::setRootThatIsThere: {
      Root root = rootThatIsThere(to);
      state.layer3 = std::move(root.layer3);
      state.layer2 = std::move(root.layer2);
      break;
    }
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
