#include "Diff.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>

#include "LanguageText.h"
#include "TarnFWContainer.h"
#include "TarnFWException.h"
#include "TarnFWText.h"

using namespace TarnFirewall;

namespace {

/// Calls `use(name, a, b)` for every name of two maps, in order, with null for a map that has none.
template <typename Map, typename Use>
void forBoth(const Map& before, const Map& after, Use use) {
  auto a = before.begin();
  auto b = after.begin();
  while (a != before.end() || b != after.end()) {
    if (b == after.end() || (a != before.end() && a->first < b->first)) {
      use(a->first, &a->second, decltype(&a->second){nullptr});
      ++a;
    } else if (a == before.end() || b->first < a->first) {
      use(b->first, decltype(&b->second){nullptr}, &b->second);
      ++b;
    } else {
      use(a->first, &a->second, &b->second);
      ++a;
      ++b;
    }
  }
}

template <typename Value>
Change changeOf(const Value* before, const Value* after) {
  if (before == nullptr) return Change::added;
  return after == nullptr ? Change::removed : Change::changed;
}

// ---- sets

/// Splits two sorted lists into what only one of them has.
template <typename Member, typename Less, typename Shown>
void compareMembers(const std::vector<Member>& before, const std::vector<Member>& after, Less less,
                    Shown shown, SetChange& change) {
  auto a = before.begin();
  auto b = after.begin();
  while (a != before.end() || b != after.end()) {
    if (b == after.end() || (a != before.end() && less(*a, *b))) {
      change.removed.push_back(shown(*a++));
    } else if (a == before.end() || less(*b, *a)) {
      change.added.push_back(shown(*b++));
    } else {
      ++a;
      ++b;
    }
  }
}

void compareSet(const StateSet& before, const StateSet& after, SetChange& change) {
  change.typeChanged = before.type != after.type;
  compareMembers(before.addresses, after.addresses, addressLess, shownAddress, change);
  compareMembers(before.elements, after.elements, std::less<>(), shownElement, change);
}

void compareSets(const State& before, const State& after, std::vector<SetChange>& changes) {
  static const StateSet kNone;
  const auto both = [&](const std::string& name, const StateSet* a, const StateSet* b) {
    if (a != nullptr && b != nullptr && *a == *b) return;
    const Change kind = changeOf(a, b);
    SetChange change{kind, name, !(b != nullptr ? b : a)->isAddresses(), {}, {}};
    compareSet(a != nullptr ? *a : kNone, b != nullptr ? *b : kNone, change);
    if (kind != Change::changed) change.typeChanged = false;
    changes.push_back(std::move(change));
  };
  forBoth(before.sets, after.sets, both);
}

// ---- rules

/// A rule of a set with its place among the rules of its kind.
struct Placed {
  const FWRule_* rule;
  StateRules kind;
  std::size_t place;
};

/// Rules that share an id have a number each, which says which of them is meant.
struct Key {
  std::uint32_t id;
  std::uint32_t number;
  bool operator==(const Key& other) const = default;
};
struct KeyHash {
  std::size_t operator()(const Key& key) const {
    return std::hash<std::uint64_t>()(std::uint64_t{key.id} << 32 | key.number);
  }
};

/// The rules of a set in the order in which a packet meets them, and where each of them is.
class Rules {
 public:
  explicit Rules(const StateRuleSet& set) {
    std::unordered_map<std::uint32_t, std::uint32_t> seen;
    placed_.reserve(set.count());
    for (const StateRules kind : kStateRuleOrder) {
      for (const FWRule_& rule : set.of(kind)) {
        const Key key{rule.id, seen[rule.id]++};
        places_.emplace(key, placed_.size());
        keys_.push_back(key);
        placed_.push_back({&rule, kind, placed_.size()});
      }
    }
  }

  std::size_t size() const { return placed_.size(); }
  const Placed& operator[](std::size_t index) const { return placed_[index]; }
  const Key& key(std::size_t index) const { return keys_[index]; }
  const Placed* find(const Key& key) const {
    const auto at = places_.find(key);
    return at == places_.end() ? nullptr : &placed_[at->second];
  }

 private:
  std::vector<Placed> placed_;
  std::vector<Key> keys_;
  std::unordered_map<Key, std::size_t, KeyHash> places_;
};

/// Whether two records differ in more than their position.
bool sameRule(const FWRule_& a, const FWRule_& b) {
  constexpr std::size_t kAfter = offsetof(FWRule_, position) + sizeof(hosti32);
  const auto* const left = reinterpret_cast<const char*>(&a);
  const auto* const right = reinterpret_cast<const char*>(&b);
  return std::memcmp(left, right, offsetof(FWRule_, position)) == 0 &&
         std::memcmp(left + kAfter, right + kAfter, sizeof(FWRule_) - kAfter) == 0;
}

std::vector<PartChange> partsOf(const FWRule_& before, const FWRule_& after) {
  std::vector<PartChange> parts;
  for (std::size_t i = 0; i < kRuleParts; ++i) {
    const auto part = static_cast<RulePart>(i);
    std::string was = shownRulePart(before, part);
    std::string is = shownRulePart(after, part);
    if (was != is) parts.push_back({rulePartName(part), std::move(was), std::move(is)});
  }
  // Bits for which there are no words.
  if (parts.empty()) parts.push_back({"record", "(its bytes)", "(other bytes)"});
  return parts;
}

/// Marks those of the numbers that are in one longest rising sequence: what is left has moved.
std::vector<bool> longestRising(const std::vector<std::size_t>& numbers) {
  constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  std::vector<std::size_t> tails;  // by length: the place of the least number that ends such a run
  std::vector<std::size_t> before(numbers.size(), kNone);
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const auto at =
        std::lower_bound(tails.begin(), tails.end(), i,
                         [&](std::size_t a, std::size_t b) { return numbers[a] < numbers[b]; });
    if (at != tails.begin()) before[i] = *(at - 1);
    if (at == tails.end()) {
      tails.push_back(i);
    } else {
      *at = i;
    }
  }
  std::vector<bool> kept(numbers.size(), false);
  for (std::size_t i = tails.empty() ? kNone : tails.back(); i != kNone; i = before[i])
    kept[i] = true;
  return kept;
}

/// The rules that are in both, in the order of the second state, that stand in another order there.
std::vector<bool> movedRules(const Rules& before, const Rules& after) {
  std::vector<bool> moved(after.size(), false);
  for (const StateRules kind : kStateRuleOrder) {
    std::vector<std::size_t> indexes;
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < after.size(); ++i) {
      if (after[i].kind != kind) continue;
      const Placed* const was = before.find(after.key(i));
      if (was == nullptr || was->kind != kind) continue;
      indexes.push_back(i);
      places.push_back(was->place);
    }
    const std::vector<bool> kept = longestRising(places);
    for (std::size_t i = 0; i < indexes.size(); ++i) {
      if (!kept[i]) moved[indexes[i]] = true;
    }
  }
  return moved;
}

std::string placeOf(const Rules& rules, std::size_t index) {
  if (index == 0 || rules[index - 1].kind != rules[index].kind) return "first";
  return formatText("after rule %u", std::uint32_t{rules[index - 1].rule->id});
}

void compareRules(const StateRuleSet& beforeSet, const StateRuleSet& afterSet,
                  std::vector<RuleChange>& changes) {
  const Rules before(beforeSet);
  const Rules after(afterSet);
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (after.find(before.key(i)) != nullptr) continue;
    changes.push_back(
        {Change::removed, before.key(i).id, before[i].kind, shownRule(*before[i].rule), {}, {}});
  }
  const std::vector<bool> moved = movedRules(before, after);
  for (std::size_t i = 0; i < after.size(); ++i) {
    const FWRule_& rule = *after[i].rule;
    const Placed* const was = before.find(after.key(i));
    RuleChange change{Change::added, after.key(i).id, after[i].kind, {}, {}, {}};
    if (was == nullptr) {
      change.place = placeOf(after, i);
    } else {
      const bool same = sameRule(*was->rule, rule);
      if (same && !moved[i]) continue;
      change.change = same ? Change::moved : Change::changed;
      if (!same) change.parts = partsOf(*was->rule, rule);
      if (moved[i]) change.place = placeOf(after, i);
    }
    change.text = shownRule(rule);
    changes.push_back(std::move(change));
  }
}

void compareRuleSets(const State& before, const State& after, std::vector<RuleSetChange>& changes) {
  static const StateRuleSet kNone;
  const auto both = [&](const std::string& name, const StateRuleSet* a, const StateRuleSet* b) {
    if (a != nullptr && b != nullptr && *a == *b) return;
    const Change kind = changeOf(a, b);
    const StateRuleSet& was = a != nullptr ? *a : kNone;
    const StateRuleSet& is = b != nullptr ? *b : kNone;
    RuleSetChange change{kind, name, {}, was.jump != is.jump, was.jump, is.jump};
    compareRules(was, is, change.rules);
    // Other positions in the same order are no difference.
    if (kind == Change::changed && change.rules.empty() && !change.jumpChanged) return;
    changes.push_back(std::move(change));
  };
  forBoth(before.ruleSets, after.ruleSets, both);
}

}  // namespace

std::size_t RuleSetChange::countOf(Change wanted) const {
  return static_cast<std::size_t>(std::count_if(
      rules.begin(), rules.end(), [&](const RuleChange& rule) { return rule.change == wanted; }));
}

StateDiff differencesOf(const State& before, const State& after) {
  StateDiff diff;
  compareSets(before, after, diff.sets);
  compareRuleSets(before, after, diff.ruleSets);
  diff.root = {before.layer3, after.layer3, before.layer2, after.layer2};
  return diff;
}

std::string shownElement(const std::string& element) {
  try {
    const auto read = CTarnFWContainerElement::buildContainerElement(
        reinterpret_cast<const FWtlvChainElem*>(element.data()),
        static_cast<unsigned int>(element.size()));
    if (read != nullptr) return escapedText(read->toString());
  } catch (const CTarnFWException&) {
  }
  return formatText("(an element of %zu bytes)", element.size());
}
