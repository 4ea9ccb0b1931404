/// Modal alerts.
#pragma once

#include "desktop/appkit/Control.hpp"
#include "desktop/runtime/Journal.hpp"
#include "platform/Alert.hpp"

namespace desktop {

struct Alert : Object {
  Ref<String> message;
  Ref<String> informative;
  NSUInteger style = platform::NSAlertStyleWarning;
  std::vector<Ref<Button>> buttons;

  void setAlertStyle(NSUInteger value) { style = value; }
  void setMessageText(String* text) { message = shared(text); }
  void setInformativeText(String* text) { informative = shared(text); }
  Button* addButtonWithTitle(String* title);
  NSInteger runModal();
  /// How a trace tells of it.
  JournalEntry entry() const;
  /// Presses the `row`th (from 1) button of that title; false when there is none.
  bool press(const std::string& title, std::uint64_t row);
};

} // namespace desktop
