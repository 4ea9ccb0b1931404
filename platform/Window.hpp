/// Windows, their controllers and the screens that they are on.
#pragma once

#include "platform/View.hpp"

namespace platform {

inline constexpr NSUInteger NSWindowStyleMaskTitled = 1;
inline constexpr NSUInteger NSWindowStyleMaskClosable = 2;
inline constexpr NSUInteger NSWindowStyleMaskResizable = 8;
inline constexpr NSUInteger NSBackingStoreBuffered = 2;

class NSScreen : public NSObject {
public:
  using NSObject::NSObject;
  /// Empty when there is no screen at all.
  static NSScreen mainScreen() { return send<"mainScreen", NSScreen>(theClass<"NSScreen">); }

  /// The area without menu bar and Dock.
  [[nodiscard]] NSRect visibleFrame() const { return send<"visibleFrame", NSRect>(*this); }
};

class NSWindow : public NSObject {
public:
  using NSObject::NSObject;
  static NSWindow make(NSRect contentRect, NSUInteger styleMask, NSUInteger backing, BOOL defer) {
    return platform::make<"NSWindow", "initWithContentRect:styleMask:backing:defer:", NSWindow>(contentRect, styleMask,
                                                                                                backing, defer);
  }

  void setTitle(const NSString& title) const { send<"setTitle:">(*this, title); }
  /// Left on, closing takes away a reference that is nobody's to give.
  void setReleasedWhenClosed(BOOL released) const { send<"setReleasedWhenClosed:">(*this, released); }
  /// Of the frame, title bar included.
  void setMinSize(NSSize size) const { send<"setMinSize:">(*this, size); }
  [[nodiscard]] NSSize minSize() const { return send<"minSize", NSSize>(*this); }
  /// Not retained.
  void setDelegate(id delegate) const { send<"setDelegate:">(*this, delegate); }
  [[nodiscard]] NSView contentView() const { return send<"contentView", NSView>(*this); }
  void setContentSize(NSSize size) const { send<"setContentSize:">(*this, size); }
  /// The one that shows most of the window; empty while it is on none.
  [[nodiscard]] NSScreen screen() const { return send<"screen", NSScreen>(*this); }
  void center() const { send<"center">(*this); }
  void makeKeyAndOrderFront() const { send<"makeKeyAndOrderFront:">(*this, nullptr); }
};

/// Keeps its window.
class NSWindowController : public NSObject {
public:
  using NSObject::NSObject;
  [[nodiscard]] NSWindow window() const { return send<"window", NSWindow>(*this); }
};

} // namespace platform
