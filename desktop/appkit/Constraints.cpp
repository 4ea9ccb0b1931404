#include "desktop/appkit/Constraints.hpp"

namespace desktop {
namespace {

bool holds(const View* holder, const View* view) {
  return view == holder || view->superview == holder;
}

/// Where the constraint is kept; null when there is no such view.
View* holderOf(const Constraint& constraint) {
  if (constraint.second == nullptr) return constraint.first;
  for (View* holder : {constraint.first, constraint.first->superview}) {
    if (holder != nullptr && holds(holder, constraint.second)) return holder;
  }
  return holds(constraint.second, constraint.first) ? constraint.second : nullptr;
}

Ref<Constraint> constraintOf(const Anchor& anchor, CGFloat constant) {
  auto constraint = create<Constraint>();
  constraint->axis = anchor.axis;
  constraint->first = anchor.view.get();
  constraint->firstEdge = anchor.edge;
  constraint->constant = constant;
  return constraint;
}

} // namespace

Ref<Constraint> Anchor::constraintEqualToPlus(Anchor* other, CGFloat constant) const {
  if (other == nullptr) stop("an anchor was tied to nothing (nil)");
  if (other->isa != isa || other->axis != axis) stop("anchors of different kinds were tied to each other");
  auto constraint = constraintOf(*this, constant);
  constraint->second = other->view.get();
  constraint->secondEdge = other->edge;
  return constraint;
}

Ref<Constraint> Dimension::constraintEqualToConstant(CGFloat constant) const {
  return constraintOf(*this, constant);
}

void Constraint::activate(Array* constraints) {
  for (const auto& element : constraints->elements) {
    auto* const constraint = as<Constraint>(element.get());
    View* const holder = holderOf(*constraint);
    if (holder == nullptr) {
      stop("a constraint was activated between a " + constraint->first->isa->name + " and a " +
           constraint->second->isa->name + " that are neither side by side nor one directly in the other");
    }
    holder->constraints.push_back(shared(constraint));
  }
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
