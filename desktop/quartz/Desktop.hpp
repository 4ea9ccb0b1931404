/// The machine that the program believes it runs on: applications, keyboard events and taps, the main run loop and its
/// queue, the clock. One at a time; everything on the main thread.
///
/// A session or a test owns the desktop, gives it what the user does next (`nextCommand`), and hears of everything that
/// happens (`journal`).
#pragma once

#include "desktop/foundation/Foundation.hpp"
#include "desktop/quartz/Fact.hpp"
#include "desktop/quartz/MainQueue.hpp"
#include "desktop/quartz/WindowServer.hpp"

#include <functional>

namespace desktop {

struct AppKit;

/// An application that runs. The Finder and the user's own are played by the desktop.
struct RunningApplication : Object {
  std::string name;
  Ref<String> identifier;
  /// Role of the element with the keyboard focus; none when nothing has it.
  std::optional<std::string> role;
  /// What it does of its own accord with a key that it receives.
  void (*reaction)(RunningApplication&, const Event&) = nullptr;

  String* bundleIdentifier() const { return identifier.get(); }
  BOOL activateWithOptions(NSUInteger options);
};

/// Calls that fail on demand.
struct Faults {
  bool runLoopSource = false;
  bool keyDownEvent = false;
  bool keyUpEvent = false;
};

/// How an application answers when it is asked for its focused element, or for that element's role.
enum class AccessibilityAnswer {
  Proper,
  NotAtAll, ///< the question waits for the platform's time-out
  Error,
  Nothing, ///< success, but no value
  WrongType,
};

/// How often the program asked.
struct Queries {
  long frontmost = 0;
  long ownIdentifier = 0;
  long focusedElement = 0;
  long role = 0;
};

class Desktop {
public:
  Desktop();
  ~Desktop();
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;
  /// The one that exists; stops the program when none does.
  static Desktop& current();

  /// Hears every fact, in the order in which things happen.
  std::function<void(const Fact&)> journal = [](const Fact&) {};
  /// Hears what an application does of its own accord, as a sentence for people.
  std::function<void(const std::string&)> remark = [](const std::string&) {};
  /// Does what the user does next; false when there is nothing more.
  std::function<bool()> nextCommand = [] { return false; };

  bool trusted = true;
  Faults faults;
  AccessibilityAnswer focusAnswer = AccessibilityAnswer::Proper;
  AccessibilityAnswer roleAnswer = AccessibilityAnswer::Proper;
  Queries queries;
  /// Visible frame of the main screen; none without a screen.
  std::optional<CGSize> screen = CGSize{1440, 815};

  MainQueue queue;
  WindowServer server;
  /// The program's own, without a folder until it is opened.
  Ref<Bundle> mainBundle;
  Ref<UserDefaults> defaults;
  std::unique_ptr<AppKit> appKit;

  std::vector<Ref<RunningApplication>> applications;
  Ref<RunningApplication> frontmost;
  /// While the program runs.
  Ref<RunningApplication> tarnwick;

  /// Without a bundle identifier when that is empty.
  RunningApplication& start(const std::string& name, const std::string& identifier);
  /// False when none of that name runs.
  bool end(const std::string& name);
  RunningApplication* named(const std::string& name) const;

  /// The run loop: does what is due and then what the user does next, until `done`.
  void serve(const std::function<bool()>& done);
  /// Does everything that is due at the present moment.
  void settle();
  /// Moves the clock on, doing on the way what becomes due.
  void wait(double seconds);
  /// True once the user has nothing more to do: open alerts and panels end, then the program.
  bool inputEnded = false;
};

void registerQuartzClasses();
/// Registers all classes of the desktop, once.
void registerClasses();

} // namespace desktop
