/// What assistive software sees: who is trusted, which element has the keyboard focus.
#pragma once

#include "desktop/runtime/Runtime.hpp"

#include <optional>
#include <string>

namespace desktop {

/// The whole system, or one element of an application.
struct AccessibilityElement : Object {
  bool isSystemWide = false;
  std::optional<std::string> role;
};

} // namespace desktop
