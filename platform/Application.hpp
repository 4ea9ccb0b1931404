/// The application object.
#pragma once

#include "platform/Send.hpp"

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

} // namespace platform
