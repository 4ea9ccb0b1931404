#include "desktop/drawing/Drawing.hpp"

#include "desktop/drawing/Shapes.hpp"

namespace desktop {
namespace {

std::string drawNoScreen() {
  constexpr CGSize page{240, 80};
  Svg svg(page);
  svg.rectangle({{0, 0}, page}, 0, "window");
  svg.centredText(u"No screen", {page.width / 2, page.height / 2}, {}, "secondaryLabel");
  return std::move(svg).finished();
}

void drawWallpaper(Svg& svg, CGSize page) {
  const CGRect whole{{0, 0}, page};
  svg.rectangle(whole, 0, "sky");
  const auto wave = [&](double left, double right) {
    const auto at = [&](double x, double y) { return svgNumber(x * page.width) + ' ' + svgNumber(y * page.height); };
    svg.path({0, 0},
             "M" + at(0, left) + "C" + at(0.3, left - 0.2) + ' ' + at(0.6, right + 0.2) + ' ' + at(1, right) + "L" +
                 at(1, 1) + "L" + at(0, 1) + "Z",
             "hill");
  };
  wave(0.78, 0.62);
  wave(0.9, 0.82);
}

/// From the back to the front.
void drawProgram(Svg& svg, const Desktop& desktop, CGRect screen) {
  const AppKit& appKit = desktop.appKit;
  const Object* const modal = appKit.frontModal();
  const bool isFrontmost = desktop.applications.frontmost.get() == desktop.applications.tarnwick.get();
  for (const auto& [order, window] : appKit.windows) {
    window->layOut();
    svg.isReachable = modal == nullptr && window == appKit.frontWindow();
    drawWindow(svg, *window, screen, isFrontmost && svg.isReachable);
  }
  for (const ModalSession* session : appKit.modalSessions) {
    svg.isReachable = session->shown == modal;
    if (const auto* alert = ifIs<Alert>(session->shown)) drawAlert(svg, *alert, screen);
    if (const auto* panel = ifIs<OpenPanel>(session->shown)) drawOpenPanel(svg, *panel, screen);
  }
}

} // namespace

std::string drawScreen(const Desktop& desktop, const MenuBarState& menuBar) {
  if (!desktop.appKit.screen) return drawNoScreen();
  const CGSize page{desktop.appKit.screen->width, menuBarHeight + desktop.appKit.screen->height};
  Svg svg(page);
  drawWallpaper(svg, page);
  if (!desktop.appKit.isTerminated) drawProgram(svg, desktop, {{0, menuBarHeight}, *desktop.appKit.screen});
  svg.isReachable = desktop.appKit.frontModal() == nullptr;
  drawMenuBar(svg, desktop, page.width, menuBar);
  return std::move(svg).finished();
}

} // namespace desktop
