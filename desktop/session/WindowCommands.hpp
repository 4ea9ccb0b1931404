/// What the user does with the program's front window, and sees in it.
#pragma once

#include "desktop/Desktop.hpp"

namespace desktop {

// Each is false when there is no window, or nothing in it to act on.

/// Presses the `row`th (from 1) button or checkbox of that title. That brings the program to the front.
bool clickInWindow(Desktop& desktop, const std::string& title, std::uint64_t row);
bool closeWindow(const AppKit& appKit);
/// Drags the window to that content size, as far as it lets itself be dragged.
bool resizeWindow(const AppKit& appKit, CGSize size);
/// That button or checkbox, or null.
Button* buttonInWindow(const AppKit& appKit, const std::string& title, std::uint64_t row);
/// The titles of all of them, each once.
std::vector<std::string> buttonsInWindow(const AppKit& appKit);
/// Tells of everything in the window that can be read or pressed, from top to bottom.
bool showWindow(const Desktop& desktop);

} // namespace desktop
