/// The application object, the workspace and other running applications.
#pragma once

#include "platform/Foundation.hpp"

namespace platform {

inline constexpr NSInteger NSApplicationActivationPolicyAccessory = 1;

/// The one application object; the platform keeps it.
class NSApplication : public NSObject {
public:
  using NSObject::NSObject;
  static NSApplication sharedApplication() {
    return send<"sharedApplication", NSApplication>(theClass<"NSApplication">);
  }

  /// Not retained.
  void setDelegate(id delegate) const { send<"setDelegate:">(*this, delegate); }
  void setActivationPolicy(NSInteger policy) const { send<"setActivationPolicy:", BOOL>(*this, policy); }
  void run() const { send<"run">(*this); }
  void terminate() const { send<"terminate:">(*this, nullptr); }
  void activateIgnoringOtherApps(BOOL ignoring) const { send<"activateIgnoringOtherApps:">(*this, ignoring); }
};

class NSRunningApplication : public NSObject {
public:
  using NSObject::NSObject;
  static NSArray runningApplicationsWithBundleIdentifier(const NSString& identifier) {
    return send<"runningApplicationsWithBundleIdentifier:", NSArray>(theClass<"NSRunningApplication">, identifier);
  }

  /// Empty when the application has none.
  [[nodiscard]] Lent<NSString> bundleIdentifier() const { return send<"bundleIdentifier", Lent<NSString>>(*this); }
  void activateWithOptions(NSUInteger options) const { send<"activateWithOptions:", BOOL>(*this, options); }
};

class NSWorkspace : public NSObject {
public:
  using NSObject::NSObject;
  /// One for the life of the process, made as `NSString::constant` is.
  static const NSWorkspace& sharedWorkspace() {
    static const NSWorkspace* shared = nullptr;
    if (shared == nullptr) shared = new NSWorkspace(send<"sharedWorkspace", NSWorkspace>(theClass<"NSWorkspace">));
    return *shared;
  }

  /// The application that receives key presses, or none.
  [[nodiscard]] Lent<NSRunningApplication> frontmostApplication() const {
    return send<"frontmostApplication", Lent<NSRunningApplication>>(*this);
  }
  void openURL(const NSURL& url) const { send<"openURL:", BOOL>(*this, url); }
  /// Nothing happens when the text is no URL.
  static void openAddress(std::string_view address) {
    if (const NSURL url = NSURL::URLWithString(NSString::utf8(address))) sharedWorkspace().openURL(url);
  }
};

} // namespace platform
