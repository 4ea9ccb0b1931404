/// The application object.
#pragma once

#include "desktop/runtime/Runtime.hpp"

namespace desktop {

/// What an application begins with: in the Dock.
inline constexpr NSInteger NSApplicationActivationPolicyRegular = 0;

struct Application : Object {
  /// Not owned, as on the platform.
  id delegate = nullptr;
  NSInteger activationPolicy = NSApplicationActivationPolicyRegular;

  void setDelegate(id value);
  BOOL setActivationPolicy(NSInteger policy);
  void run();
  void terminate(id sender);
  void activateIgnoringOtherApps(BOOL ignoring);
};

/// Sends the delegate a notification that it may have no method for.
void tellDelegate(id delegate, const char* selector);

} // namespace desktop
