#include "platform/Alert.hpp"
#include "platform/Dispatch.hpp"
#include "platform/Workspace.hpp"
#include "remap/KeyRemapper.hpp"

namespace tarnwick {

using namespace platform;

namespace {

/// True when the user consents.
bool askToMoveToBin() {
  const auto alert = NSAlert::make();
  alert.setAlertStyle(NSAlertStyleWarning);
  alert.setMessageText("Move selected item to Bin?");
  alert.setInformativeText("This will move the selected Finder item to Bin.");
  alert.addButtonWithTitle("Move to Bin");
  alert.addButtonWithTitle("Cancel");
  return alert.runModal() == NSAlertFirstButtonReturn;
}

/// Command-Delete, as if typed: both events or none, so that no key stays down.
void postCommandDelete() {
  const CF<CGEventRef> down(adopt, CGEventCreateKeyboardEvent(nullptr, kVK_Delete, true));
  if (!down) return;
  const CF<CGEventRef> up(adopt, CGEventCreateKeyboardEvent(nullptr, kVK_Delete, false));
  if (!up) return;
  // Replaced, not merged: modifiers that the user still holds stay out of it.
  CGEventSetFlags(down.get(), kCGEventFlagMaskCommand);
  CGEventSetFlags(up.get(), kCGEventFlagMaskCommand);
  CGEventPost(kCGHIDEventTap, down.get());
  CGEventPost(kCGHIDEventTap, up.get());
}

} // namespace

void KeyRemapper::promptFinderDeleteConfirmation() {
  if (isDeleteConfirmationPending) return;
  isDeleteConfirmationPending = true;
  asyncOnMain([weakRemapper = self] {
    const auto remapper = weakRemapper.lock();
    if (!remapper) return;
    if (askToMoveToBin()) remapper->activateFinderAndSendCommandDelete();
    remapper->isDeleteConfirmationPending = false;
  });
}

void KeyRemapper::activateFinderAndSendCommandDelete() {
  // The Finder needs a moment to come forward before the key press is meant for it.
  constexpr double delay = 0.05;
  const auto finders =
      NSRunningApplication::runningApplicationsWithBundleIdentifier(NSString::constant<finderBundleID>());
  if (finders.count() == 0) return;
  finders.objectAtIndex<NSRunningApplication>(0).activateWithOptions(0);
  asyncOnMainAfter(delay, postCommandDelete);
}

} // namespace tarnwick
