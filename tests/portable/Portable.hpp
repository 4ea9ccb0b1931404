/// What every test here rests on. These tests know the program and `platform/`, and nothing of the stand-in, so that
/// they run against the real frameworks too. They need no permission of the user: what a tap or a key press does is not
/// here.
#pragma once

#include "platform/Application.hpp"
#include "platform/Collections.hpp"
#include "platform/CoreFoundation.hpp"
#include "platform/Strings.hpp"

#include <gtest/gtest.h>

namespace tarnwick {

class PortableTest : public testing::Test {
  platform::AutoreleasePool pool;

protected:
  const platform::NSApplication application = platform::NSApplication::sharedApplication();

  /// Where the platform itself is not there, only what stands in for it.
  static bool isStandIn() { return objc_getClass("NSProcessInfo") == nullptr; }

  /// Lets the main run loop do what becomes due.
  static void runFor(double seconds) { CFRunLoopRunInMode(kCFRunLoopDefaultMode, seconds, false); }

  /// Takes the alert or panel away that is open by then, as if the user had chosen nothing. The run loop does it, since
  /// the main queue waits while a block of its own has one open.
  void dismissAfter(double seconds) const {
    const auto modes = platform::NSArray::of<platform::NSObject>({platform::sharing(kCFRunLoopCommonModes)});
    platform::send<"performSelector:withObject:afterDelay:inModes:">(
        application, platform::selectorNamed<"abortModal">(), nullptr, seconds, modes);
  }
};

/// Lets a test name a private member, which an explicit instantiation may:
///
///     struct Callback { friend constexpr auto memberOf(Callback); };
///     template struct Opened<Callback, &KeyRemapper::tapCallback>;   // and memberOf(Callback()) is that
template <class Tag, auto member> struct Opened {
  friend constexpr auto memberOf(Tag) { return member; }
};

} // namespace tarnwick
