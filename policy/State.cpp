#include "State.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "TarnFWContainer.h"
#include "TarnFWText.h"

using namespace TarnFirewall;

namespace {

/// Bytes of an address record up to the end of what its type uses; all of it for a type that is not
/// known, and for attributes, whose records say themselves how long they are.
std::size_t usedBytes(const FWAddress_& address) {
  constexpr std::size_t kValueAt = offsetof(FWAddress_, value);
  switch (address.type) {
    case FW_ADDRESS_ANY:
      return kValueAt;
    case FW_ADDRESS_IPV4:
      return kValueAt + 4;
    case FW_ADDRESS_IPV6:
      return kValueAt + 16;
    case FW_ADDRESS_IPV4_RANGE:
      return kValueAt + 8;
    case FW_ADDRESS_IPV6_RANGE:
      return kValueAt + 32;
    case FW_ADDRESS_IPV4_CIDR:
      return kValueAt + 5;
    case FW_ADDRESS_IPV6_CIDR:
      return kValueAt + 17;
    case FW_ADDRESS_ETHER:
      return kValueAt + 6;
    case FW_ADDRESS_ETHER_RANGE:
    case FW_ADDRESS_ETHER_MASK:
      return kValueAt + 12;
    case FW_ADDRESS_ADDRSET:
      return kValueAt + sizeof(FWAddrSetID_t);
    default:
      return sizeof address;
  }
}

/// Clears what stands after the first NUL of a field, and closes the field.
template <typename Byte>
void settleText(Byte* field, std::size_t size) {
  const std::size_t length = fieldLength(reinterpret_cast<const char*>(field), size - 1);
  std::memset(field + length, 0, size - length);
}

template <std::size_t N>
std::string_view viewOf(const char (&field)[N]) {
  return {field, fieldLength(field, N)};
}

int compareRecords(const FWAddress_& a, const FWAddress_& b) {
  if (a.type != b.type) return a.type < b.type ? -1 : 1;
  // Addresses are in network order, so that this is their order as numbers.
  if (const int order = std::memcmp(a.value, b.value, sizeof a.value)) return order;
  return std::memcmp(&a, &b, sizeof a);
}

template <typename Record>
bool sameRecords(const std::vector<Record>& a, const std::vector<Record>& b) {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(Record)) == 0);
}

FWAddress_ targetOf(const FWRule_& rule) { return loadRecord<FWAddress_>(rule.action.data); }

/// Visits rule sets so that each comes after its targets.
class Order {
 public:
  explicit Order(const State& state) : state_(state) {}

  std::vector<std::string> run() {
    for (const auto& [name, set] : state_.ruleSets) visit(name);
    return std::move(names_);
  }

 private:
  struct Step {
    const std::string* name;
    std::vector<const std::string*> targets;
    std::size_t next = 0;
  };

  /// Without recursion: a chain of rule sets may be as long as there are rule sets.
  void visit(const std::string& first) {
    enter(first);
    while (!steps_.empty()) {
      Step& step = steps_.back();
      if (step.next < step.targets.size()) {
        enter(*step.targets[step.next++]);
        continue;
      }
      names_.push_back(*step.name);
      steps_.pop_back();
    }
  }

  void enter(const std::string& name) {
    if (!seen_.insert(&name).second) return;
    steps_.push_back({&name, targetsOf(state_.ruleSets.find(name)->second), 0});
  }

  /// The targets that are there, by name, each once. Their addresses are those of the state's keys.
  std::vector<const std::string*> targetsOf(const StateRuleSet& set) const {
    std::vector<std::string> found = ruleTargetsOf(set);
    if (!set.jump.empty()) found.push_back(set.jump);
    std::sort(found.begin(), found.end());
    std::vector<const std::string*> targets;
    for (const std::string& name : found) {
      const auto at = state_.ruleSets.find(name);
      if (at != state_.ruleSets.end()) targets.push_back(&at->first);
    }
    return targets;
  }

  const State& state_;
  std::vector<std::string> names_;
  std::set<const std::string*> seen_;
  std::vector<Step> steps_;
};

}  // namespace

bool StateSet::operator==(const StateSet& other) const {
  return type == other.type && elements == other.elements &&
         sameRecords(addresses, other.addresses);
}

bool StateRuleSet::operator==(const StateRuleSet& other) const {
  for (std::size_t kind = 0; kind < kStateRuleKinds; ++kind) {
    if (!sameRecords(rules[kind], other.rules[kind])) return false;
  }
  return jump == other.jump;
}

StateRules stateRulesOf(const FWRule_& rule) {
  switch (rule.action.action) {
    case FW_ACTION_SNAT:
      return StateRules::snat;
    case FW_ACTION_DNAT:
    case FW_ACTION_LB:  // a balancer is asked for among the dnat rules
      return StateRules::dnat;
    default:
      return StateRules::filter;
  }
}

void settleAddress(FWAddress_& address) {
  const std::size_t used = usedBytes(address);
  if (address.type == FW_ADDRESS_ADDRSET) settleText(address.value, sizeof(FWAddrSetID_t));
  std::memset(reinterpret_cast<std::uint8_t*>(&address) + used, 0, sizeof address - used);
}

void settleRule(FWRule_& rule) {
  if ((rule.flags & kRuleHasSource) != 0) settleAddress(rule.source);
  if ((rule.flags & kRuleHasDestination) != 0) settleAddress(rule.destination);
  settleText(rule.extendedSource.name.text, sizeof rule.extendedSource.name.text);
  settleText(rule.attributeProfile.name.text, sizeof rule.attributeProfile.name.text);
  settleText(rule.tag, sizeof rule.tag);
  fw_rule_action_& action = rule.action;
  settleText(action.keyPolicy, sizeof action.keyPolicy);
  settleText(action.lbOptions, sizeof action.lbOptions);
  if (action.action == FW_ACTION_JUMPTO) settleText(action.data, sizeof(FWRuleSetID_t));
  if (action.action == FW_ACTION_SNAT || action.action == FW_ACTION_DNAT) {
    FWAddress_ target = targetOf(rule);
    settleAddress(target);
    storeRecord(action.data, target);
  }
}

bool addressLess(const FWAddress_& a, const FWAddress_& b) { return compareRecords(a, b) < 0; }

void settleSet(StateSet& set) {
  for (FWAddress_& address : set.addresses) settleAddress(address);
  std::sort(set.addresses.begin(), set.addresses.end(), addressLess);
  const auto same = [](const auto& a, const auto& b) { return compareRecords(a, b) == 0; };
  set.addresses.erase(std::unique(set.addresses.begin(), set.addresses.end(), same),
                      set.addresses.end());
  std::sort(set.elements.begin(), set.elements.end());
  set.elements.erase(std::unique(set.elements.begin(), set.elements.end()), set.elements.end());
}

std::vector<std::string> chainElements(std::span<const std::byte> chain) {
  const auto part = [&](std::size_t offset, std::size_t size) {
    if (offset > chain.size() || size > chain.size() - offset) {
      throw StateError("a container's elements are cut off");
    }
    return chain.subspan(offset, size);
  };
  const auto head = loadRecord<FWtlvChain>(part(0, sizeof(FWtlvChain)).data());
  const auto bytes = part(sizeof head, head.size);
  std::vector<std::string> elements;
  std::size_t at = sizeof head;
  for (std::uint32_t i = 0; i < head.count; ++i) {
    const auto element = loadRecord<FWtlvChainElem>(part(at, sizeof(FWtlvChainElem)).data());
    const auto length = std::size_t{std::uint32_t{element.length}};
    part(at + sizeof element, length);
    const std::size_t size = sizeof element + length;
    const auto whole = part(at, size);
    elements.emplace_back(reinterpret_cast<const char*>(whole.data()), whole.size());
    at += size;
  }
  if (at != sizeof head + bytes.size()) {
    throw StateError("a container's elements are more or fewer than their bytes");
  }
  return elements;
}

bool sameButPosition(const FWRule_& a, const FWRule_& b) {
  constexpr std::size_t kAt = offsetof(FWRule_, position);
  constexpr std::size_t kAfter = kAt + sizeof(FWRule_::position);
  const auto* const left = reinterpret_cast<const char*>(&a);
  const auto* const right = reinterpret_cast<const char*>(&b);
  return std::memcmp(left, right, kAt) == 0 &&
         std::memcmp(left + kAfter, right + kAfter, sizeof a - kAfter) == 0;
}

void addRules(StateRuleSet& set, std::vector<FWRule_> rules) {
  for (FWRule_& rule : rules) {
    settleRule(rule);
    set.of(stateRulesOf(rule)).push_back(rule);
  }
  for (auto& kind : set.rules) {
    const auto byPosition = [](const FWRule_& a, const FWRule_& b) {
      return std::int32_t{a.position} < std::int32_t{b.position};
    };
    if (!std::is_sorted(kind.begin(), kind.end(), byPosition)) {
      std::stable_sort(kind.begin(), kind.end(), byPosition);
    }
  }
}

std::string_view setNameOf(const FWAddress_& address) {
  if (address.type != FW_ADDRESS_ADDRSET) return {};
  const char* const text = reinterpret_cast<const char*>(address.value);
  return {text, fieldLength(text, sizeof(FWAddrSetID_t))};
}

StateReferences referencesOf(const FWRule_& rule) {
  StateReferences found;
  if ((rule.flags & kRuleHasSource) != 0) found.source = setNameOf(rule.source);
  if ((rule.flags & kRuleHasDestination) != 0) found.destination = setNameOf(rule.destination);
  if ((rule.profileMode & kProfileExtendedSource) != 0) {
    found.extendedSource = viewOf(rule.extendedSource.name.text);
  }
  if ((rule.profileMode & kProfileAttribute) != 0) {
    found.attributeProfile = viewOf(rule.attributeProfile.name.text);
  }
  const auto* const data = reinterpret_cast<const char*>(rule.action.data);
  switch (rule.action.action) {
    case FW_ACTION_SNAT:
    case FW_ACTION_DNAT:
      if (loadRecord<host16>(data) == FW_ADDRESS_ADDRSET) {
        const char* const name = data + offsetof(FWAddress_, value);
        found.target = {name, fieldLength(name, sizeof(FWAddrSetID_t))};
      }
      break;
    case FW_ACTION_JUMPTO:
      found.jump = {data, fieldLength(data, sizeof(FWRuleSetID_t))};
      break;
    default:
      break;
  }
  return found;
}

std::vector<std::string> ruleTargetsOf(const StateRuleSet& set) {
  std::set<std::string_view> found;
  for (const auto& rules : set.rules) {
    for (const FWRule_& rule : rules) {
      if (rule.action.action != FW_ACTION_JUMPTO) continue;
      if (const std::string_view jump = referencesOf(rule).jump; !jump.empty()) found.insert(jump);
    }
  }
  return {found.begin(), found.end()};
}

std::vector<std::string> ruleSetsTargetsFirst(const State& state) { return Order(state).run(); }
