/// Pictures of the screen: what the user of the desktop would see at this moment.
#pragma once

#include "desktop/quartz/Desktop.hpp"

namespace desktop {

/// What the menu bar shows besides what is there.
struct MenuBarState {
  /// The status item's menu hangs from it.
  bool menuIsOpen = false;
  /// Whose menus it holds: the last application in front that has any. Tarnwick has none, so that the bar stays as it
  /// was when its window comes to the front.
  Ref<RunningApplication> owner;
};

/// The screen as SVG: the menu bar, and below it the windows and alerts. Gives the views of windows their frames first,
/// as the platform does before it draws.
std::string drawScreen(const Desktop& desktop, const MenuBarState& menuBar);

} // namespace desktop
