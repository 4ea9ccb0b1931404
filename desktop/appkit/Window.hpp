/// Windows, their controllers, and the screen that they are on.
#pragma once

#include "desktop/appkit/View.hpp"
#include "platform/Window.hpp"

namespace desktop {

/// A screen. Its origin is the bottom left corner of the visible frame.
struct Screen : Object {
  CGRect itsVisibleFrame{};

  /// None where that size is none.
  static Ref<Screen> ofVisible(const std::optional<CGSize>& size);
  static Ref<Screen> mainScreen();
  CGRect visibleFrame() const { return itsVisibleFrame; }
};

struct Window : Object {
  static constexpr CGFloat titleBarHeight = 28;

  Ref<String> title;
  NSUInteger styleMask = 0;
  NSUInteger backingStore = 0;
  BOOL isDeferred = false;
  /// On the screen, y upwards; the title bar is part of it.
  CGRect frame{};
  CGSize itsMinSize{};
  Ref<View> itsContentView;
  /// Not owned, as on the platform.
  id delegate = nullptr;
  BOOL releasedWhenClosed = true;
  /// Its key among the windows on the screen, while it is one of them.
  long order = 0;

  ~Window();
  Window* initWithContentRect(CGRect rect, NSUInteger style, NSUInteger backing, BOOL defer);
  void setTitle(String* value) { title = shared(value); }
  String* itsTitle() const { return title.get(); }
  void setReleasedWhenClosed(BOOL value) { releasedWhenClosed = value; }
  void setMinSize(CGSize value) { itsMinSize = value; }
  CGSize minSize() const { return itsMinSize; }
  void setDelegate(id value);
  View* contentView() const { return itsContentView.get(); }
  void setContentSize(CGSize size);
  void center();
  void makeKeyAndOrderFront(id sender);
  /// The main one while the window is visible, and before that the desktop's other one, if it has any.
  Ref<Screen> screen() const;

  bool isVisible() const;
  CGSize contentSize() const;
  /// Gives every view in the window its frame: what the platform does before it draws.
  void layOut();
  /// The user drags it to this content size, or as near as its minimum allows; false when it cannot be resized.
  bool resize(CGSize size);
  /// The user closes it: it leaves the screen.
  void close();

private:
  CGFloat barHeight() const { return (styleMask & platform::NSWindowStyleMaskTitled) != 0 ? titleBarHeight : 0; }
};

struct WindowController : Object {
  Ref<Window> itsWindow;

  WindowController* initWithWindow(Window* window);
  Window* window() const { return itsWindow.get(); }
};

} // namespace desktop
