#pragma once

/// What a filter holds, or what a configuration text makes: address sets, containers, rule sets
/// with their rules as the kernel's records, jumps, roots. `StateFilter.h` reads it from a filter
/// and `StateText.h` from a text; what two of them differ in is a matter of `Diff.h`.
///
/// Names and texts in a state may come from a kernel and hold any byte but NUL.

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "TarnFWRecords.h"
#include "TarnFWRuleRecord.h"

/// Why a state could not be read or made. The text is for a line of its own: no capital, no full
/// stop, no line end.
class StateError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// An address set, or a container of another kind; they share one space of names.
struct StateSet {
  static constexpr std::uint32_t kAddresses = 1;
  static constexpr std::uint32_t kProfile = 2;

  bool isAddresses() const { return type == kAddresses; }
  bool operator==(const StateSet& other) const;

  std::uint32_t type = kAddresses;

  /// Members of an address set; empty for a container. Sorted, no two alike.
  std::vector<TarnFirewall::FWAddress_> addresses;

  /// Elements of a container, each with its head as the kernel lays it out; empty for an address
  /// set. Sorted, no two alike.
  std::vector<std::string> elements;
};

/// Kinds of rules, as the kernel numbers them.
enum class StateRules : unsigned { filter = 0, snat = 1, dnat = 2 };
inline constexpr std::size_t kStateRuleKinds = 3;

/// The kinds in the order in which a packet meets them, which is that of every list of rules.
inline constexpr std::array<StateRules, kStateRuleKinds> kStateRuleOrder = {
    StateRules::dnat, StateRules::filter, StateRules::snat};

/// The kind of a rule, which follows from its action.
StateRules stateRulesOf(const TarnFirewall::FWRule_& rule);

/// A rule set: its rules by kind, and its jump.
struct StateRuleSet {
  using Rules = std::vector<TarnFirewall::FWRule_>;

  Rules& of(StateRules kind) { return rules[static_cast<std::size_t>(kind)]; }
  const Rules& of(StateRules kind) const { return rules[static_cast<std::size_t>(kind)]; }
  std::size_t count() const { return rules[0].size() + rules[1].size() + rules[2].size(); }
  bool operator==(const StateRuleSet& other) const;

  /// The rules of each kind in the kernel's order: by position, and as they were given among rules
  /// of one position.
  std::array<Rules, kStateRuleKinds> rules;

  /// Where a packet goes on that no rule has met; empty for nowhere.
  std::string jump;
};

/// What one filter holds.
struct State {
  bool operator==(const State& other) const = default;
  bool isEmpty() const { return sets.empty() && ruleSets.empty() && !hasRoot(); }
  bool hasRoot() const { return !layer3.empty() || !layer2.empty(); }

  std::map<std::string, StateSet, std::less<>> sets;
  std::map<std::string, StateRuleSet, std::less<>> ruleSets;

  /// The root rule sets; empty for none.
  std::string layer3;
  std::string layer2;
};

// --- Making states

/// Brings a record that came from outside into the one form in which states compare: after the end
/// of a text in it, and after the value of an address, there is nothing but zeros.
void settleRule(TarnFirewall::FWRule_& rule);
void settleAddress(TarnFirewall::FWAddress_& address);

/// The order of members.
bool addressLess(const TarnFirewall::FWAddress_& a, const TarnFirewall::FWAddress_& b);

/// Sorts the members and drops those that are there twice.
void settleSet(StateSet& set);

/// The elements of a container's chain, each with its head. A chain that does not lie in its bytes
/// throws `StateError`.
std::vector<std::string> chainElements(std::span<const std::byte> chain);

/// Whether two rules are the same but for their positions, which only make the order.
bool sameButPosition(const TarnFirewall::FWRule_& a, const TarnFirewall::FWRule_& b);

/// Sorts the rules of a set into their kinds, and by position in each.
void addRules(StateRuleSet& set, std::vector<TarnFirewall::FWRule_> rules);

// --- What refers to what

/// Names that a rule refers to; a view lives as long as the rule. Empty where it refers to nothing.
struct StateReferences {
  std::string_view source, destination, target;       // address sets
  std::string_view extendedSource, attributeProfile;  // containers
  std::string_view jump;                              // a rule set

  std::array<std::string_view, 5> sets() const {
    return {source, destination, target, extendedSource, attributeProfile};
  }
};
StateReferences referencesOf(const TarnFirewall::FWRule_& rule);

/// The name in a record of an address set's reference, empty for an address of another type.
std::string_view setNameOf(const TarnFirewall::FWAddress_& address);

/// The rule sets that the rules of a set jump to, by name, each once.
std::vector<std::string> ruleTargetsOf(const StateRuleSet& set);

/// The names of the rule sets in an order in which a set comes after those that its rules and its
/// jump lead to; otherwise by name. Where they lead in a circle, by name.
std::vector<std::string> ruleSetsTargetsFirst(const State& state);
