/// The machine that the program believes it runs on, put together from the parts that the folders keep. One at a time;
/// everything on the main thread.
///
/// A folder of the stand-in includes only those before it: runtime, foundation, quartz and appkit mirror the headers of
/// platform/, one file for each under its name; then comes what stands here; drawing and session stand on it.
///
/// A session or a test owns the desktop, gives it what the user does next (`runLoop.nextCommand`), and hears of
/// everything that happens (`journal.reader`).
#pragma once

#include "desktop/appkit/AppKit.hpp"
#include "desktop/foundation/Bundles.hpp"
#include "desktop/foundation/CoreFoundation.hpp"
#include "desktop/foundation/Dispatch.hpp"
#include "desktop/foundation/UserDefaults.hpp"
#include "desktop/quartz/Accessibility.hpp"
#include "desktop/quartz/Applications.hpp"
#include "desktop/quartz/EventServices.hpp"
#include "desktop/runtime/Faults.hpp"

namespace desktop {

class Desktop {
  /// The first member: everything else is made of these classes.
  struct Classes {
    Classes() { registerAppKitClasses(); }
  } classes;

public:
  Journal journal;
  Queries queries;
  Faults faults;
  RunLoop runLoop;
  MainQueue queue;
  MainBundle mainBundle;
  InstalledBundles installed;
  StandardDefaults defaults;
  Applications applications;
  WindowServer server;
  Accessibility accessibility;
  AppKit appKit;

  /// The Finder runs, and the user's Editor in front of it.
  Desktop();
  ~Desktop();

  /// The user starts an application, without a bundle identifier when that is empty. The Finder reacts to keys and lies
  /// in a folder of the system's; others are found in /Applications from then on.
  RunningApplication& start(const std::string& name, const std::string& identifier);
};

/// What the Finder does with a key that it receives: Return begins or ends renaming, Escape ends it, Command-Delete
/// moves the selection to the Bin.
void finderReaction(RunningApplication& finder, const Event& event);

} // namespace desktop
