/// Views, and those that arrange others.
#pragma once

#include "platform/Appearance.hpp"
#include "platform/Constraints.hpp"
#include "platform/Strings.hpp"

namespace platform {

inline constexpr NSUInteger NSViewWidthSizable = 2;
inline constexpr NSUInteger NSBoxSeparator = 2;
inline constexpr NSInteger NSUserInterfaceLayoutOrientationHorizontal = 0;
inline constexpr NSInteger NSUserInterfaceLayoutOrientationVertical = 1;

/// Kept by its superview; keeps its subviews.
class NSView : public NSObject {
public:
  using NSObject::NSObject;
  static NSView make() { return platform::make<"NSView", "init", NSView>(); }

  void setTranslatesAutoresizingMaskIntoConstraints(BOOL translates) const {
    send<"setTranslatesAutoresizingMaskIntoConstraints:">(*this, translates);
  }
  void setAutoresizingMask(NSUInteger mask) const { send<"setAutoresizingMask:">(*this, mask); }
  void setFrame(NSRect frame) const { send<"setFrame:">(*this, frame); }
  /// The smallest size that the constraints inside allow.
  [[nodiscard]] NSSize fittingSize() const { return send<"fittingSize", NSSize>(*this); }
  void layoutSubtreeIfNeeded() const { send<"layoutSubtreeIfNeeded">(*this); }

  // What could not be made is not added: the platform takes no nothing.
  void addSubview(const NSView& view) const {
    if (view) send<"addSubview:">(*this, view);
  }
  void removeFromSuperview() const { send<"removeFromSuperview">(*this); }

  void setWantsLayer(BOOL wants) const { send<"setWantsLayer:">(*this, wants); }
  /// Empty until a layer is wanted.
  [[nodiscard]] CALayer layer() const { return send<"layer", CALayer>(*this); }

  void setIdentifier(const NSString& identifier) const { send<"setIdentifier:">(*this, identifier); }
  /// Empty when none was set.
  [[nodiscard]] NSString identifier() const { return send<"identifier", NSString>(*this); }

  void setContentCompressionResistancePriority(NSLayoutPriority priority, NSInteger orientation) const {
    send<"setContentCompressionResistancePriority:forOrientation:">(*this, priority, orientation);
  }
  [[nodiscard]] NSLayoutXAxisAnchor leadingAnchor() const { return send<"leadingAnchor", NSLayoutXAxisAnchor>(*this); }
  [[nodiscard]] NSLayoutXAxisAnchor trailingAnchor() const {
    return send<"trailingAnchor", NSLayoutXAxisAnchor>(*this);
  }
  [[nodiscard]] NSLayoutXAxisAnchor centerXAnchor() const { return send<"centerXAnchor", NSLayoutXAxisAnchor>(*this); }
  [[nodiscard]] NSLayoutYAxisAnchor topAnchor() const { return send<"topAnchor", NSLayoutYAxisAnchor>(*this); }
  [[nodiscard]] NSLayoutYAxisAnchor bottomAnchor() const { return send<"bottomAnchor", NSLayoutYAxisAnchor>(*this); }
  [[nodiscard]] NSLayoutDimension widthAnchor() const { return send<"widthAnchor", NSLayoutDimension>(*this); }
  [[nodiscard]] NSLayoutDimension heightAnchor() const { return send<"heightAnchor", NSLayoutDimension>(*this); }
};

/// A frame, or a line between other views.
class NSBox : public NSView {
public:
  using NSView::NSView;
  static NSBox make() { return platform::make<"NSBox", "init", NSBox>(); }

  void setBoxType(NSUInteger type) const { send<"setBoxType:">(*this, type); }
};

/// A window on a document view, which it keeps.
class NSScrollView : public NSView {
public:
  using NSView::NSView;
  static NSScrollView make() { return platform::make<"NSScrollView", "init", NSScrollView>(); }

  void setHasVerticalScroller(BOOL has) const { send<"setHasVerticalScroller:">(*this, has); }
  void setHasHorizontalScroller(BOOL has) const { send<"setHasHorizontalScroller:">(*this, has); }
  void setAutohidesScrollers(BOOL autohides) const { send<"setAutohidesScrollers:">(*this, autohides); }
  void setDrawsBackground(BOOL draws) const { send<"setDrawsBackground:">(*this, draws); }
  void setDocumentView(const NSView& view) const { send<"setDocumentView:">(*this, view); }
  /// Of the part that shows the document.
  [[nodiscard]] NSSize contentSize() const { return send<"contentSize", NSSize>(*this); }
};

/// Views in a row or column. An arranged subview is a subview too.
class NSStackView : public NSView {
public:
  using NSView::NSView;
  static NSStackView make() { return platform::make<"NSStackView", "init", NSStackView>(); }

  void setOrientation(NSInteger orientation) const { send<"setOrientation:">(*this, orientation); }
  void setAlignment(NSInteger attribute) const { send<"setAlignment:">(*this, attribute); }
  void setSpacing(CGFloat spacing) const { send<"setSpacing:">(*this, spacing); }
  void addArrangedSubview(const NSView& view) const {
    if (view) send<"addArrangedSubview:">(*this, view);
  }
  /// The view stays a subview.
  void removeArrangedSubview(const NSView& view) const { send<"removeArrangedSubview:">(*this, view); }
  /// Of this moment; later changes of the stack do not show in it.
  [[nodiscard]] NSArray arrangedSubviews() const { return send<"arrangedSubviews", NSArray>(*this); }
};

} // namespace platform
