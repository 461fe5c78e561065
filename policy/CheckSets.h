#pragma once

/// What the address sets of the texts hold after the last of them.

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "AddressBlocks.h"

namespace TarnFirewall {
class CTarnFWCmd;
}

/// Sets have numbers from 1. A filter has a number too: sets of two filters have nothing in common.
class SetContents {
 public:
  /// Takes what a statement does to sets; other statements change nothing.
  void statement(std::size_t scope, TarnFirewall::CTarnFWCmd& command);

  /// The number of a set by the field of a record that holds its name, also of one that no text has
  /// created yet.
  std::uint32_t numberOf(std::size_t scope, const std::uint8_t* name);

  std::size_t count() const { return sets_.size(); }

  /// What a set holds: the fewest blocks. Empty where it holds nothing, and where something else
  /// than plain IP addresses is in it.
  const std::vector<AddressBlock>& blocksOf(std::uint32_t number) const;

  /// Whether it holds `any`.
  bool holdsAny(std::uint32_t number) const;

 private:
  struct Set {
    std::size_t scope;
    std::vector<AddressBlock> blocks;
    bool any = false;
    std::size_t time = 0;  // when it was created the last time
  };

  /// Names are looked for without making a string.
  struct NameHash : std::hash<std::string_view> {
    using is_transparent = void;
  };

  void create(std::size_t scope, TarnFirewall::CTarnFWCmd& command);
  void empty(std::size_t scope, TarnFirewall::CTarnFWCmd& command);
  bool isThere(const Set& set) const;

  std::deque<Set> sets_;
  std::unordered_map<std::string, std::uint32_t, NameHash, std::equal_to<>> numbers_;
  std::size_t time_ = 0;                                  // counts what is created
  std::unordered_map<std::size_t, std::size_t> allGone_;  // when a filter lost all its sets
};
