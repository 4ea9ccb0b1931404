#include "remap/KeyRemapper.hpp"

#include "platform/Bundles.hpp"

namespace tarnwick {

using namespace platform;

std::shared_ptr<KeyRemapper> KeyRemapper::make() {
  std::shared_ptr<KeyRemapper> made(new KeyRemapper);
  made->self = made;
  return made;
}

KeyRemapper::KeyRemapper() {
  loadExemptions();
}

CGEventRef KeyRemapper::handleEvent(CGEventTapProxy /*proxy*/, CGEventType type, CGEventRef event) {
  if (!enabled) return event;
  if (type != kCGEventKeyDown && type != kCGEventKeyUp) return event;
  const KeyEvent key(type, event);
  if (isFrontmostExempt()) return event;
  return translate(key) == Outcome::Swallow ? nullptr : event;
}

bool KeyRemapper::isFrontmostExempt() const {
  const Lent<NSString> bundleID = frontmostBundleID();
  if (!bundleID) return false;
  // The program's own windows get keys as typed.
  if (NSBundle::mainBundle().bundleIdentifier() == bundleID) return true;
  return exemptBundleIDs.contains(bundleID);
}

/// The first rule that decides ends it.
Outcome KeyRemapper::translate(const KeyEvent& key) {
  if (isLockScreenShortcut(key)) return mapLockScreen ? lockScreen(key) : Outcome::Pass;
  if (const auto outcome = translateFinderDelete(key)) return *outcome;
  if (const auto outcome = translateFinderRename(key)) return *outcome;
  // Shift alone: nothing is left for the rules of Control, whether or not the key is one of the two.
  if (mapAtQuoteSwap && primaryModifiers(key) == kCGEventFlagMaskShift) return swapAtAndQuote(key);
  return translateControl(key);
}

/// The desktop is asked before the key is looked at: the order of the questions is part of the behaviour.
std::optional<Outcome> KeyRemapper::translateFinderDelete(const KeyEvent& key) {
  if (!mapFinderDeleteToBin || !isFinderFrontmost() || isTypingInEditableField()) return std::nullopt;
  if (key.code != kVK_ForwardDelete || primaryModifiers(key) != 0) return std::nullopt;
  if (!mapFinderDeleteConfirm) return finderDelete(key);
  if (key.type == kCGEventKeyDown) promptFinderDeleteConfirmation();
  return Outcome::Swallow;
}

/// Also while a name is being edited.
std::optional<Outcome> KeyRemapper::translateFinderRename(const KeyEvent& key) const {
  if (!mapFinderRename || !isFinderFrontmost()) return std::nullopt;
  if (key.code != kVK_F2 || primaryModifiers(key) != 0) return std::nullopt;
  return finderRename(key);
}

Outcome KeyRemapper::translateControl(const KeyEvent& key) const {
  if ((key.flags & kCGEventFlagMaskControl) == 0) return Outcome::Pass;
  if (const auto gate = commandKeyCodes.find(key.code)) {
    if (!(this->*gate)) return Outcome::Pass;
    return key.code == kVK_ANSI_Y ? redo(key) : replaceControl(key, kCGEventFlagMaskCommand);
  }
  if (const auto gate = optionKeyCodes.find(key.code)) {
    if (this->*gate) return replaceControl(key, kCGEventFlagMaskAlternate);
  }
  return Outcome::Pass;
}

} // namespace tarnwick
