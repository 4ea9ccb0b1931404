#include "desktop/session/WindowCommands.hpp"

#include <algorithm>

namespace desktop {
namespace {

/// Empty for a view that only holds others.
JournalEntry entryOf(View& view) {
  if (const auto* label = ifIs<TextField>(&view))
    return {label->face().bold ? "heading" : "label", textOf(label->text.get())};
  if (const auto* button = ifIs<Button>(&view)) {
    const std::string title = textOf(button->title.get());
    return button->isCheckbox() ? JournalEntry{"checkbox", title, button->isOn() ? "on" : "off"}
                                : JournalEntry{"button", title};
  }
  const auto* box = ifIs<Box>(&view);
  return box != nullptr && box->type == platform::NSBoxSeparator ? JournalEntry{"separator"} : JournalEntry{};
}

void forEachButton(const AppKit& appKit, const std::function<void(Button&)>& visit) {
  const Window* const window = appKit.frontWindow();
  if (window == nullptr) return;
  forEachView(*window->contentView(), [&](View& view) {
    if (auto* const button = ifIs<Button>(&view)) visit(*button);
  });
}

} // namespace

Button* buttonInWindow(const AppKit& appKit, const std::string& title, std::uint64_t row) {
  const auto units = utf16(title);
  Button* found = nullptr;
  forEachButton(appKit, [&](Button& button) {
    if (unitsOf(button.title.get()) == units && row-- == 1) found = &button;
  });
  return found;
}

std::vector<std::string> buttonsInWindow(const AppKit& appKit) {
  std::vector<std::string> titles;
  forEachButton(appKit, [&](const Button& button) {
    const std::string title = textOf(button.title.get());
    if (std::ranges::find(titles, title) == titles.end()) titles.push_back(title);
  });
  return titles;
}

bool clickInWindow(Desktop& desktop, const std::string& title, std::uint64_t row) {
  Button* const button = buttonInWindow(desktop.appKit, title, row);
  if (button == nullptr) return false;
  desktop.applications.frontmost = desktop.applications.tarnwick;
  button->press();
  return true;
}

bool closeWindow(const AppKit& appKit) {
  Window* const window = appKit.frontWindow();
  if (window == nullptr) return false;
  window->close();
  return true;
}

bool resizeWindow(const AppKit& appKit, CGSize size) {
  Window* const window = appKit.frontWindow();
  return window != nullptr && window->resize(size);
}

bool showWindow(const Desktop& desktop) {
  const Window* window = desktop.appKit.frontWindow();
  if (window == nullptr) return false;
  forEachView(*window->contentView(), [&](View& view) {
    const JournalEntry entry = entryOf(view);
    if (!entry.empty()) tell(entry);
  });
  return true;
}

} // namespace desktop
