/// Equalities between the edges of boxes along one axis, solved by carrying what is known from box to box.
///
/// Box 0 contains the others. Its length is left open: everything is found as a part that is fixed and a share of that
/// length, so that one solution places the boxes in a container of any length and tells how long it has to be.
#pragma once

#include <optional>
#include <vector>

namespace desktop {

/// What a relation is about: an edge of a box, its centre, or how long it is.
enum class Edge { Start, Centre, End, Length };

/// A length: a fixed part and a share of the container's.
struct Amount {
  double fixed = 0;
  double share = 0;

  double in(double container) const { return fixed + share * container; }
};

/// `first`'s edge is `second`'s plus the constant, or the constant alone when there is no second box.
struct Relation {
  std::size_t first;
  Edge firstEdge;
  std::optional<std::size_t> second;
  Edge secondEdge;
  double constant;
};

struct Span {
  Amount start;
  Amount length;
};

struct Solution {
  std::vector<Span> spans;
  /// The least length of the container at which every box has the length that it wants; none when any will do.
  std::optional<double> least;
};

/// A box that the relations leave a length takes the one that it wants, if any, and else none at all. Where relations
/// contradict each other the first ones hold.
Solution solve(const std::vector<std::optional<double>>& wantedLengths, const std::vector<Relation>& relations);

} // namespace desktop
