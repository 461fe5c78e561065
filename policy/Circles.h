#pragma once

/// Circles of what refers to one another, and where to open them.

#include <cstdint>
#include <vector>

/// What each node leads to, by number. Nodes that are named twice count once.
using CircleGraph = std::vector<std::vector<std::uint32_t>>;

/// Nodes without which nothing leads in a circle, in ascending order: as few as there can be. Where
/// very much leads to very much else, which no search ends for in time, they are few, and not
/// always the fewest. A node that leads to itself is among them.
std::vector<std::uint32_t> circleBreakers(const CircleGraph& graph);
