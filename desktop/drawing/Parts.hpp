/// The parts of a picture of the screen, each drawn by a function of its own.
#pragma once

#include "desktop/appkit/AppKit.hpp"
#include "desktop/drawing/Drawing.hpp"
#include "desktop/drawing/Svg.hpp"

namespace desktop {

inline constexpr double menuBarHeight = 24;

/// As large as fits within the rectangle; a template in the colour of the classes. An application without an icon has
/// a plain one.
void drawImage(Svg& svg, const Image& image, CGRect rect, std::string_view classes);
/// The one that Return presses is the default button.
void drawPushButton(Svg& svg, CGRect frame, const String* title, bool isDefault);
/// The view and all that is in it. `origin` is the top left corner of the content of its window.
void drawView(Svg& svg, View& view, CGPoint origin);

/// Background and edges of a window, alert or menu.
void drawPanel(Svg& svg, CGRect frame, double radius, std::string_view classes);
/// `screen` is the visible frame, on the page.
void drawWindow(Svg& svg, const Window& window, CGRect screen, bool isActive);
void drawAlert(Svg& svg, const Alert& alert, CGRect screen);
void drawOpenPanel(Svg& svg, const OpenPanel& panel, CGRect screen);

/// Over the whole width of the page.
void drawMenuBar(Svg& svg, const Desktop& desktop, double width, const MenuBarState& state);

} // namespace desktop
