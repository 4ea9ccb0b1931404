#include "desktop/appkit/Window.hpp"

#include "desktop/appkit/AppKit.hpp"
#include "desktop/appkit/Layout.hpp"

#include <algorithm>

namespace desktop {

Ref<Screen> Screen::ofVisible(const std::optional<CGSize>& size) {
  if (!size) return nullptr;
  auto screen = create<Screen>();
  screen->itsVisibleFrame = {{0, 0}, *size};
  return screen;
}

Ref<Screen> Screen::mainScreen() {
  return ofVisible(AppKit::current().screen);
}

Window::~Window() {
  AppKit::current().windows.erase(order);
}

Window* Window::initWithContentRect(CGRect rect, NSUInteger style, NSUInteger backing, BOOL defer) {
  styleMask = style;
  backingStore = backing;
  isDeferred = defer;
  frame = {rect.origin, {rect.size.width, rect.size.height + barHeight()}};
  itsContentView = create<View>();
  itsContentView->frame.size = rect.size;
  return this;
}

void Window::setDelegate(id value) {
  checkDelegate(value, "NSWindowDelegate");
  delegate = value;
}

CGSize Window::contentSize() const {
  return {frame.size.width, frame.size.height - barHeight()};
}

void Window::setContentSize(CGSize size) {
  const CGSize before = contentSize();
  // The top edge stays where it is.
  frame.origin.y += before.height - size.height;
  frame.size = {size.width, size.height + barHeight()};
  layOut();
  if (size.width != before.width || size.height != before.height) tellDelegate(delegate, "windowDidResize:");
}

void Window::layOut() {
  itsContentView->frame.size = contentSize();
  desktop::layOut(*itsContentView);
}

void Window::center() {
  if (!AppKit::current().screen) return;
  // A third of what is left goes above the window, as on the platform.
  frame.origin = {(AppKit::current().screen->width - frame.size.width) / 2,
                  (AppKit::current().screen->height - frame.size.height) * 2 / 3};
}

void Window::makeKeyAndOrderFront(id /*sender*/) {
  AppKit& appKit = AppKit::current();
  appKit.windows.erase(order);
  order = ++appKit.ordered;
  appKit.windows.emplace(order, this);
  layOut();
  const CGSize size = contentSize();
  tell({"window", textOf(title.get()), sizeText(size.width), sizeText(size.height)});
}

bool Window::isVisible() const {
  return AppKit::current().windows.count(order) != 0;
}

Ref<Screen> Window::screen() const {
  return isVisible() ? Screen::mainScreen() : Screen::ofVisible(AppKit::current().otherScreen);
}

bool Window::resize(CGSize size) {
  if ((styleMask & platform::NSWindowStyleMaskResizable) == 0) return false;
  setContentSize({std::max(size.width, itsMinSize.width), std::max(size.height, itsMinSize.height - barHeight())});
  return true;
}

void Window::close() {
  AppKit::current().windows.erase(order);
  if (releasedWhenClosed) release(this);
}

WindowController* WindowController::initWithWindow(Window* window) {
  itsWindow = shared(window);
  return this;
}

void registerWindowClasses() {
  NativeClass<Screen>("NSScreen", "NSObject")
      .fallibleClassMethod<"mainScreen", &Screen::mainScreen>()
      .method<"visibleFrame", &Screen::visibleFrame>();
  NativeClass<Window>("NSWindow", "NSObject")
      .fallibleMethod<"initWithContentRect:styleMask:backing:defer:", &Window::initWithContentRect>()
      .method<"setTitle:", &Window::setTitle>()
      .method<"title", &Window::itsTitle>()
      .method<"close", &Window::close>()
      .method<"setReleasedWhenClosed:", &Window::setReleasedWhenClosed>()
      .method<"setMinSize:", &Window::setMinSize>()
      .method<"minSize", &Window::minSize>()
      .method<"setDelegate:", &Window::setDelegate>()
      .fallibleMethod<"contentView", &Window::contentView>()
      .method<"setContentSize:", &Window::setContentSize>()
      .method<"center", &Window::center>()
      .method<"makeKeyAndOrderFront:", &Window::makeKeyAndOrderFront>()
      .fallibleMethod<"screen", &Window::screen>();
  NativeClass<WindowController>("NSWindowController", "NSObject")
      .fallibleMethod<"initWithWindow:", &WindowController::initWithWindow>()
      .fallibleMethod<"window", &WindowController::window>();
}

} // namespace desktop
