#include "desktop/appkit/Alert.hpp"

#include "desktop/appkit/AppKit.hpp"

namespace desktop {
Button* Alert::addButtonWithTitle(String* title) {
  buttons.push_back(Button::buttonWithTitle(title, nullptr, nullptr));
  return buttons.back().get();
}

JournalEntry Alert::entry() const {
  JournalEntry entry{"alert", textOf(message.get()), textOf(informative.get())};
  for (const auto& button : buttons)
    entry.push_back(textOf(button->title.get()));
  return entry;
}

NSInteger Alert::runModal() {
  if (buttons.empty()) addButtonWithTitle(string(u"OK").get());
  return AppKit::current().runModal(*this, entry());
}

bool Alert::press(const std::string& title, std::uint64_t row) {
  for (std::size_t index = 0; index < buttons.size(); ++index) {
    if (textOf(buttons[index]->title.get()) != title || --row != 0) continue;
    AppKit::current().answerModal(platform::NSAlertFirstButtonReturn + static_cast<NSInteger>(index), title);
    return true;
  }
  return false;
}

void registerAlertClass() {
  NativeClass<Alert>("NSAlert", "NSObject")
      .method<"setAlertStyle:", &Alert::setAlertStyle>()
      .method<"setMessageText:", &Alert::setMessageText>()
      .method<"setInformativeText:", &Alert::setInformativeText>()
      .method<"addButtonWithTitle:", &Alert::addButtonWithTitle>()
      .method<"runModal", &Alert::runModal>();
}

} // namespace desktop
