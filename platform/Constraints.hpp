/// Layout anchors and the constraints made from them.
#pragma once

#include "platform/Collections.hpp"

namespace platform {

inline constexpr NSInteger NSLayoutAttributeLeading = 5;
inline constexpr NSInteger NSLayoutAttributeCenterX = 9;
inline constexpr NSInteger NSLayoutAttributeCenterY = 10;

inline constexpr NSInteger NSLayoutConstraintOrientationHorizontal = 0;

/// How firmly a view holds out against the others.
using NSLayoutPriority = float;
inline constexpr NSLayoutPriority NSLayoutPriorityDefaultLow = 250;

/// Without effect until it is activated; its views, which it does not own, then keep it.
class NSLayoutConstraint : public NSObject {
public:
  using NSObject::NSObject;
  /// The views of each constraint have to have an ancestor in common by now. The platform takes no empty list.
  static void activateConstraints(const NSArray& constraints) {
    if (constraints) send<"activateConstraints:">(theClass<"NSLayoutConstraint">, constraints);
  }
};

/// An edge, centre or extent of a view; only those of one kind can be tied to each other. A tie to nothing, which the
/// platform would not take, is empty.
template <class AnchorType> class NSLayoutAnchor : public NSObject {
public:
  using NSObject::NSObject;
  [[nodiscard]] NSLayoutConstraint constraintEqualToAnchor(const AnchorType& other) const {
    if (!other) return {};
    return send<"constraintEqualToAnchor:", NSLayoutConstraint>(*this, other);
  }
  [[nodiscard]] NSLayoutConstraint constraintEqualToAnchor(const AnchorType& other, CGFloat constant) const {
    if (!other) return {};
    return send<"constraintEqualToAnchor:constant:", NSLayoutConstraint>(*this, other, constant);
  }
};

class NSLayoutXAxisAnchor : public NSLayoutAnchor<NSLayoutXAxisAnchor> {
public:
  using NSLayoutAnchor::NSLayoutAnchor;
};

class NSLayoutYAxisAnchor : public NSLayoutAnchor<NSLayoutYAxisAnchor> {
public:
  using NSLayoutAnchor::NSLayoutAnchor;
};

class NSLayoutDimension : public NSLayoutAnchor<NSLayoutDimension> {
public:
  using NSLayoutAnchor::NSLayoutAnchor;
  [[nodiscard]] NSLayoutConstraint constraintEqualToConstant(CGFloat constant) const {
    return send<"constraintEqualToConstant:", NSLayoutConstraint>(*this, constant);
  }
};

} // namespace platform
