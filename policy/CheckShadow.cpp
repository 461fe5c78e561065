#include "CheckShadow.h"

#include <algorithm>
#include <cstring>

#include "CheckBuckets.h"
#include "TarnFWCmdCatalogue.h"
#include "TarnFWCmdList.h"
#include "TarnFWRuleSetCreateCmd.h"
#include "TarnFWText.h"

using namespace TarnFirewall;

namespace {

/// Bounds of the work on texts that are made to cost: beyond them less is found.
constexpr std::size_t kMaxRests = 256;       // combinations that are compared with a rule's
constexpr std::size_t kMaxWider = 64;        // addresses that are wider than one
constexpr std::size_t kMaxSetsOfBlock = 16;  // sets that hold one block

/// A command by its object type: its class has no type information to ask for.
constexpr int kCreateRuleSet = kCmdObjectType + 3;

/// Kinds of rules: the kernel goes through each by itself.
enum Kind : std::uint8_t { kFilter, kSnat, kDnat };

Kind kindOf(unsigned int action) {
  if (action == FW_ACTION_SNAT) return kSnat;
  return action == FW_ACTION_DNAT || action == FW_ACTION_LB ? kDnat : kFilter;
}

bool isFinalAction(unsigned int action) {
  return action == FW_ACTION_ACCEPT || action == FW_ACTION_DROP || action == FW_ACTION_REJECT ||
         action == FW_ACTION_SNAT || action == FW_ACTION_DNAT;
}

/// The bytes of a record up to the last that is not zero, or a few more.
std::string_view withoutZeros(const FWAddress_& record) {
  const auto* const bytes = reinterpret_cast<const char*>(&record);
  std::size_t size = sizeof record;
  std::uint64_t last = 0;
  static_assert(sizeof record % sizeof last == 0);
  while (size > 0) {
    std::memcpy(&last, bytes + size - sizeof last, sizeof last);
    if (last != 0) break;
    size -= sizeof last;
  }
  return {bytes, size};
}

/// Whether an address is the block of all addresses of its family.
bool isWholeFamily(const FWAddress_& record) {
  if ((record.flags & kAddressNegated) != 0) return false;
  return (record.type == FW_ADDRESS_IPV4_CIDR && record.value[4] == 0) ||
         (record.type == FW_ADDRESS_IPV6_CIDR && record.value[16] == 0);
}

}  // namespace

void ShadowCheck::statement(std::size_t scope, std::uint32_t file, CTarnFWCmdList& commands,
                            std::span<const std::uint32_t> places) {
  for (std::size_t i = 0; i < commands.size(); ++i) {
    CTarnFWCmd& command = commands.at(i);
    if (command.getType() != kCreateRuleSet) {
      sets_.statement(scope, command);
      continue;
    }
    const CTarnFWRuleList& rules = static_cast<CTarnFWRuleSetCreateCmd&>(command).rules();
    if (rules.getRuleCount() == places.size()) takeRules(scope, file, rules, places);
  }
}

void ShadowCheck::takeRules(std::size_t scope, std::uint32_t file, const CTarnFWRuleList& rules,
                            std::span<const std::uint32_t> places) {
  RuleSet& set = ruleSets_.emplace_back(RuleSet{file, {}});
  set.rules.reserve(places.size());
  FWRule_ record;
  for (const auto& rule : rules.getRules()) {
    std::memset(&record, 0, sizeof record);
    unsigned int written = 0;
    if (!rule->toMessage(&record, sizeof record, &written)) continue;
    Rule& taken = set.rules.emplace_back(ruleOf(scope, record));
    taken.place = places[static_cast<std::size_t>(&rule - rules.getRules().data())];
  }
  const auto byPosition = [](const Rule& a, const Rule& b) { return a.position < b.position; };
  if (!std::is_sorted(set.rules.begin(), set.rules.end(), byPosition)) {
    std::stable_sort(set.rules.begin(), set.rules.end(), byPosition);
  }
}

ShadowCheck::Rule ShadowCheck::ruleOf(std::size_t scope, const FWRule_& record) {
  Rule rule{};
  rule.rest = restOf(record);
  const bool layer3 = (record.flags & kRuleLayer3) != 0;
  const auto addressIn = [&](unsigned int flag, const FWAddress_& address) {
    const bool present = (record.flags & flag) != 0 && !isWholeFamily(address);
    return addressOf(scope, address, present, layer3);
  };
  rule.source = addressIn(kRuleHasSource, record.source);
  rule.destination = addressIn(kRuleHasDestination, record.destination);
  rule.id = record.id;
  rule.position = record.position;
  rule.ports = portsNumber(record.destinationPorts, rule.hull);
  rule.isFinal = isFinalAction(record.action.action);
  return rule;
}

std::uint32_t ShadowCheck::restOf(const FWRule_& record) {
  Rest rest;
  std::memset(&rest, 0, sizeof rest);
  rest.kind = kindOf(record.action.action);
  rest.layer3 = (record.flags & kRuleLayer3) != 0;
  rest.direction =
      static_cast<std::uint8_t>(record.flags >> kRuleDirectionShift & kRuleDirectionMask);
  rest.af = static_cast<std::uint8_t>(ruleAF(record));
  // All addresses of a family are `any` for a rule that asks for the family.
  const bool whole =
      ((record.flags & kRuleHasSource) != 0 && isWholeFamily(record.source)) ||
      ((record.flags & kRuleHasDestination) != 0 && isWholeFamily(record.destination));
  const bool asked = whole || (record.origin & kRuleAFDerived) == 0;
  rest.askedAf = asked ? rest.af : std::uint8_t{FW_AF_NONE};
  rest.hasProtocol = (record.flags & kRuleHasProtocol) != 0;
  rest.protocolNegated = (record.flags & kRuleProtocolNegated) != 0;
  rest.protocol = record.protocol;
  rest.dscp = static_cast<std::uint16_t>(record.session.flags & kSessionDSCPMask);
  rest.sourcePorts = record.sourcePorts;
  static_assert(sizeof rest.session ==
                sizeof record.session - offsetof(FWSessionBlock_, flagsHeader));
  std::memcpy(rest.session, &record.session.flagsHeader, sizeof rest.session);
  std::memcpy(rest.extendedSource, record.extendedSource.name.text, sizeof rest.extendedSource);
  std::memcpy(rest.attributeProfile, record.attributeProfile.name.text,
              sizeof rest.attributeProfile);
  if (!rests_.empty() && std::memcmp(&rests_[lastRest_], &rest, sizeof rest) == 0) {
    return lastRest_;
  }
  const auto view = [](const Rest& value) {
    return std::string_view(reinterpret_cast<const char*>(&value), sizeof value);
  };
  const auto place = restNumbers_.find(view(rest));
  if (place != restNumbers_.end()) return lastRest_ = place->second;
  const auto number = lastRest_ = static_cast<std::uint32_t>(rests_.size());
  rests_.push_back(rest);
  restNumbers_.emplace(view(rests_.back()), number);
  return number;
}

/// The place of a block's number in a table of numbers from 1, which is never more than half full;
/// 0 stands there for a block that has none.
std::size_t ShadowCheck::blockPlace(const AddressBlock& block) const {
  std::size_t place = AddressBlockHash()(block);
  for (;; ++place) {
    place &= blockPlaces_.size() - 1;
    const std::uint32_t number = blockPlaces_[place];
    if (number == 0 || addresses_[number - 1].block == block) return place;
  }
}

std::uint32_t ShadowCheck::numberOfBlock(const AddressBlock& block) {
  std::size_t place = blockPlace(block);
  if (blockPlaces_[place] != 0) return blockPlaces_[place] - 1;
  if (2 * ++blocks_ > blockPlaces_.size()) {
    const std::vector<std::uint32_t> former =
        std::exchange(blockPlaces_, std::vector<std::uint32_t>(2 * blockPlaces_.size()));
    for (const std::uint32_t number : former) {
      if (number != 0) blockPlaces_[blockPlace(addresses_[number - 1].block)] = number;
    }
    place = blockPlace(block);
  }
  Address& address = addresses_.emplace_back();
  address.block = block;
  address.hasBlock = true;
  hasLength_[block.isIPv4][block.length] = true;
  blockPlaces_[place] = static_cast<std::uint32_t>(addresses_.size());
  return blockPlaces_[place] - 1;
}

std::uint32_t ShadowCheck::numberOfAny() {
  if (any_ == 0) {
    addresses_.emplace_back();
    any_ = static_cast<std::uint32_t>(addresses_.size());
  }
  return any_ - 1;
}

/// The number of a set's contents as an address.
std::uint32_t ShadowCheck::numberOfSet(std::uint32_t set) {
  if (setAddresses_.size() < set) setAddresses_.resize(sets_.count());
  std::uint32_t& number = setAddresses_[set - 1];
  if (number == 0) {
    addresses_.emplace_back().set = set;
    number = static_cast<std::uint32_t>(addresses_.size());
  }
  return number - 1;
}

/// The number of an address that is only equal to the same record.
std::uint32_t ShadowCheck::numberOfRecord(std::size_t scope, const FWAddress_& record) {
  std::string_view key = withoutZeros(record);
  std::string scoped;
  if (record.type == FW_ADDRESS_ADDRSET) {
    scoped = key;
    scoped.append(reinterpret_cast<const char*>(&scope), sizeof scope);
    key = scoped;
  }
  const auto place = recordNumbers_.find(key);
  if (place != recordNumbers_.end()) return place->second;
  addresses_.emplace_back();
  return recordNumbers_.emplace(key, static_cast<std::uint32_t>(addresses_.size() - 1))
      .first->second;
}

/// The number of an address. In layer-2 rules sets are compared by their names: what is known of
/// their contents are IP addresses.
std::uint32_t ShadowCheck::addressOf(std::size_t scope, const FWAddress_& record, bool present,
                                     bool layer3) {
  if (!present) return numberOfAny();
  const bool negated = (record.flags & kAddressNegated) != 0;
  const auto block = negated ? std::nullopt : blockOf(record);
  std::uint32_t number = 0;
  if (block) {
    number = numberOfBlock(*block);
  } else if (record.type == FW_ADDRESS_ADDRSET && !negated && layer3) {
    number = numberOfSet(sets_.numberOf(scope, record.value));
  } else {
    number = numberOfRecord(scope, record);
  }
  ++addresses_[number].uses;
  return number;
}

std::uint32_t ShadowCheck::portsNumber(const FWPortBlock_& block, PortRange& hull) {
  if (const auto only = onlyRangeOf(block)) {
    hull = *only;
    return 0;
  }
  const std::string_view key(reinterpret_cast<const char*>(&block), sizeof block);
  auto place = portNumbers_.find(key);
  if (place == portNumbers_.end()) {
    PortRanges ports = portsOf(block);
    Ports numbered{0, {0, 0}};
    if (!ports.empty()) numbered.hull = {ports.front().low, ports.back().high};
    if (ports.size() != 1) {
      numbered.number = static_cast<std::uint32_t>(ports_.size());
      ports_.push_back(std::move(ports));
    }
    place = portNumbers_.emplace(key, numbered).first;
  }
  hull = place->second.hull;
  return place->second.number;
}

bool ShadowCheck::covers(const Rest& outer, const Rest& inner) {
  if (outer.kind != inner.kind || outer.layer3 != inner.layer3) return false;
  if (outer.direction != FW_DIRECTION_INOUT && outer.direction != inner.direction) return false;
  if (outer.askedAf != FW_AF_NONE && outer.askedAf != inner.af) return false;
  if (outer.hasProtocol != 0) {
    if (inner.hasProtocol == 0) return false;
    const bool same = outer.protocol == inner.protocol;
    const bool fits =
        outer.protocolNegated == inner.protocolNegated ? same : outer.protocolNegated != 0 && !same;
    if (!fits) return false;
  }
  const auto emptyOrSame = [](const auto& wide, const auto& narrow) {
    const auto* const bytes = reinterpret_cast<const char*>(&wide);
    return std::all_of(bytes, bytes + sizeof wide, [](char c) { return c == 0; }) ||
           std::memcmp(&wide, &narrow, sizeof wide) == 0;
  };
  return (outer.dscp == 0 || outer.dscp == inner.dscp) &&
         emptyOrSame(outer.session, inner.session) &&
         emptyOrSame(outer.extendedSource, inner.extendedSource) &&
         emptyOrSame(outer.attributeProfile, inner.attributeProfile) &&
         ::covers(portsOf(outer.sourcePorts), portsOf(inner.sourcePorts));
}

const std::vector<std::uint32_t>& ShadowCheck::widerRests(std::uint32_t number) {
  std::vector<std::uint32_t>& wider = restsWider_[number];
  if (!wider.empty()) return wider;
  wider.push_back(number);
  const std::size_t compared = std::min(rests_.size(), kMaxRests);
  for (std::uint32_t other = 0; other < compared; ++other) {
    if (other != number && covers(rests_[other], rests_[number])) wider.push_back(other);
  }
  return wider;
}

void ShadowCheck::indexAddresses() {
  for (const std::uint32_t number : setAddresses_) {
    if (number == 0) continue;
    // Blocks that no rule has get numbers too.
    const std::uint32_t set = addresses_[number - 1].set;
    if (sets_.holdsAny(set) && setsOfAny_.size() < kMaxSetsOfBlock) {
      setsOfAny_.push_back(number - 1);
    }
    for (const AddressBlock& block : sets_.blocksOf(set)) {
      Address& address = addresses_[numberOfBlock(block)];
      if (address.sets == 0) {
        setsOfBlock_.emplace_back();
        address.sets = static_cast<std::uint32_t>(setsOfBlock_.size());
      }
      auto& sets = setsOfBlock_[address.sets - 1];
      if (sets.size() < kMaxSetsOfBlock) sets.push_back(number - 1);
    }
  }
  for (std::size_t family = 0; family < 2; ++family) {
    const std::uint8_t width = family == 0 ? 128 : 32;
    const AddressBlock all{family == 1, width, ~AddressBits{0}};
    for (std::uint8_t length = 0; length <= width; ++length) {
      if (hasLength_[family][length]) lengths_[family].push_back({length, all.cutTo(length).bits});
    }
  }
}

/// Adds the addresses that hold the block: blocks, and sets by one block of theirs.
void ShadowCheck::addWiderBlocks(const AddressBlock& block,
                                 std::vector<std::uint32_t>& wider) const {
  for (const Length& length : lengths_[block.isIPv4]) {
    if (length.length > block.length) return;
    const AddressBlock cut{block.isIPv4, length.length, block.bits & length.mask};
    const std::uint32_t number = blockPlaces_[blockPlace(cut)];
    if (number == 0) continue;
    const Address& address = addresses_[number - 1];
    if (address.uses > 0) wider.push_back(number - 1);
    if (address.sets == 0) continue;
    const auto& sets = setsOfBlock_[address.sets - 1];
    wider.insert(wider.end(), sets.begin(), sets.end());
  }
}

void ShadowCheck::widen(std::uint32_t number, std::vector<std::uint32_t>& wider) {
  const Address& address = addresses_[number];
  wider.assign(1, number);
  if (any_ != 0 && any_ - 1 != number) wider.push_back(any_ - 1);
  candidates_.clear();
  if (address.hasBlock) addWiderBlocks(address.block, candidates_);
  if (address.set != 0 && !sets_.blocksOf(address.set).empty()) {
    const std::vector<AddressBlock>& blocks = sets_.blocksOf(address.set);
    addWiderBlocks(blocks.front(), candidates_);
    const auto hull = hullOf(blocks);
    std::erase_if(candidates_, [&](std::uint32_t candidate) {
      const Address& other = addresses_[candidate];
      if (other.hasBlock) return !hull || !other.block.contains(*hull);
      const std::vector<AddressBlock>& outer = sets_.blocksOf(other.set);
      return !std::all_of(blocks.begin(), blocks.end(),
                          [&](const AddressBlock& block) { return holds(outer, block); });
    });
  }
  candidates_.insert(candidates_.end(), setsOfAny_.begin(), setsOfAny_.end());
  for (const std::uint32_t candidate : candidates_) {
    if (wider.size() == kMaxWider) break;
    if (std::find(wider.begin(), wider.end(), candidate) == wider.end()) wider.push_back(candidate);
  }
}

/// In `room`, unless they are kept.
const std::vector<std::uint32_t>& ShadowCheck::widerAddresses(std::uint32_t number,
                                                              std::vector<std::uint32_t>& room) {
  Address& address = addresses_[number];
  if (address.uses == 1) {
    widen(number, room);
    return room;
  }
  if (address.kept == 0) {
    widen(number, kept_.emplace_back());
    address.kept = static_cast<std::uint32_t>(kept_.size());
  }
  return kept_[address.kept - 1];
}

const ShadowCheck::Rule* ShadowCheck::findWider(const Buckets& buckets, const Rule& rule) {
  if (rule.ports != 0 && ports_[rule.ports].empty()) return nullptr;
  const Rule* found = nullptr;
  const auto& sources = widerAddresses(rule.source, sourceRoom_);
  const auto& destinations = widerAddresses(rule.destination, destinationRoom_);
  for (const std::uint32_t rest : widerRests(rule.rest)) {
    for (const std::uint32_t source : sources) {
      for (const std::uint32_t destination : destinations) {
        const Bucket* const bucket = buckets.find({rest, source, destination});
        if (bucket == nullptr) continue;
        const Rule* const wider = bucket->find(ports_, rule);
        // The earliest is the one that users look for.
        if (wider != nullptr && (found == nullptr || wider < found)) found = wider;
      }
    }
  }
  return found;
}

void ShadowCheck::look(RuleSet& set) {
  Buckets buckets(set.rules.size());
  for (const Rule& rule : set.rules) {
    if (const Rule* const wider = findWider(buckets, rule)) {
      diagnostics_.add({.check = Check::shadowedRule,
                        .range = {set.file, rule.place, rule.place + 4},
                        .message = "rule " + std::to_string(rule.id) + " is never reached: rule " +
                                   std::to_string(wider->id) +
                                   " before it matches all that it matches",
                        .relatedMessage = "rule " + std::to_string(wider->id),
                        .related = {set.file, wider->place, wider->place + 4}});
    } else if (rule.isFinal) {
      buckets.at({rule.rest, rule.source, rule.destination}).add(rule);
    }
  }
}

void ShadowCheck::finish() {
  indexAddresses();
  restsWider_.resize(rests_.size());
  for (RuleSet& set : ruleSets_) look(set);
}
