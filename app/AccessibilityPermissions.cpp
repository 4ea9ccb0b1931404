#include "app/AccessibilityPermissions.hpp"

#include "platform/Accessibility.hpp"
#include "platform/Alert.hpp"
#include "platform/Collections.hpp"

namespace tarnwick {

using namespace platform;

bool AccessibilityPermissions::ensure() {
  const auto prompt = sharing(kAXTrustedCheckOptionPrompt);
  const auto options = NSDictionary::dictionaryWithObjectForKey(NSNumber::numberWithBool(YES), prompt);
  return AXIsProcessTrustedWithOptions(options.asCFDictionary()) != 0;
}

void AccessibilityPermissions::showAlert() {
  const auto alert = NSAlert::make();
  alert.setMessageText("Accessibility Permission Required");
  alert.setInformativeText("Enable Tarnwick in System Settings > Privacy & Security > Accessibility.");
  alert.addButtonWithTitle("OK");
  alert.runModal();
}

} // namespace tarnwick
