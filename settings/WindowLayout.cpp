#include "settings/MappingsWindowController.hpp"
#include "settings/WindowSizing.hpp"

namespace tarnwick {

using namespace platform;

void MappingsWindowController::updateScrollLayout() {
  if (!settingsScrollView || !settingsDocumentView || !settingsStack) return;
  const NSSize visible = settingsScrollView.contentSize();
  // A document too low for anything, so that what is measured is the settings and not the height of last time.
  constexpr CGFloat collapsed = 10;
  settingsDocumentView.setFrame({{0, 0}, {documentWidth(visible.width), collapsed}});
  settingsDocumentView.layoutSubtreeIfNeeded();
  settingsStack.layoutSubtreeIfNeeded();
  settingsDocumentView.setFrame({{0, 0}, documentSize(visible, settingsStack.fittingSize().height)});
}

void MappingsWindowController::applyInitialWindowSizeIfNeeded() {
  const NSWindow fitted = window();
  if (didApplyInitialWindowSize || !fitted) return;
  updateScrollLayout();
  const NSScreen own = fitted.screen();
  const NSScreen screen = own ? own : NSScreen::mainScreen();
  const auto visible = screen ? std::optional(screen.visibleFrame().size) : std::nullopt;
  fitted.setContentSize(initialContentSize(settingsStack.fittingSize(), defaultContentSize, fitted.minSize(), visible));
  didApplyInitialWindowSize = true;
}

void MappingsWindowController::windowDidResize(id /*notification*/) {
  updateScrollLayout();
}

} // namespace tarnwick
