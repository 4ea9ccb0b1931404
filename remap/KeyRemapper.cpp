#include "remap/KeyRemapper.hpp"

namespace tarnwick {

using namespace platform;

KeyRemapper::KeyRemapper() {
  loadExemptions();
}

CGEventRef KeyRemapper::handleEvent(CGEventTapProxy /*proxy*/, CGEventType type, CGEventRef event) {
  if (!enabled) return event;
  if (type != kCGEventKeyDown && type != kCGEventKeyUp) return event;
  const Key key{CGEventGetIntegerValueField(event, kCGKeyboardEventKeycode), CGEventGetFlags(event)};
  if (isFrontmostExempt()) return event;

  const Outcome outcome = translate(type, key);
  if (outcome.kind == Outcome::Kind::Swallow) return nullptr;
  if (outcome.kind == Outcome::Kind::Rewrite) {
    if (outcome.key.flags != key.flags) CGEventSetFlags(event, outcome.key.flags);
    if (outcome.key.code != key.code) {
      CGEventSetIntegerValueField(event, kCGKeyboardEventKeycode, outcome.key.code);
    }
  }
  return event;
}

bool KeyRemapper::isFrontmostExempt() const {
  const Lent<NSString> bundleID = frontmostBundleID();
  if (!bundleID) return false;
  // The program's own windows get keys as typed.
  if (NSBundle::mainBundle().bundleIdentifier() == bundleID) return true;
  return exemptBundleIDs.contains(bundleID);
}

/// The first rule that decides ends it.
Outcome KeyRemapper::translate(CGEventType type, Key key) {
  if (isLockScreenShortcut(key)) return mapLockScreen ? Outcome::rewrite(lockScreen(key)) : Outcome::pass();
  if (const auto outcome = translateFinderDelete(type, key)) return *outcome;
  if (const auto outcome = translateFinderRename(key)) return *outcome;
  if (mapAtQuoteSwap && (key.flags & primaryModifierFlags) == kCGEventFlagMaskShift) {
    if (const auto other = swapped(key)) return Outcome::rewrite(*other);
  }
  if ((key.flags & kCGEventFlagMaskControl) == 0) return Outcome::pass();
  return translateControl(key);
}

/// The desktop is asked before the key is looked at: the order of the questions is part of the behaviour.
std::optional<Outcome> KeyRemapper::translateFinderDelete(CGEventType type, Key key) {
  if (!mapFinderDeleteToBin || !isFinderFrontmost() || isTypingInEditableField()) return std::nullopt;
  if (key.code != kVK_ForwardDelete || hasPrimaryModifier(key)) return std::nullopt;
  if (!mapFinderDeleteConfirm) return Outcome::rewrite(finderDelete(key));
  if (type == kCGEventKeyDown) promptFinderDeleteConfirmation();
  return Outcome::swallow();
}

/// Also while a name is being edited.
std::optional<Outcome> KeyRemapper::translateFinderRename(Key key) const {
  if (!mapFinderRename || !isFinderFrontmost()) return std::nullopt;
  if (key.code != kVK_F2 || hasPrimaryModifier(key)) return std::nullopt;
  return Outcome::rewrite(finderRename(key));
}

Outcome KeyRemapper::translateControl(Key key) const {
  if (commandKeyCodes.contains(key.code)) {
    if (!isMapped(key.code)) return Outcome::pass();
    return Outcome::rewrite(key.code == kVK_ANSI_Y ? redo(key)
                                                   : Key{key.code, withoutControl(key.flags, kCGEventFlagMaskCommand)});
  }
  if (mapWordSkip && optionKeyCodes.contains(key.code)) {
    return Outcome::rewrite({key.code, withoutControl(key.flags, kCGEventFlagMaskAlternate)});
  }
  return Outcome::pass();
}

bool KeyRemapper::isMapped(std::int64_t commandKeyCode) const {
  switch (commandKeyCode) {
  case kVK_ANSI_Y:
    return mapRedo;
  case kVK_ANSI_S:
    return mapSave;
  case kVK_ANSI_F:
    return mapFind;
  case kVK_ANSI_B:
    return mapBold;
  case kVK_ANSI_U:
    return mapUnderline;
  case kVK_ANSI_I:
    return mapItalic;
  case kVK_ANSI_N:
    return mapNewFile;
  default: // C, V, X, A, Z
    return mapClipboard;
  }
}

} // namespace tarnwick
