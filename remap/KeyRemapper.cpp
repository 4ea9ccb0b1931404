#include "remap/KeyRemapper.hpp"

#include "platform/Application.hpp"

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

  const std::optional<Key> rewritten = translate(key);
  if (!rewritten) return event;
  if (rewritten->flags != key.flags) CGEventSetFlags(event, rewritten->flags);
  if (rewritten->code != key.code) CGEventSetIntegerValueField(event, kCGKeyboardEventKeycode, rewritten->code);
  return event;
}

bool KeyRemapper::isFrontmostExempt() const {
  const NSString bundleID = NSWorkspace::sharedWorkspace().frontmostApplication().bundleIdentifier();
  if (!bundleID) return false;
  // The program's own windows get keys as typed.
  const NSString own = NSBundle::mainBundle().bundleIdentifier();
  if (own && own == bundleID) return true;
  return exemptBundleIDs.contains(bundleID);
}

/// The key to deliver instead, or none to let the event pass.
std::optional<Key> KeyRemapper::translate(Key key) const {
  if (isLockScreenShortcut(key)) return mapLockScreen ? std::optional(lockScreen(key)) : std::nullopt;
  if (mapAtQuoteSwap && (key.flags & primaryModifierFlags) == kCGEventFlagMaskShift) {
    if (const auto other = swapped(key)) return other;
  }
  if ((key.flags & kCGEventFlagMaskControl) == 0) return std::nullopt;
  return translateControl(key);
}

std::optional<Key> KeyRemapper::translateControl(Key key) const {
  const auto code = static_cast<CGKeyCode>(key.code);
  if (code != key.code) return std::nullopt;
  if (commandKeyCodes.contains(code)) {
    if (!isMapped(code)) return std::nullopt;
    return code == kVK_ANSI_Y ? redo(key) : Key{code, withoutControl(key.flags, kCGEventFlagMaskCommand)};
  }
  if (mapWordSkip && optionKeyCodes.contains(code)) {
    return Key{code, withoutControl(key.flags, kCGEventFlagMaskAlternate)};
  }
  return std::nullopt;
}

bool KeyRemapper::isMapped(CGKeyCode commandKeyCode) const {
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
  default:
    return mapClipboard;
  }
}

} // namespace tarnwick
