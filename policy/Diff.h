#pragma once

/// In what two states differ, by meaning: sets by their members, rules by their ids and what has
/// changed in them, their order, jumps and roots. The position in a rule's record is no difference
/// of its own: it only makes the order.

#include <string>
#include <vector>

#include "RuleText.h"
#include "State.h"

/// A part of a rule that changed, with both texts; an empty one is a part that the rule does not
/// have.
struct PartChange {
  std::string part;
  std::string before;
  std::string after;
};

/// How something of the first state is in the second one.
enum class Change { added, removed, changed, moved };

/// One rule that is not the same in both. A rule that was changed may have been moved as well.
struct RuleChange {
  Change change;
  std::uint32_t id;
  StateRules kind;                // in the second state, in the first one where it was removed
  std::string text;               // the rule, as it is or was
  std::vector<PartChange> parts;  // of a rule that changed
  std::string place;              // of a moved rule: "first", or "after rule 10"
};

/// A set that is not the same in both.
struct SetChange {
  Change change;  // added, removed or changed
  std::string name;
  bool isContainer;
  std::vector<std::string> added;  // members; all of them where the set was added
  std::vector<std::string> removed;
  bool typeChanged = false;
};

/// A rule set that is not the same in both.
struct RuleSetChange {
  Change change;  // added, removed or changed
  std::string name;
  std::vector<RuleChange> rules;  // all of them where the set was added or removed
  bool jumpChanged = false;
  std::string jumpBefore, jumpAfter;

  std::size_t countOf(Change wanted) const;
};

/// The roots in both; empty for none.
struct RootChange {
  bool changed() const { return layer3Before != layer3After || layer2Before != layer2After; }
  std::string layer3Before, layer3After;
  std::string layer2Before, layer2After;
};

/// All that differs.
struct StateDiff {
  bool isEmpty() const { return sets.empty() && ruleSets.empty() && !root.changed(); }

  std::vector<SetChange> sets;          // by name
  std::vector<RuleSetChange> ruleSets;  // by name
  RootChange root;
};

/// What would have to change for the first state to become the second.
StateDiff differencesOf(const State& before, const State& after);

/// A member of a container in words for people.
std::string shownElement(const std::string& element);
