/// What assistive software sees: who is trusted, which element has the keyboard focus.
#pragma once

#include "desktop/runtime/Part.hpp"

#include <optional>

namespace desktop {

/// The whole system, or one element of an application.
struct AccessibilityElement : Object {
  bool isSystemWide = false;
  std::optional<std::string> role;
};

/// How an application answers when it is asked for its focused element, or for that element's role.
enum class AccessibilityAnswer {
  Proper,
  NotAtAll, ///< the question waits for the platform's time-out
  Error,
  Nothing, ///< success, but no value
  WrongType,
};

struct Accessibility : Part<Accessibility> {
  /// Whether the user lets the program look on and tap keys.
  bool trusted = true;
  AccessibilityAnswer focusAnswer = AccessibilityAnswer::Proper;
  AccessibilityAnswer roleAnswer = AccessibilityAnswer::Proper;
};

} // namespace desktop
