#include "desktop/session/WindowCommands.hpp"

namespace desktop {
namespace {

Button* findButton(View& inside, const std::string& title, std::uint64_t row) {
  Button* found = nullptr;
  forEachView(inside, [&](View& view) {
    auto* const button = ifIs<Button>(&view);
    if (button != nullptr && textOf(button->title.get()) == title && row-- == 1) found = button;
  });
  return found;
}

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

} // namespace

bool clickInWindow(Desktop& desktop, const std::string& title, std::uint64_t row) {
  const Window* window = desktop.appKit.frontWindow();
  Button* const button = window != nullptr ? findButton(*window->contentView(), title, row) : nullptr;
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
