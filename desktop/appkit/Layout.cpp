#include "desktop/appkit/Layout.hpp"

#include "desktop/appkit/Constraints.hpp"
#include "desktop/appkit/Control.hpp"
#include "platform/Constraints.hpp"

#include <algorithm>
#include <unordered_map>

namespace desktop {
namespace {

double along(CGSize size, Axis axis) {
  return axis == Axis::Horizontal ? size.width : size.height;
}

/// Height of what `view` is measured in from the top.
double heightAround(const View& view) {
  return view.superview != nullptr ? view.superview->frame.size.height : 0;
}

bool isMeasuredFromTop(const View& view) {
  return view.superview == nullptr || isFlipped(*view.superview);
}

double topOf(const View& view) {
  const CGRect& frame = view.frame;
  return isMeasuredFromTop(view) ? frame.origin.y : heightAround(view) - frame.origin.y - frame.size.height;
}

/// `start` counts from the left or from the top.
void setSpan(View& view, Axis axis, double start, double length) {
  length = std::max(0.0, length);
  CGRect& frame = view.frame;
  if (axis == Axis::Horizontal) {
    frame.origin.x = start;
    frame.size.width = length;
  } else {
    frame.origin.y = isMeasuredFromTop(view) ? start : heightAround(view) - start - length;
    frame.size.height = length;
  }
}

View::Measure& measureOf(View& view, Axis axis) {
  return view.measures[static_cast<int>(axis)];
}

/// As last measured.
std::optional<double> fitting(View& view, Axis axis) {
  return measureOf(view, axis).fitting;
}

/// The length that a constraint of the view alone demands.
std::optional<double> demandedLength(const View& view, Axis axis) {
  for (const auto& constraint : view.constraints) {
    if (constraint->axis == axis && constraint->first() == &view && constraint->second() == nullptr) {
      return constraint->constant;
    }
  }
  return std::nullopt;
}

/// What the constraints in one container say along one axis, for the solver.
class Ties {
public:
  Ties(View& container, Axis which) : axis(which) {
    boxOf(&container);
    for (const auto& constraint : container.constraints) {
      if (constraint->axis == axis && constraint->second() != nullptr) add(*constraint);
    }
  }

  Solution solved() const { return solve(wanted, relations); }
  View* view(std::size_t box) const { return views[box]; }

private:
  void add(const Constraint& constraint) {
    const std::size_t first = boxOf(constraint.first());
    relations.push_back(
        {first, constraint.firstEdge, boxOf(constraint.second()), constraint.secondEdge, constraint.constant});
  }

  std::size_t boxOf(View* view) {
    const auto [known, isNew] = boxes.try_emplace(view, views.size());
    const std::size_t box = known->second;
    if (!isNew) return box;
    views.push_back(view);
    wanted.push_back(box == 0 ? std::nullopt : fitting(*view, axis));
    if (box != 0) fix(box);
    return box;
  }

  /// What a view has from elsewhere than its container's constraints.
  void fix(std::size_t box) {
    const View& view = *views[box];
    if (view.translatesMask) {
      const double start = axis == Axis::Horizontal ? view.frame.origin.x : topOf(view);
      relations.push_back({box, Edge::Start, std::nullopt, Edge::Start, start});
      relations.push_back({box, Edge::Length, std::nullopt, Edge::Length, desktop::along(view.frame.size, axis)});
    } else if (const auto length = demandedLength(view, axis)) {
      relations.push_back({box, Edge::Length, std::nullopt, Edge::Length, *length});
    }
  }

  Axis axis;
  std::vector<View*> views;
  std::unordered_map<View*, std::size_t> boxes;
  std::vector<std::optional<double>> wanted;
  std::vector<Relation> relations;
};

double stackLength(const StackView& stack, Axis axis) {
  double sum = -stack.spacing;
  double longest = 0;
  for (const auto& view : stack.subviews) {
    if (!view->isArranged) continue;
    const double length = fitting(*view, axis).value_or(0);
    sum += length + stack.spacing;
    longest = std::max(longest, length);
  }
  return axis == stack.orientation ? std::max(0.0, sum) : longest;
}

/// From what is inside it, once that has been measured.
std::optional<double> lengthAround(View& view, Axis axis) {
  if (const auto length = demandedLength(view, axis)) return length;
  if (const auto* stack = ifIs<StackView>(&view)) return stackLength(*stack, axis);
  static const SEL intrinsicContentSize = sel_registerName("intrinsicContentSize");
  const double intrinsic = along(perform<CGSize>(&view, intrinsicContentSize), axis);
  if (intrinsic >= 0) return intrinsic;
  return view.constraints.empty() ? std::nullopt : Ties(view, axis).solved().least;
}

/// Whether what the view wants follows from a frame, which layout itself changes: a wrapped text's height from its
/// width, a container's length from a view that stays where it was put.
bool followsFrames(View& view, Axis axis) {
  const auto* const label = axis == Axis::Vertical ? ifIs<TextField>(&view) : nullptr;
  if (label != nullptr && label->lineBreakMode == platform::NSLineBreakByWordWrapping) return true;
  return std::any_of(view.constraints.begin(), view.constraints.end(), [&](const auto& constraint) {
    const View* const first = constraint->first();
    const View* const second = constraint->second();
    return second != nullptr &&
           ((first != &view && first->translatesMask) || (second != &view && second->translatesMask));
  });
}

/// Finds the fitting lengths of the view and of all inside it that are not known, each once.
void measure(View& view) {
  if (measureOf(view, Axis::Horizontal).isKnown && measureOf(view, Axis::Vertical).isKnown) return;
  for (const auto& subview : view.subviews)
    measure(*subview);
  for (const Axis axis : {Axis::Horizontal, Axis::Vertical}) {
    View::Measure& measured = measureOf(view, axis);
    if (measured.isKnown) continue;
    const auto isKnown = [&](const auto& subview) { return measureOf(*subview, axis).isKnown; };
    measured.isKnown = std::all_of(view.subviews.begin(), view.subviews.end(), isKnown) && !followsFrames(view, axis);
    measured.placedAt.reset();
    measured.fitting = lengthAround(view, axis);
  }
}

void placeTied(View& view, Axis axis) {
  const Ties ties(view, axis);
  const Solution solution = ties.solved();
  const double length = along(view.frame.size, axis);
  for (std::size_t box = 1; box < solution.spans.size(); ++box) {
    const Span& span = solution.spans[box];
    setSpan(*ties.view(box), axis, span.start.in(length), span.length.in(length));
  }
}

struct Stacked {
  View* view;
  double length;
};

/// Takes what is too much from the views that hold their content least. At the platform's default they hold it against
/// the stack, and stand out at its end.
void shorten(std::vector<Stacked>& row, Axis axis, double excess) {
  if (excess <= 0) return;
  const auto resistance = [&](const Stacked* each) {
    return each->view->compressionResistance[static_cast<int>(axis)];
  };
  std::vector<Stacked*> order;
  for (Stacked& each : row) {
    if (resistance(&each) < NSLayoutPriorityDefaultHigh) order.push_back(&each);
  }
  std::stable_sort(order.begin(), order.end(),
                   [&](auto* one, auto* other) { return resistance(one) < resistance(other); });
  for (Stacked* each : order) {
    const double taken = std::clamp(excess, 0.0, each->length);
    each->length -= taken;
    excess -= taken;
  }
}

void placeAlong(const StackView& stack) {
  const Axis axis = stack.orientation;
  std::vector<Stacked> row;
  row.reserve(stack.subviews.size());
  double sum = -stack.spacing;
  for (const auto& view : stack.subviews) {
    if (!view->isArranged) continue;
    row.push_back({view.get(), fitting(*view, axis).value_or(0)});
    sum += row.back().length + stack.spacing;
  }
  shorten(row, axis, sum - along(stack.frame.size, axis));
  double start = 0;
  for (const auto& [view, length] : row) {
    setSpan(*view, axis, start, length);
    start += length + stack.spacing;
  }
}

/// A view without a width of its own is as wide as its column, as a separator is; likewise for heights in a row.
void placeAcross(const StackView& stack, Axis axis) {
  const double room = along(stack.frame.size, axis);
  for (const auto& view : stack.subviews) {
    if (!view->isArranged) continue;
    const double length = std::min(fitting(*view, axis).value_or(room), room);
    setSpan(*view, axis, stack.alignment == platform::NSLayoutAttributeLeading ? 0 : (room - length) / 2, length);
  }
}

/// Places what is inside the view, unless it lies where it would be placed.
void place(View& view, Axis axis) {
  View::Measure& measured = measureOf(view, axis);
  const double length = along(view.frame.size, axis);
  if (measured.placedAt == length || view.subviews.empty()) return;
  if (const auto* stack = ifIs<StackView>(&view)) {
    axis == stack->orientation ? placeAlong(*stack) : placeAcross(*stack, axis);
  } else if (const auto* scroll = ifIs<ScrollView>(&view)) {
    setSpan(*scroll->clip, axis, 0, along(scroll->frame.size, axis));
  } else if (!view.constraints.empty()) {
    placeTied(view, axis);
  }
  for (const auto& subview : view.subviews)
    place(*subview, axis);
  if (measured.isKnown) measured.placedAt = length;
}

} // namespace

void layOut(View& view) {
  for (const Axis axis : {Axis::Horizontal, Axis::Vertical}) {
    measure(view);
    place(view, axis);
  }
}

std::optional<double> fittingLength(View& view, Axis axis) {
  measure(view);
  return fitting(view, axis);
}

bool isFlipped(View& view) {
  return platform::send<"isFlipped", BOOL>(static_cast<id>(&view));
}

CGRect frameFromTop(View& view) {
  CGRect frame{{0, 0}, view.frame.size};
  for (const View* each = &view; each->superview != nullptr; each = each->superview) {
    frame.origin.x += each->frame.origin.x;
    frame.origin.y += topOf(*each);
  }
  return frame;
}

} // namespace desktop
