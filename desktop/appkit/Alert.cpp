#include "desktop/appkit/AppKit.hpp"

namespace desktop {
namespace {

constexpr NSInteger firstButtonReturn = 1000;

} // namespace

Ref<Object> Alert::addButtonWithTitle(String* title) {
  buttons.push_back(shared(title));
  return create<Object>();
}

Fact Alert::fact() const {
  Fact fact{"alert", textOf(message.get()), textOf(informative.get())};
  for (const auto& button : buttons)
    fact.push_back(textOf(button.get()));
  return fact;
}

NSInteger Alert::runModal() {
  Desktop& desktop = Desktop::current();
  if (buttons.empty()) buttons.push_back(string(u"OK"));
  desktop.appKit->alerts.push_back(this);
  desktop.journal(fact());
  const NSInteger answer = runModalSession(session);
  desktop.appKit->alerts.pop_back();
  return answer;
}

bool Alert::press(const std::string& title, std::uint64_t row) {
  for (std::size_t index = 0; index < buttons.size(); ++index) {
    if (textOf(buttons[index].get()) != title || --row != 0) continue;
    session.answer = firstButtonReturn + static_cast<NSInteger>(index);
    Desktop::current().journal({"answer", title});
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
