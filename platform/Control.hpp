/// Controls: labels, buttons, checkboxes, images.
#pragma once

#include "platform/Image.hpp"
#include "platform/View.hpp"

namespace platform {

inline constexpr NSUInteger NSLineBreakByWordWrapping = 0;
inline constexpr NSUInteger NSLineBreakByTruncatingMiddle = 5;
inline constexpr NSUInteger NSButtonTypeSwitch = 3;
inline constexpr NSUInteger NSBezelStyleInline = 15;
inline constexpr NSInteger NSControlStateValueOff = 0;
inline constexpr NSInteger NSControlStateValueOn = 1;
inline constexpr NSUInteger NSImageOnly = 1;
inline constexpr NSUInteger NSImageScaleProportionallyUpOrDown = 3;

class NSControl : public NSView {
public:
  using NSView::NSView;
  void setFont(const NSFont& font) const { send<"setFont:">(*this, font); }
  void setLineBreakMode(NSUInteger mode) const { send<"setLineBreakMode:">(*this, mode); }
};

class NSTextField : public NSControl {
public:
  using NSControl::NSControl;
  /// Text that can be read, not edited.
  static NSTextField labelWithString(const NSString& text) {
    return send<"labelWithString:", NSTextField>(theClass<"NSTextField">, text);
  }

  void setTextColor(const NSColor& color) const { send<"setTextColor:">(*this, color); }
  /// 0 for as many as it takes.
  void setMaximumNumberOfLines(NSInteger lines) const { send<"setMaximumNumberOfLines:">(*this, lines); }
};

class NSButton : public NSControl {
public:
  using NSControl::NSControl;
  /// The target is not retained.
  static NSButton buttonWithTitle(const NSString& title, id target, SEL action) {
    return send<"buttonWithTitle:target:action:", NSButton>(theClass<"NSButton">, title, target, action);
  }
  /// The target is not retained.
  static NSButton checkboxWithTitle(const NSString& title, id target, SEL action) {
    return send<"checkboxWithTitle:target:action:", NSButton>(theClass<"NSButton">, title, target, action);
  }

  void setButtonType(NSUInteger type) const { send<"setButtonType:">(*this, type); }
  void setBezelStyle(NSUInteger style) const { send<"setBezelStyle:">(*this, style); }
  void setContentTintColor(const NSColor& color) const { send<"setContentTintColor:">(*this, color); }
  void setTitle(const NSString& title) const { send<"setTitle:">(*this, title); }
  void setImage(const NSImage& image) const { send<"setImage:">(*this, image); }
  void setImagePosition(NSUInteger position) const { send<"setImagePosition:">(*this, position); }
  void setState(NSInteger state) const { send<"setState:">(*this, state); }
  [[nodiscard]] NSInteger state() const { return send<"state", NSInteger>(*this); }
};

class NSImageView : public NSControl {
public:
  using NSControl::NSControl;
  static NSImageView make() { return platform::make<"NSImageView", "init", NSImageView>(); }

  /// An empty image for none.
  void setImage(const NSImage& image) const { send<"setImage:">(*this, image); }
  void setImageScaling(NSUInteger scaling) const { send<"setImageScaling:">(*this, scaling); }
};

} // namespace platform
