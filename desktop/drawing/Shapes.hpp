/// The things that a picture of the screen shows, each drawn by a function of its own.
#pragma once

#include "desktop/appkit/AppKit.hpp"
#include "desktop/drawing/Drawing.hpp"
#include "desktop/drawing/Svg.hpp"

namespace desktop {

inline constexpr double menuBarHeight = 24;

/// The image, as large as fits within the rectangle. Of a template, such as the status item's image, only the shape is
/// taken, and filled with the colour of `classes`. An image without a file, the icon of an application that has none,
/// is a plain tile.
void drawImage(Svg& svg, const Image& image, CGRect rect, std::string_view classes);
/// A button with a raised edge. The default button, which Return presses, has the accent's colour.
void drawPushButton(Svg& svg, CGRect frame, const String* title, bool isDefault);
/// The view and all that is in it. `origin` is the top left corner of the content of its window.
void drawView(Svg& svg, View& view, CGPoint origin);

/// Background, shadow and edges of a window, alert or menu.
void drawSurface(Svg& svg, CGRect frame, double radius, std::string_view classes);
// Windows, alerts and panels stand on `screen`: the screen below the menu bar, in coordinates of the page.
void drawWindow(Svg& svg, const Window& window, CGRect screen, bool isActive);
void drawAlert(Svg& svg, const Alert& alert, CGRect screen);
void drawOpenPanel(Svg& svg, const OpenPanel& panel, CGRect screen);

/// The menu bar over the whole `width` of the page, and the status item's menu if it is open.
void drawMenuBar(Svg& svg, const Desktop& desktop, double width, const MenuBarState& state);

} // namespace desktop
