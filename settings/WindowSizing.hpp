/// How large the settings window and what it scrolls are: plain arithmetic, in points.
#pragma once

#include "platform/Geometry.hpp"

#include <algorithm>
#include <optional>

namespace tarnwick {

inline constexpr CGFloat iconTopInset = 24;
inline constexpr CGFloat iconSize = 92;
/// From the icon to the settings, and around these on the other three sides.
inline constexpr CGFloat settingsInset = 20;
/// What stands above the settings.
inline constexpr CGFloat settingsTop = iconTopInset + iconSize + settingsInset;

/// Width of the document view in a scroll view that shows `visibleWidth`.
constexpr CGFloat documentWidth(CGFloat visibleWidth) {
  constexpr CGFloat narrowest = 400;
  return std::max(narrowest, visibleWidth);
}

/// Size of the document view: all of the settings, and never less than what the scroll view shows.
constexpr platform::NSSize documentSize(platform::NSSize visible, CGFloat settingsHeight) {
  return {documentWidth(visible.width), std::max(settingsHeight + settingsTop, visible.height)};
}

/// Content size of the window when it opens for the first time: `least`, or more where the settings need it, as far as
/// that leaves some of the screen free; but never below `windowMinimum` for the screen's sake. `screen` is the size of
/// the screen's visible frame; without one nothing limits the window.
constexpr platform::NSSize initialContentSize(platform::NSSize settings, platform::NSSize least,
                                              platform::NSSize windowMinimum, std::optional<platform::NSSize> screen) {
  constexpr CGFloat leftFree = 120;
  const platform::NSSize wanted{std::max(least.width, settings.width + 2 * settingsInset),
                                std::max(least.height, settings.height + settingsTop)};
  if (!screen) return wanted;
  return {std::min(wanted.width, std::max(windowMinimum.width, screen->width - leftFree)),
          std::min(wanted.height, std::max(windowMinimum.height, screen->height - leftFree))};
}

} // namespace tarnwick
