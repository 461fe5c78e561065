#pragma once

/// The ports that a block of a rule's record lets through, as rising ranges that do not touch.

#include <cstdint>
#include <optional>
#include <vector>

#include "TarnFWRuleRecord.h"

/// Ports from `low` to `high`, both included.
struct PortRange {
  std::uint16_t low;
  std::uint16_t high;
};
using PortRanges = std::vector<PortRange>;

/// All ports for a block without a spec.
PortRanges portsOf(const TarnFirewall::FWPortBlock_& block);

/// The same where it is one range that takes no work to find: all ports, a port or a range that is
/// not negated. Nothing for other blocks.
std::optional<PortRange> onlyRangeOf(const TarnFirewall::FWPortBlock_& block);

/// Whether each port of `inner` is one of `outer`.
bool covers(const PortRanges& outer, const PortRanges& inner);
