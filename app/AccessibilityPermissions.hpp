/// Accessibility trust, without which the system grants no event tap.
#pragma once

namespace tarnwick {

struct AccessibilityPermissions {
  AccessibilityPermissions() = delete;

  /// Whether the process is trusted at this moment. When it is not, the system offers the user its own request; the
  /// call does not wait for the answer.
  static bool ensure();
  /// Tells the user where access is granted; returns once the alert is dismissed.
  static void showAlert();
};

} // namespace tarnwick
