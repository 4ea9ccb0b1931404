/// Layout anchors, and the constraints that tie them to each other.
#pragma once

#include "desktop/appkit/View.hpp"

namespace desktop {

struct Anchor : Object {
  Ref<View> view;
  Axis axis = Axis::Horizontal;
  Edge edge = Edge::Start;

  Ref<Constraint> constraintEqualTo(Anchor* other) const { return constraintEqualToPlus(other, 0); }
  Ref<Constraint> constraintEqualToPlus(Anchor* other, CGFloat constant) const;
};
struct XAxisAnchor : Anchor {};
struct YAxisAnchor : Anchor {};
struct Dimension : Anchor {
  Ref<Constraint> constraintEqualToConstant(CGFloat constant) const;
};

/// Without effect until it is activated; then kept by the view that holds both of its views.
struct Constraint : Object {
  Axis axis = Axis::Horizontal;
  // The views are not owned: an active constraint leaves with either.
  View* first = nullptr;
  Edge firstEdge = Edge::Start;
  /// Null for a first edge that is a constant.
  View* second = nullptr;
  Edge secondEdge = Edge::Start;
  CGFloat constant = 0;

  /// Stops the program for two views that are neither side by side nor one directly in the other: activating views
  /// without a common ancestor fails on the platform, and deeper ties are not laid out here.
  static void activate(Array* constraints);
};

template <class Anchor, Axis axis, Edge edge> Ref<Anchor> View::anchor() {
  auto made = create<Anchor>();
  made->view = shared(this);
  made->axis = axis;
  made->edge = edge;
  return made;
}

} // namespace desktop
