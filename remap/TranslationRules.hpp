/// What the rules read of a key event, and what each rewrite writes into it.
#pragma once

#include "platform/KeyCodes.hpp"

#include <cstdint>
#include <initializer_list>

namespace tarnwick {

/// What becomes of a key event: it goes on as it came, goes on rewritten in place, or ends here.
enum class Outcome { Pass, Rewrite, Swallow };

/// A key event in the tap's hands, for as long as the callback runs: what it said when it came, and the event itself,
/// which a rewrite changes in place.
class KeyEvent {
public:
  KeyEvent(CGEventType eventType, CGEventRef handed)
      : type(eventType), flags(CGEventGetFlags(handed)),
        code(CGEventGetIntegerValueField(handed, kCGKeyboardEventKeycode)), event(handed) {}

  /// Key down or key up.
  const CGEventType type;
  const CGEventFlags flags;
  /// Virtual key code: a physical position, whatever the keyboard layout.
  const std::int64_t code;

  void setFlags(CGEventFlags value) const { CGEventSetFlags(event, value); }
  void setCode(CGKeyCode value) const { CGEventSetIntegerValueField(event, kCGKeyboardEventKeycode, value); }

private:
  const CGEventRef event;
};

/// The switch of each key of a rule, found by key code. A key that stands in two rows, and a code beyond all keys'
/// codes, do not compile.
template <class Owner> class KeyCodeTable {
public:
  using Switch = bool Owner::*;
  struct Row {
    CGKeyCode code;
    Switch gate;
  };

  constexpr KeyCodeTable(std::initializer_list<Row> rows) {
    for (Switch& gate : gates)
      gate = nullptr;
    for (const Row& row : rows) {
      Switch& gate = gates[row.code];
      if (gate != nullptr) __builtin_trap(); // a key in two rows: no constant expression, so no table
      gate = row.gate;
    }
  }

  [[nodiscard]] constexpr bool sharesKeyWith(const KeyCodeTable& other) const {
    for (std::int64_t code = 0; code < keys; ++code) {
      if (find(code) != nullptr && other.find(code) != nullptr) return true;
    }
    return false;
  }

  /// Null for keys that the rule does not know.
  [[nodiscard]] constexpr Switch find(std::int64_t code) const {
    return code >= 0 && code < keys ? gates[code] : nullptr;
  }

private:
  /// All of the platform's virtual key codes are below 128.
  static constexpr std::int64_t keys = 128;
  Switch gates[keys];
};

/// The flags with Control taken away and `replacement` held instead; every other bit survives.
constexpr CGEventFlags withoutControl(CGEventFlags flags, CGEventFlags replacement) {
  return (flags & ~static_cast<CGEventFlags>(kCGEventFlagMaskControl)) | replacement;
}

/// Without the fn bit that a function key carries.
constexpr CGEventFlags withoutFunction(CGEventFlags flags) {
  return flags & ~static_cast<CGEventFlags>(kCGEventFlagMaskSecondaryFn);
}

/// Command is held and Control is not.
inline bool isLockScreenShortcut(const KeyEvent& key) {
  constexpr CGEventFlags tested = kCGEventFlagMaskCommand | kCGEventFlagMaskControl;
  return key.code == kVK_ANSI_L && (key.flags & tested) == kCGEventFlagMaskCommand;
}

// The rewrites. Each writes what it names and nothing else, in this order, also when the value is there already.

/// Cmd+L becomes Cmd+Ctrl+Q.
inline Outcome lockScreen(const KeyEvent& key) {
  key.setFlags(key.flags | kCGEventFlagMaskControl);
  key.setCode(kVK_ANSI_Q);
  return Outcome::Rewrite;
}

/// Forward Delete becomes the Finder's Command-Delete.
inline Outcome finderDelete(const KeyEvent& key) {
  key.setFlags(withoutFunction(key.flags) | kCGEventFlagMaskCommand);
  key.setCode(kVK_Delete);
  return Outcome::Rewrite;
}

/// F2 becomes the Finder's Return.
inline Outcome finderRename(const KeyEvent& key) {
  key.setFlags(withoutFunction(key.flags));
  key.setCode(kVK_Return);
  return Outcome::Rewrite;
}

/// 2 and the quote trade places; other keys pass.
inline Outcome swapAtAndQuote(const KeyEvent& key) {
  if (key.code != kVK_ANSI_Quote && key.code != kVK_ANSI_2) return Outcome::Pass;
  key.setCode(key.code == kVK_ANSI_2 ? kVK_ANSI_Quote : kVK_ANSI_2);
  return Outcome::Rewrite;
}

/// Ctrl+Y becomes Cmd+Shift+Z.
inline Outcome redo(const KeyEvent& key) {
  key.setCode(kVK_ANSI_Z);
  key.setFlags(withoutControl(key.flags, kCGEventFlagMaskCommand | kCGEventFlagMaskShift));
  return Outcome::Rewrite;
}

/// Control becomes another modifier; the key stays.
inline Outcome replaceControl(const KeyEvent& key, CGEventFlags replacement) {
  key.setFlags(withoutControl(key.flags, replacement));
  return Outcome::Rewrite;
}

} // namespace tarnwick
