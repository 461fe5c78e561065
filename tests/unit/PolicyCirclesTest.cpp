/// Where circles are opened: in the fewest places, also of large graphs.

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

#include "Choices.h"
#include "Circles.h"

namespace {

using Nodes = std::vector<std::uint32_t>;

/// Whether nothing leads in a circle without those of the mask.
bool isOpen(const CircleGraph& graph, std::uint32_t without) {
  const auto count = static_cast<std::uint32_t>(graph.size());
  std::uint32_t left = ((1u << count) - 1) & ~without;
  for (bool shrinks = true; shrinks;) {
    shrinks = false;
    for (std::uint32_t node = 0; node < count; ++node) {
      if ((left >> node & 1) == 0) continue;
      const auto leads = [&](std::uint32_t target) { return (left >> target & 1) != 0; };
      if (std::any_of(graph[node].begin(), graph[node].end(), leads)) continue;
      left &= ~(1u << node);
      shrinks = true;
    }
  }
  return left == 0;
}

unsigned int fewest(const CircleGraph& graph) {
  unsigned int best = static_cast<unsigned int>(graph.size());
  for (std::uint32_t mask = 0; mask < 1u << graph.size(); ++mask) {
    const auto size = static_cast<unsigned int>(std::popcount(mask));
    if (size < best && isOpen(graph, mask)) best = size;
  }
  return best;
}

/// The same for a graph of any size.
bool isOpenWithout(const CircleGraph& graph, const Nodes& without) {
  std::vector<std::uint32_t> entries(graph.size(), 0);
  std::vector<bool> isGone(graph.size(), false);
  for (const std::uint32_t node : without) isGone[node] = true;
  for (std::uint32_t node = 0; node < graph.size(); ++node) {
    if (isGone[node]) continue;
    for (const std::uint32_t target : graph[node]) ++entries[target];
  }
  Nodes ready;
  std::size_t left = graph.size() - without.size();
  for (std::uint32_t node = 0; node < graph.size(); ++node) {
    if (!isGone[node] && entries[node] == 0) ready.push_back(node);
  }
  while (!ready.empty()) {
    const std::uint32_t node = ready.back();
    ready.pop_back();
    --left;
    for (const std::uint32_t target : graph[node]) {
      if (--entries[target] == 0 && !isGone[target]) ready.push_back(target);
    }
  }
  return left == 0;
}

CircleGraph generated(Choices& choices, std::uint32_t nodes, std::uint32_t edges) {
  CircleGraph graph(nodes);
  for (std::uint32_t i = 0; i < edges; ++i) {
    graph[choices.below(nodes)].push_back(choices.below(nodes));
  }
  return graph;
}

}  // namespace

TEST(PolicyCircles, WithoutACircleNothingIsOpened) {
  EXPECT_EQ(circleBreakers({}), Nodes{});
  EXPECT_EQ(circleBreakers({{1, 2}, {2}, {}}), Nodes{});
}

TEST(PolicyCircles, EachCircleIsOpenedOnce) {
  EXPECT_EQ(circleBreakers({{0}}), Nodes{0});
  EXPECT_EQ(circleBreakers({{1}, {0}}), Nodes{0});
  EXPECT_EQ(circleBreakers({{1}, {2}, {0}, {4}, {3}}), (Nodes{0, 3}));
  // Two circles through one node.
  EXPECT_EQ(circleBreakers({{1}, {0, 2}, {1}}), Nodes{1});
}

TEST(PolicyCircles, TheFewestOfSmallGraphs) {
  for (std::uint64_t seed = 1; seed <= 3000; ++seed) {
    Choices choices(seed);
    const std::uint32_t nodes = 2 + choices.below(7);
    const CircleGraph graph = generated(choices, nodes, 1 + choices.below(3 * nodes));
    const Nodes found = circleBreakers(graph);
    std::uint32_t mask = 0;
    for (const std::uint32_t node : found) mask |= 1u << node;
    ASSERT_TRUE(isOpen(graph, mask)) << "seed " << seed;
    ASSERT_EQ(found.size(), fewest(graph)) << "seed " << seed;
  }
}

/// Every node of these leads to every other: all but one must be opened.
TEST(PolicyCircles, TheFewestOfFullGraphs) {
  for (const std::uint32_t nodes : {3u, 12u, 40u}) {
    CircleGraph graph(nodes);
    for (std::uint32_t node = 0; node < nodes; ++node) {
      for (std::uint32_t other = 0; other < nodes; ++other) {
        if (other != node) graph[node].push_back(other);
      }
    }
    EXPECT_EQ(circleBreakers(graph).size(), nodes - 1);
  }
}

TEST(PolicyCircles, LargeGraphsEndInTime) {
  constexpr std::uint32_t kNodes = 30000;
  CircleGraph ring(kNodes);
  for (std::uint32_t node = 0; node < kNodes; ++node) ring[node] = {(node + 1) % kNodes};
  EXPECT_EQ(circleBreakers(ring).size(), 1u);
  for (const std::uint32_t nodes : {150u, 5000u}) {
    Choices choices(nodes);
    const CircleGraph graph = generated(choices, nodes, 4 * nodes);
    const Nodes found = circleBreakers(graph);
    EXPECT_TRUE(isOpenWithout(graph, found));
    EXPECT_LT(found.size(), nodes / 2);
  }
}
