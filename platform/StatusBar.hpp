/// The status bar, its items and their menus.
#pragma once

#include "platform/Control.hpp"

namespace platform {

inline constexpr CGFloat NSSquareStatusItemLength = -2.0;

class NSMenuItem : public NSObject {
public:
  using NSObject::NSObject;
  static NSMenuItem make(const NSString& title, SEL action, const NSString& keyEquivalent) {
    return platform::make<"NSMenuItem", "initWithTitle:action:keyEquivalent:", NSMenuItem>(title, action,
                                                                                           keyEquivalent);
  }
  static NSMenuItem separatorItem() { return send<"separatorItem", NSMenuItem>(theClass<"NSMenuItem">); }

  /// Not retained.
  void setTarget(id target) const { send<"setTarget:">(*this, target); }
  void setAction(SEL action) const { send<"setAction:">(*this, action); }
  void setEnabled(BOOL enabled) const { send<"setEnabled:">(*this, enabled); }
  void setTitle(const NSString& title) const { send<"setTitle:">(*this, title); }
};

class NSMenu : public NSObject {
public:
  using NSObject::NSObject;
  static NSMenu make() { return platform::make<"NSMenu", "init", NSMenu>(); }

  /// Nothing happens when the item could not be made: the platform takes no nothing.
  void addItem(const NSMenuItem& item) const {
    if (item) send<"addItem:">(*this, item);
  }
};

class NSStatusBarButton : public NSButton {
public:
  using NSButton::NSButton;
};

/// In the status bar for as long as somebody keeps it.
class NSStatusItem : public NSObject {
public:
  using NSObject::NSObject;
  [[nodiscard]] NSStatusBarButton button() const { return send<"button", NSStatusBarButton>(*this); }
  void setMenu(const NSMenu& menu) const { send<"setMenu:">(*this, menu); }
};

class NSStatusBar : public NSObject {
public:
  using NSObject::NSObject;
  static NSStatusBar systemStatusBar() { return send<"systemStatusBar", NSStatusBar>(theClass<"NSStatusBar">); }
  [[nodiscard]] NSStatusItem statusItemWithLength(CGFloat length) const {
    return send<"statusItemWithLength:", NSStatusItem>(*this, length);
  }
};

} // namespace platform
