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
  Edge firstEdge = Edge::Start;
  Edge secondEdge = Edge::Start;
  CGFloat constant = 0;
  /// Null while it is not active.
  View* holder = nullptr;

  // The views are not owned: an active constraint leaves with either.
  View* first() const { return asked(itsFirst); }
  /// Null for a first edge that is a constant.
  View* second() const { return asked(itsSecond); }
  /// How often any constraint was asked for a view: steps, to a test.
  static inline long timesAsked = 0;

  /// Between anchors of one axis.
  static Ref<Constraint> between(const Anchor& first, const Anchor* second, CGFloat constant);

  /// Stops the program for two views that are neither side by side nor one directly in the other: activating views
  /// without a common ancestor fails on the platform, and deeper ties are not laid out here.
  static void activate(Array* constraints);
  /// The caller tells the holder that it has changed.
  void deactivate();

private:
  View* itsFirst = nullptr;
  View* itsSecond = nullptr;
  /// Where it is, while it is active: among the holder's constraints, and among the ties of its views.
  std::list<Ref<Constraint>>::iterator place;
  std::list<Constraint*>::iterator firstTie;
  std::list<Constraint*>::iterator secondTie;

  void activateIn(View& view);
  static View* asked(View* view) {
    ++timesAsked;
    return view;
  }
};

template <class Anchor, Axis axis, Edge edge> Ref<Anchor> View::anchor() {
  auto made = create<Anchor>();
  made->view = shared(this);
  made->axis = axis;
  made->edge = edge;
  return made;
}

} // namespace desktop
