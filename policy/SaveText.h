#pragma once

/// A state as configuration text: what makes a filter that holds nothing hold the state. One state
/// gives one text, byte by byte.
///
/// Sets come first, by name, their members in order; then the rule sets, each after those that its
/// rules jump to; then the jumps between them, and the root at last. So the text refers to nothing
/// that is not there yet. Counters and times are not in it.

#include <string>
#include <vector>

#include "State.h"

/// A saved state.
struct SavedText {
  std::string text;

  /// What the language can't say, each a sentence without a full stop: "rule 7 of rule set "web":
  /// its pool option has no word". A comment of the text has it in its place.
  std::vector<std::string> missing;

  /// What the text makes, which is the state where nothing is missing.
  State made;
};

/// Every statement is read again before it is taken: what would come back otherwise is missing.
SavedText saveText(const State& state);

/// The statement that makes a set, without its semicolon. Throws `Unsayable`.
std::string setStatement(const std::string& name, const StateSet& set);

/// The statement that makes a rule set, without its semicolon. Throws `Unsayable`.
std::string ruleSetStatement(const std::string& name, const StateRuleSet& set);

/// Differences between two states, for the report of a verification that failed; at most `most`
/// lines. Empty when they are equal, record by record.
std::vector<std::string> recordDifferences(const State& wanted, const State& made,
                                           std::size_t most);
