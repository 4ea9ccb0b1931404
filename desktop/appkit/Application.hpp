/// The application object.
#pragma once

#include "desktop/runtime/Runtime.hpp"

namespace desktop {

struct Window;

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
  /// The panel in front; null for an alert, which is no window here.
  Window* modalWindow() const;
  void abortModal();
};

/// Sends the delegate a notification that it may have no method for.
void tellDelegate(id delegate, const char* selector);

} // namespace desktop
