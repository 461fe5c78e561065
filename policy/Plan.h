#pragma once

/// The fewest statements that turn what a filter holds into another state, in an order in which at
/// no moment something refers to what is not there:
///
///     1. address sets and containers that are new or changed
///     2. rule sets that are new or whose rules changed, each after those that its rules jump to
///     3. jumps between rule sets
///     4. the root
///     5. rule sets that nothing leads to any more, each after those that lead to it
///     6. sets that nothing uses any more
///
/// Circles cost a statement more for each place in which they are opened, and are opened in the
/// fewest places: new rule sets whose rules jump in a circle, and some that go. A root that is to
/// name, for one of its layers, a rule set that goes is set after it has gone; one that led there
/// before is first set without that layer.
///
/// So a packet that enters at the root meets the new rules as a whole when the root changes, as far
/// as they stand in rule sets of new names; what keeps its name changes in its place, with one
/// statement each.

#include <string>
#include <vector>

#include "State.h"

/// One statement. What it makes stands in the state that the plan leads to.
struct PlanStep {
  enum class Kind {
    createSet,
    createRuleSet,
    createEmptyRuleSet,  // ahead of its rules, for one in a circle of new ones
    setJump,
    clearJump,
    setRootThatIsThere,  // without the layer that names a rule set which the state does not have
    setRoot,
    clearRoot,
    clearRules,  // of a rule set in a circle of those that go
    destroyRuleSet,
    destroyAllRuleSets,
    destroySet,
    destroyAllSets,
  };

  bool operator==(const PlanStep& other) const = default;

  Kind kind;
  std::string name;  // of the set; empty for the root and for all
};

/// The steps from one state to the other; none when they are equal. Other positions of the same
/// rules in the same order are no difference, as in a diff.
std::vector<PlanStep> planSteps(const State& from, const State& to);

/// The statement of a step in the configuration language, without its semicolon. Throws `Unsayable`
/// for something of the state that the language can't say.
std::string stepStatement(const PlanStep& step, const State& to);

/// What a step is, on one short line: "create ruleset "web" with 3 rules".
std::string shownStep(const PlanStep& step, const State& to);

/// Carries a step out on a state, as the kernel does on the filter's.
void applyStep(State& state, const PlanStep& step, const State& to);
