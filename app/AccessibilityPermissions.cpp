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
  alert.setMessageText(NSString::utf8("Accessibility Permission Required"));
  alert.setInformativeText(NSString::utf8("Enable Tarnwick in System Settings > Privacy & Security > Accessibility."));
  alert.addButtonWithTitle(NSString::utf8("OK"));
  alert.runModal();
}

} // namespace tarnwick
