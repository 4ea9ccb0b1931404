#include "desktop/appkit/ConstraintSolver.hpp"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

namespace desktop {
namespace {

Amount operator+(Amount one, Amount other) {
  return {one.fixed + other.fixed, one.share + other.share};
}
Amount operator*(Amount one, double factor) {
  return {one.fixed * factor, one.share * factor};
}

/// Where an edge is, in starts and lengths of its box: the centre of one that starts at 10 and is 4 long is at
/// 1 * 10 + 0.5 * 4 = 12.
struct Weights {
  double start;
  double length;
};

Weights weightsOf(Edge edge) {
  switch (edge) {
  case Edge::Start:
    return {1, 0};
  case Edge::Centre:
    return {1, 0.5};
  case Edge::End:
    return {1, 1};
  case Edge::Length:
    return {0, 1};
  }
  __builtin_unreachable();
}

struct Known {
  Edge edge;
  Amount value;
};

/// From any two different edges of a box: two equations for start and length, solved by Cramer's rule.
Span spanOf(const Known& one, const Known& other) {
  const Weights a = weightsOf(one.edge);
  const Weights b = weightsOf(other.edge);
  const double determinant = a.start * b.length - b.start * a.length;
  return {(one.value * b.length + other.value * -a.length) * (1 / determinant),
          (other.value * a.start + one.value * -b.start) * (1 / determinant)};
}

/// Follows the relations in rounds, each in their order, until a round finds none to follow; then assumes something and
/// goes on. A relation is looked at only when it may have become one to follow.
class Solver {
public:
  Solver(const std::vector<std::optional<double>>& wantedLengths, const std::vector<Relation>& given)
      : wanted(wantedLengths), relations(given), known(wanted.size()), about(wanted.size()), isFollowed(given.size()) {
    for (std::size_t index = 0; index < relations.size(); ++index) {
      about[relations[index].first].push_back(index);
      if (relations[index].second) about[*relations[index].second].push_back(index);
      due.insert({0, index});
    }
    learn(0, Edge::Start, {});
    learn(0, Edge::Length, {0, 1});
  }

  Solution run() {
    do {
      while (!due.empty()) {
        std::tie(round, at) = due.extract(due.begin()).value();
        if (!isFollowed[at]) isFollowed[at] = follow(relations[at]);
      }
      at = relations.size();
    } while (assume());
    for (const auto& box : known)
      solution.spans.push_back(spanOf(box[0], box[1]));
    return std::move(solution);
  }

private:
  std::optional<Amount> valueOf(std::size_t box, Edge edge) const {
    const std::vector<Known>& edges = known[box];
    for (const Known& each : edges) {
      if (each.edge == edge) return each.value;
    }
    if (edges.size() < 2) return std::nullopt;
    const Span span = spanOf(edges[0], edges[1]);
    const Weights weights = weightsOf(edge);
    return span.start * weights.start + span.length * weights.length;
  }

  void learn(std::size_t box, Edge edge, Amount value) {
    if (const auto before = valueOf(box, edge)) return require(value, *before);
    known[box].push_back({edge, value});
    for (const std::size_t index : about[box]) {
      if (!isFollowed[index]) due.insert({index > at ? round : round + 1, index});
    }
    if (box == 0 || known[box].size() < 2 || !wanted[box]) return;
    const Amount length = spanOf(known[box][0], known[box][1]).length;
    if (length.share > 0) require(length, {*wanted[box], 0});
  }

  /// Both are to be the same: only a certain length of the container can bring that about, if any. A box that is half
  /// as long as the container less 20, and wants 100, asks for 240.
  void require(Amount one, Amount other) {
    if (one.share == other.share) return;
    const double length = (other.fixed - one.fixed) / (one.share - other.share);
    solution.least = std::max(solution.least.value_or(length), length);
  }

  /// False while neither side is known.
  bool follow(const Relation& relation) {
    if (!relation.second) {
      learn(relation.first, relation.firstEdge, {relation.constant, 0});
      return true;
    }
    if (const auto value = valueOf(*relation.second, relation.secondEdge)) {
      learn(relation.first, relation.firstEdge, *value + Amount{relation.constant, 0});
      return true;
    }
    if (const auto value = valueOf(relation.first, relation.firstEdge)) {
      learn(*relation.second, relation.secondEdge, *value + Amount{-relation.constant, 0});
      return true;
    }
    return false;
  }

  /// Gives one box what no relation gives it: its wanted length, then a place at the start. False when all is known.
  bool assume() {
    while (firstOpen < known.size() && known[firstOpen].size() == 2)
      ++firstOpen;
    if (firstOpen == known.size()) return false;
    const bool hasLength = valueOf(firstOpen, Edge::Length).has_value();
    learn(firstOpen, hasLength ? Edge::Start : Edge::Length,
          hasLength ? Amount{} : Amount{wanted[firstOpen].value_or(0), 0});
    return true;
  }

  const std::vector<std::optional<double>>& wanted;
  const std::vector<Relation>& relations;
  /// Up to two edges of each box: they determine it.
  std::vector<std::vector<Known>> known;
  /// Of each box, the relations that it is in.
  std::vector<std::vector<std::size_t>> about;
  std::vector<bool> isFollowed;
  /// What to look at, by round and number; and where in this order we are.
  std::set<std::pair<std::size_t, std::size_t>> due;
  std::size_t round = 0;
  std::size_t at = 0;
  /// All boxes before it are known.
  std::size_t firstOpen = 0;
  Solution solution;
};

} // namespace

Solution solve(const std::vector<std::optional<double>>& wantedLengths, const std::vector<Relation>& relations) {
  return Solver(wantedLengths, relations).run();
}

} // namespace desktop
