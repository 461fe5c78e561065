#pragma once

/// How the check of rules that are never reached keeps the rules before one. CheckShadow.cpp alone
/// includes it.

#include <bit>
#include <map>
#include <memory>

#include "CheckShadow.h"

/// The earlier rules that say the same but for the ports of the destination. Of single ranges only
/// those are kept that no other one holds, so that both their ends rise.
class ShadowCheck::Bucket {
 public:
  /// Lists of ports that are kept; beyond them less is found.
  static constexpr std::size_t kMaxPorts = 8;

  /// The rule that lets all of these ports through, or null.
  const Rule* find(const std::vector<PortRanges>& lists, const Rule& rule) const {
    if (first_ == nullptr) return nullptr;
    if (contains(first_->hull, rule.hull) && first_->ports == 0) return first_;
    if (more_ == nullptr) return nullptr;
    auto next = more_->ranges.upper_bound(rule.hull.low);
    if (next != more_->ranges.begin() && contains((--next)->second->hull, rule.hull)) {
      return next->second;
    }
    const PortRanges own = rangesOf(lists, rule);
    for (const Rule* earlier : more_->lists) {
      if (::covers(rangesOf(lists, *earlier), own)) return earlier;
    }
    return nullptr;
  }

  void add(const Rule& rule) {
    if (first_ == nullptr && rule.ports == 0) {
      first_ = &rule;
      return;
    }
    if (more_ == nullptr) more_ = std::make_unique<More>();
    if (first_ == nullptr) first_ = &rule;
    if (rule.ports != 0) {
      if (more_->lists.size() < kMaxPorts) more_->lists.push_back(&rule);
      return;
    }
    auto& ranges = more_->ranges;
    auto place = ranges.insert_or_assign(rule.hull.low, &rule).first;
    while (std::next(place) != ranges.end() &&
           contains(rule.hull, std::next(place)->second->hull)) {
      ranges.erase(std::next(place));
    }
  }

 private:
  struct More {
    std::map<std::uint16_t, const Rule*> ranges;  // by their low ends
    std::vector<const Rule*> lists;
  };

  static bool contains(const PortRange& outer, const PortRange& inner) {
    return outer.low <= inner.low && inner.high <= outer.high;
  }
  static PortRanges rangesOf(const std::vector<PortRanges>& lists, const Rule& rule) {
    return rule.ports != 0 ? lists[rule.ports] : PortRanges{rule.hull};
  }

  const Rule* first_ = nullptr;
  std::unique_ptr<More> more_;
};

/// Buckets by their keys, in a table of numbers that is never more than half full.
class ShadowCheck::Buckets {
 public:
  explicit Buckets(std::size_t most) : places_(std::bit_ceil(2 * most + 2)) {
    entries_.reserve(most);
  }

  const Bucket* find(const Key& key) const {
    const std::uint32_t number = places_[placeOf(key)];
    return number == 0 ? nullptr : &entries_[number - 1].bucket;
  }

  Bucket& at(const Key& key) {
    std::uint32_t& number = places_[placeOf(key)];
    if (number == 0) {
      entries_.push_back({key, {}});
      number = static_cast<std::uint32_t>(entries_.size());
    }
    return entries_[number - 1].bucket;
  }

 private:
  struct Entry {
    Key key;
    Bucket bucket;
  };

  static std::uint64_t mixed(std::uint64_t hash) {
    hash = (hash ^ hash >> 32) * 0xd6e8feb86659fd93u;
    hash = (hash ^ hash >> 32) * 0xd6e8feb86659fd93u;
    return hash ^ hash >> 32;
  }

  std::size_t placeOf(const Key& key) const {
    const std::uint64_t both = static_cast<std::uint64_t>(key.source) << 32 | key.destination;
    std::size_t place = mixed(both + key.rest * 0x9e3779b97f4a7c15u);
    for (;; ++place) {
      place &= places_.size() - 1;
      const std::uint32_t number = places_[place];
      if (number == 0 || entries_[number - 1].key == key) return place;
    }
  }

  std::vector<std::uint32_t> places_;  // numbers of entries from 1, a power of two of them
  std::vector<Entry> entries_;
};
