/// CoreFoundation's Mach ports, run-loop sources and the main run loop.
#pragma once

#include "desktop/runtime/Part.hpp"
#include "platform/CoreFoundation.hpp"

#include <functional>
#include <map>

namespace desktop {

struct RunLoopSource;

/// What messages from elsewhere arrive at.
struct MachPort : Object {
  /// What has the main run loop serve the port in the common modes. Kept alive by the loop meanwhile.
  Ref<RunLoopSource> scheduled;

  ~MachPort();
};

/// What puts a port's messages on a run loop.
struct RunLoopSource : Object {
  Ref<MachPort> port;
};

/// The main run loop: it does what is due, and then what the user does next.
struct RunLoop : Part<RunLoop> {
  /// Does what the user does next; false when there is nothing more.
  std::function<bool()> nextCommand = [] { return false; };
  /// Sends the next event that waits on its way; false when there is none. The window server's part.
  std::function<bool()> sendNextEvent = [] { return false; };
  /// True once the user has nothing more to do: open alerts and panels end, then the program.
  bool inputEnded = false;

  /// Does `work` in so many seconds, also while a block of the main queue is running.
  void addTimer(double seconds, std::function<void()> work);
  /// Does what is due and then what the user does next, until `done`.
  void serve(const std::function<bool()>& done);
  /// Does everything that is due at the present moment.
  void settle();
  /// Moves the clock on, doing on the way what becomes due.
  void wait(double seconds);

private:
  /// By the moment at which they are due.
  std::multimap<std::int64_t, std::function<void()>> timers;

  bool fireNextTimer();
};

} // namespace desktop
