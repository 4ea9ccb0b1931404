/// Pictures of the screen: what the user of the desktop would see at this moment.
///
/// Read this header first, then Shapes, whose functions draw one thing each, and the files that they stand in: MenuBar,
/// Windows, Views. Svg writes what they draw, Style has its colours and fonts, Pictures the images of the bundle.
#pragma once

#include "desktop/Desktop.hpp"

namespace desktop {

/// What a picture of the menu bar needs to know beside the desktop: what the user has done to get there.
struct MenuBarState {
  /// The status item's menu hangs from it.
  bool menuIsOpen = false;
  /// The application whose menus the bar holds: the one that was last in front, Tarnwick aside. Tarnwick has none, and
  /// so the bar stays as it was when the settings window comes to the front.
  Ref<RunningApplication> owner;
};

/// The screen as SVG: the menu bar, and below it the windows and alerts. Gives the views of windows their frames first,
/// as the platform does before it draws.
///
/// Groups say in `data-` attributes what they are to the user, for pages in which visitors act on the picture: who is
/// in front (`front`), what things stand in (`window`, `menu`, `alert`, `panel`), what to click on (`status`, `entry`,
/// `button`, `checkbox`, `close`, `cancel`, and by its path what to `choose`), and how far things move to the end of
/// what can be scrolled (`scroll`, `travel`).
std::string drawScreen(const Desktop& desktop, const MenuBarState& menuBar);

} // namespace desktop
