#include "desktop/appkit/Constraints.hpp"

#include "desktop/appkit/AppKit.hpp"

namespace desktop {
namespace {

bool holds(const View* holder, const View* view) {
  return view == holder || view->superview == holder;
}

/// Where the constraint is kept.
View& holderOf(const Constraint& constraint) {
  View& first = *constraint.first();
  View* const second = constraint.second();
  if (second == nullptr) return first;
  for (View* holder : {&first, first.superview, second}) {
    if (holder != nullptr && holds(holder, &first) && holds(holder, second)) return *holder;
  }
  stop("a constraint was activated between a " + first.isa->name + " and a " + second->isa->name +
       " that are neither side by side nor one directly in the other");
}

} // namespace

Ref<Constraint> Anchor::constraintEqualToPlus(Anchor* other, CGFloat constant) const {
  if (other == nullptr) stop("an anchor was tied to nothing (nil)");
  if (other->isa != isa || other->axis != axis) stop("anchors of different kinds were tied to each other");
  return Constraint::between(*this, other, constant);
}

Ref<Constraint> Dimension::constraintEqualToConstant(CGFloat constant) const {
  return Constraint::between(*this, nullptr, constant);
}

Ref<Constraint> Constraint::between(const Anchor& first, const Anchor* second, CGFloat constant) {
  auto made = create<Constraint>();
  made->axis = first.axis;
  made->itsFirst = first.view.get();
  made->firstEdge = first.edge;
  if (second != nullptr) {
    made->itsSecond = second->view.get();
    made->secondEdge = second->edge;
  }
  made->constant = constant;
  return made;
}

void Constraint::activate(Array* constraints) {
  for (const auto& element : constraints->elements) {
    auto* const constraint = as<Constraint>(element.get());
    if (constraint->holder == nullptr) constraint->activateIn(holderOf(*constraint));
  }
}

void Constraint::activateIn(View& view) {
  holder = &view;
  place = view.constraints.insert(view.constraints.end(), shared(this));
  const auto tie = [&](View& tied) { return tied.ties.insert(tied.ties.end(), this); };
  if (first() != holder) firstTie = tie(*first());
  if (second() != nullptr && second() != holder) secondTie = tie(*second());
  view.changed();
}

void Constraint::deactivate() {
  if (first() != holder) first()->ties.erase(firstTie);
  if (second() != nullptr && second() != holder) second()->ties.erase(secondTie);
  // The holder's reference may be the last one.
  std::exchange(holder, nullptr)->constraints.erase(place);
}

void registerConstraintClasses() {
  NativeClass<Anchor>("NSLayoutAnchor", "NSObject")
      .method<"constraintEqualToAnchor:", &Anchor::constraintEqualTo>()
      .method<"constraintEqualToAnchor:constant:", &Anchor::constraintEqualToPlus>();
  NativeClass<XAxisAnchor>("NSLayoutXAxisAnchor", "NSLayoutAnchor");
  NativeClass<YAxisAnchor>("NSLayoutYAxisAnchor", "NSLayoutAnchor");
  NativeClass<Dimension>("NSLayoutDimension", "NSLayoutAnchor")
      .method<"constraintEqualToConstant:", &Dimension::constraintEqualToConstant>();
  NativeClass<Constraint>("NSLayoutConstraint", "NSObject")
      .classMethod<"activateConstraints:", &Constraint::activate>();
}

} // namespace desktop
