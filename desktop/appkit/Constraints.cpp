#include "desktop/appkit/Constraints.hpp"

#include "desktop/appkit/AppKit.hpp"

namespace desktop {
namespace {

bool holds(const View* holder, const View* view) {
  return view == holder || view->superview == holder;
}

/// Where the constraint is kept.
View& holderOf(const Constraint& constraint) {
  View& first = *constraint.first;
  View* const second = constraint.second;
  if (second == nullptr) return first;
  for (View* holder : {&first, first.superview, second}) {
    if (holder != nullptr && holds(holder, &first) && holds(holder, second)) return *holder;
  }
  stop("a constraint was activated between a " + first.isa->name + " and a " + second->isa->name +
       " that are neither side by side nor one directly in the other");
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
    View& holder = holderOf(*constraint);
    holder.constraints.push_back(shared(constraint));
    holder.changed();
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
