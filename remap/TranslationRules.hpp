/// The arithmetic of the rules: nothing but key codes and modifier flags.
#pragma once

#include "platform/KeyCodes.hpp"

#include <cstdint>
#include <initializer_list>
#include <optional>

namespace tarnwick {

/// What an event says about its key.
struct Key {
  /// Virtual key code: a physical position, whatever the keyboard layout.
  std::int64_t code;
  CGEventFlags flags;

  bool operator==(const Key&) const = default;
};

/// What becomes of a key event.
struct Outcome {
  enum class Kind { Pass, Rewrite, Swallow };

  Kind kind = Kind::Pass;
  /// The key to deliver in the event's place; only of a rewrite.
  Key key{};

  static constexpr Outcome pass() { return {}; }
  static constexpr Outcome rewrite(Key key) { return {Kind::Rewrite, key}; }
  static constexpr Outcome swallow() { return {Kind::Swallow, {}}; }
};

/// A set of key codes below 128, which all of the platform's are.
class KeyCodeSet {
public:
  constexpr KeyCodeSet(std::initializer_list<CGKeyCode> codes) {
    for (const CGKeyCode code : codes)
      halves[code / 64] |= bit(code);
  }
  [[nodiscard]] constexpr bool contains(std::int64_t code) const {
    return code >= 0 && code < 128 && (halves[code / 64] & bit(code)) != 0;
  }

private:
  std::uint64_t halves[2]{};

  static constexpr std::uint64_t bit(std::int64_t code) { return std::uint64_t{1} << (code % 64); }
};

/// The flags with Control taken away and `replacement` held instead; every other bit survives.
constexpr CGEventFlags withoutControl(CGEventFlags flags, CGEventFlags replacement) {
  return (flags & ~static_cast<CGEventFlags>(kCGEventFlagMaskControl)) | replacement;
}

/// Command is held and Control is not.
constexpr bool isLockScreenShortcut(Key key) {
  constexpr CGEventFlags tested = kCGEventFlagMaskCommand | kCGEventFlagMaskControl;
  return key.code == kVK_ANSI_L && (key.flags & tested) == kCGEventFlagMaskCommand;
}

constexpr Key lockScreen(Key key) {
  return {kVK_ANSI_Q, key.flags | kCGEventFlagMaskControl};
}

/// The key at the other end of the swap of 2 and the quote; none for other keys.
constexpr std::optional<Key> swapped(Key key) {
  if (key.code == kVK_ANSI_Quote) return Key{kVK_ANSI_2, key.flags};
  if (key.code == kVK_ANSI_2) return Key{kVK_ANSI_Quote, key.flags};
  return std::nullopt;
}

/// Ctrl+Y becomes Cmd+Shift+Z.
constexpr Key redo(Key key) {
  return {kVK_ANSI_Z, withoutControl(key.flags, kCGEventFlagMaskCommand | kCGEventFlagMaskShift)};
}

/// Without the fn bit that a function key carries.
constexpr CGEventFlags withoutFunction(CGEventFlags flags) {
  return flags & ~CGEventFlags{kCGEventFlagMaskSecondaryFn};
}

/// Forward Delete becomes the Finder's Command-Delete.
constexpr Key finderDelete(Key key) {
  return {kVK_Delete, withoutFunction(key.flags) | kCGEventFlagMaskCommand};
}

/// F2 becomes the Finder's Return.
constexpr Key finderRename(Key key) {
  return {kVK_Return, withoutFunction(key.flags)};
}

} // namespace tarnwick
