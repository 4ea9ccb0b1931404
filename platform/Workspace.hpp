/// The workspace, and the applications that run.
#pragma once

#include "platform/Bundles.hpp"
#include "platform/Collections.hpp"

namespace platform {

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
  static Lent<NSWorkspace> sharedWorkspace() {
    return madeOnce<[] { return send<"sharedWorkspace", NSWorkspace>(theClass<"NSWorkspace">); }>();
  }

  /// The application that receives key presses, or none.
  [[nodiscard]] Lent<NSRunningApplication> frontmostApplication() const {
    return send<"frontmostApplication", Lent<NSRunningApplication>>(*this);
  }
  void openURL(const NSURL& url) const { send<"openURL:", BOOL>(*this, url); }
  /// Nothing happens when the text is no URL.
  static void openAddress(std::string_view address) {
    if (const NSURL url = NSURL::URLWithString(NSString(address))) sharedWorkspace().openURL(url);
  }
};

} // namespace platform
