/// Pictures of the screen: what the user of the desktop would see at this moment.
#pragma once

#include "desktop/quartz/Desktop.hpp"

namespace desktop {

/// The screen as SVG: the menu bar, with the status item's menu when that is open, and below it the windows and alerts.
/// Gives the views of windows their frames first, as the platform does before it draws.
std::string drawScreen(const Desktop& desktop, bool menuIsOpen);

} // namespace desktop
