#include "Circles.h"

#include <algorithm>
#include <set>

namespace {

using Node = std::uint32_t;
using Nodes = std::vector<Node>;

/// The search for the fewest looks at graphs of so many nodes, and at so many nodes in all.
constexpr std::size_t kMostNodes = 200;
constexpr std::size_t kMostWork = 300000;

/// Above this the node that most circles go through is not looked for.
constexpr std::size_t kMostCompared = 2000;

/// A graph that shrinks. What is left of it after `reduce` is circles through circles only.
class Shrinking {
 public:
  explicit Shrinking(const CircleGraph& graph) : to_(graph.size()), from_(graph.size()) {
    for (Node node = 0; node < graph.size(); ++node) {
      there_.insert(node);
      for (const Node target : graph[node]) link(node, target);
    }
    touched_ = there_;
  }

  bool isEmpty() const { return there_.empty(); }
  std::size_t size() const { return there_.size(); }

  /// Takes away what decides itself (Levy and Low, 1988): nodes on no circle; one that leads to
  /// itself, which is among those that are looked for; one that circles enter, or leave, by one
  /// other node only, which may stand for it. The first kind is added to `taken`.
  void reduce(Nodes& taken) {
    while (!touched_.empty()) {
      const Node node = *std::prev(touched_.end());
      touched_.erase(node);
      if (!there_.contains(node)) continue;
      if (to_[node].contains(node)) {
        taken.push_back(node);
        remove(node);
      } else if (to_[node].size() <= 1 || from_[node].size() <= 1) {
        bypass(node);
      }
    }
  }

  /// The node with the most ways through it, the first of them.
  Node busiest() const {
    Node best = *there_.begin();
    if (there_.size() > kMostCompared) return best;
    for (const Node node : there_) {
      if (ways(node) > ways(best)) best = node;
    }
    return best;
  }

  void remove(Node node) {
    for (const Node target : to_[node]) drop(from_[target], node, target);
    for (const Node source : from_[node]) drop(to_[source], node, source);
    to_[node].clear();
    from_[node].clear();
    there_.erase(node);
  }

  /// Takes a node away that stays in the circles: whoever led to it leads to its targets.
  void bypass(Node node) {
    for (const Node source : from_[node]) {
      for (const Node target : to_[node]) {
        link(source, target);
        touched_.insert(target);
      }
      touched_.insert(source);
    }
    remove(node);
  }

 private:
  using Set = std::set<Node>;

  std::size_t ways(Node node) const { return to_[node].size() * from_[node].size(); }

  void link(Node source, Node target) {
    to_[source].insert(target);
    from_[target].insert(source);
  }

  void drop(Set& set, Node node, Node owner) {
    if (owner == node) return;  // its own sets are cleared as a whole
    set.erase(node);
    touched_.insert(owner);
  }

  std::vector<Set> to_, from_;
  Set there_;
  Set touched_;  // to be looked at by `reduce`
};

/// Takes the busiest node each time.
Nodes fewBreakers(Shrinking graph) {
  Nodes taken;
  for (graph.reduce(taken); !graph.isEmpty(); graph.reduce(taken)) {
    const Node node = graph.busiest();
    taken.push_back(node);
    graph.remove(node);
  }
  return taken;
}

/// Tries both for the busiest node: taken, and not.
class Search {
 public:
  explicit Search(Nodes known) : best_(std::move(known)) {}

  void run(Shrinking graph, Nodes taken) {
    graph.reduce(taken);
    // What is left has a circle, so that one more at least would be taken.
    if (taken.size() + (graph.isEmpty() ? 0 : 1) >= best_.size()) return;
    if (graph.isEmpty()) {
      best_ = std::move(taken);
      return;
    }
    work_ += graph.size();
    if (work_ > kMostWork) return;
    const Node node = graph.busiest();
    Shrinking without = graph;
    without.bypass(node);
    graph.remove(node);
    Nodes with = taken;
    with.push_back(node);
    run(std::move(graph), std::move(with));
    run(std::move(without), std::move(taken));
  }

  Nodes best() && { return std::move(best_); }

 private:
  Nodes best_;
  std::size_t work_ = 0;
};

/// The graph in parts with no circle through two of them, each with its nodes' numbers (Tarjan).
class Parts {
 public:
  explicit Parts(const CircleGraph& graph)
      : graph_(graph), order_(graph.size(), 0), low_(graph.size(), 0), open_(graph.size(), false) {}

  std::vector<Nodes> run() {
    for (Node node = 0; node < graph_.size(); ++node) {
      if (order_[node] == 0) visit(node);
    }
    return std::move(parts_);
  }

 private:
  struct Step {
    Node node;
    std::size_t next = 0;
  };

  /// Without recursion: a chain may be as long as there are nodes.
  void visit(Node first) {
    enter(first);
    while (!steps_.empty()) {
      const Node node = steps_.back().node;
      if (steps_.back().next < graph_[node].size()) {
        const Node target = graph_[node][steps_.back().next++];
        if (order_[target] == 0) {
          enter(target);
        } else if (open_[target]) {
          low_[node] = std::min(low_[node], order_[target]);
        }
        continue;
      }
      steps_.pop_back();
      if (!steps_.empty()) {
        Node& above = low_[steps_.back().node];
        above = std::min(above, low_[node]);
      }
      if (low_[node] == order_[node]) close(node);
    }
  }

  void enter(Node node) {
    order_[node] = low_[node] = ++count_;
    open_[node] = true;
    stack_.push_back(node);
    steps_.push_back({node});
  }

  void close(Node first) {
    Nodes part;
    Node node = first;
    do {
      node = stack_.back();
      stack_.pop_back();
      open_[node] = false;
      part.push_back(node);
    } while (node != first);
    std::sort(part.begin(), part.end());
    parts_.push_back(std::move(part));
  }

  const CircleGraph& graph_;
  Nodes order_, low_;
  std::vector<bool> open_;
  Nodes stack_;
  std::vector<Step> steps_;
  std::vector<Nodes> parts_;
  Node count_ = 0;
};

/// The breakers of one part, by the part's numbers.
Nodes breakersOf(const CircleGraph& part) {
  Nodes decided;
  Shrinking graph(part);
  graph.reduce(decided);
  if (graph.isEmpty()) return decided;
  const std::size_t left = graph.size();
  Nodes few = fewBreakers(graph);
  if (left <= kMostNodes) {
    Search search(std::move(few));
    search.run(std::move(graph), {});
    few = std::move(search).best();
  }
  decided.insert(decided.end(), few.begin(), few.end());
  return decided;
}

}  // namespace

std::vector<Node> circleBreakers(const CircleGraph& graph) {
  Nodes found;
  Nodes place(graph.size());
  for (const Nodes& part : Parts(graph).run()) {
    for (Node i = 0; i < part.size(); ++i) place[part[i]] = i;
    CircleGraph own(part.size());
    for (Node i = 0; i < part.size(); ++i) {
      for (const Node target : graph[part[i]]) {
        if (std::binary_search(part.begin(), part.end(), target)) own[i].push_back(place[target]);
      }
    }
    for (const Node node : breakersOf(own)) found.push_back(part[node]);
  }
  std::sort(found.begin(), found.end());
  return found;
}
