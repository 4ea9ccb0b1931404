/// The applications that run, as the window server knows them: which is in front, and what has the focus in each.
#pragma once

#include "desktop/foundation/Strings.hpp"
#include "desktop/runtime/Part.hpp"

#include <map>
#include <optional>

namespace desktop {

struct Event;

/// An application that runs. The Finder and the user's own are played by the desktop; what the program asks of one by
/// message is in `appkit/Workspace.cpp`.
struct RunningApplication : Object {
  std::string name;
  Ref<String> identifier;
  /// The how many-th it is since the desktop began.
  long number = 0;
  /// Role of the element with the keyboard focus; none when nothing has it.
  std::optional<std::string> role;
  /// What it does of its own accord with a key that it receives.
  void (*reaction)(RunningApplication&, const Event&) = nullptr;
};

struct Applications : Part<Applications> {
  /// By name; those of one name in the order of their starts.
  std::multimap<std::string, Ref<RunningApplication>> running;
  Ref<RunningApplication> frontmost;
  /// The application with the keyboard focus where that is not the frontmost one: a panel of an application in the
  /// background can have it.
  Ref<RunningApplication> focusElsewhere;
  /// Whether the program is lent the identifier that an application has. Otherwise it is handed a copy each time, which
  /// goes with the autorelease pool: to keep it without a reference of one's own is then found out, but costs memory.
  bool lendIdentifiers = false;
  /// While the program runs.
  Ref<RunningApplication> tarnwick;

  /// Without a bundle identifier when that is empty. In the background, its focus in a group of elements.
  RunningApplication& start(const std::string& name, const std::string& identifier);
  /// False when none of that name runs.
  bool end(const std::string& name);
  /// Null when none of that name runs.
  RunningApplication* named(const std::string& name) const;
  /// In the order of their starts.
  std::vector<Ref<RunningApplication>> identifiedBy(String* identifier) const;

private:
  long started = 0;
};

} // namespace desktop
