/// What tests make fail in the machine, and what they count in it.
#pragma once

#include "desktop/runtime/Part.hpp"

#include <map>

namespace desktop {

/// Calls of the platform that answer nothing or no on demand. One goes by the platform's name: a function's, or class
/// and selector of a message, as in "CGEventCreateKeyboardEvent" and "NSStatusItem button".
///
/// The calls that can fail ask `fails()`; the methods among them are registered as `fallibleMethod`.
class Faults : public Part<Faults> {
public:
  static constexpr long every = 0;

  ~Faults() { anyFails = false; }

  /// Makes the `nth` of these calls fail, counted from 1 and from when something was first to fail.
  void fail(const std::string& call, long nth = every) {
    failing[call] = nth;
    anyFails = true;
  }
  /// Makes the `nth` of all calls that can fail do so, whichever it is.
  void failAny(long nth) {
    failingOfAll = nth;
    anyFails = true;
  }
  /// The call that `failAny` made fail; empty while there were not so many.
  const std::string& failed() const { return failedOfAll; }

  /// Counts the call.
  bool strikes(const std::string& call);

private:
  std::map<std::string, long> failing;
  std::map<std::string, long> made;
  long failingOfAll = -1;
  long madeOfAll = 0;
  std::string failedOfAll;
};

/// How often the program has asked for each of these.
struct Queries : Part<Queries> {
  long frontmost = 0;
  long ownIdentifier = 0;
  long focusedElement = 0;
  long role = 0;

  void reset() { frontmost = ownIdentifier = focusedElement = role = 0; }
};

} // namespace desktop
