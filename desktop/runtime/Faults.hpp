/// What tests make fail in the machine, and what they count in it.
#pragma once

#include "desktop/runtime/Part.hpp"

namespace desktop {

/// Calls that fail on demand.
struct Faults : Part<Faults> {
  bool runLoopSource = false;
  bool keyDownEvent = false;
  bool keyUpEvent = false;
};

/// How often the program asked.
struct Queries : Part<Queries> {
  long frontmost = 0;
  long ownIdentifier = 0;
  long focusedElement = 0;
  long role = 0;

  void reset() { frontmost = ownIdentifier = focusedElement = role = 0; }
};

} // namespace desktop
