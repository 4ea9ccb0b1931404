/// The shortcuts as the user knows them: the table that says what is to become of a key event, and what becomes of it.
#pragma once

#include "desktop/Desktop.hpp"
#include "desktop/session/KeyNames.hpp"
#include "platform/KeyCodes.hpp"

#include <algorithm>
#include <ostream>
#include <string_view>
#include <vector>

namespace desktop {

constexpr CGEventFlags shift = kCGEventFlagMaskShift;
constexpr CGEventFlags control = kCGEventFlagMaskControl;
constexpr CGEventFlags option = kCGEventFlagMaskAlternate;
constexpr CGEventFlags command = kCGEventFlagMaskCommand;
constexpr CGEventFlags modifiers = shift | control | option | command;

using Calls = std::vector<std::string_view>;
inline const Calls flags{"CGEventSetFlags"};
inline const Calls code{"CGEventSetIntegerValueField"};
inline const Calls flagsThenCode{flags[0], code[0]};
inline const Calls codeThenFlags{code[0], flags[0]};

enum class Where { Anywhere, Finder, FinderOutsideText };
using enum Where;

constexpr std::string_view clipboard = "Clipboard (Ctrl+C/V/X/A/Z)";
constexpr std::string_view redo = "Redo (Ctrl+Y -> Cmd+Shift+Z)";
constexpr std::string_view newFile = "New (Ctrl+N)";
constexpr std::string_view save = "Save (Ctrl+S)";
constexpr std::string_view wordSkip = "Word Skip (Ctrl+Left/Right)";
constexpr std::string_view find = "Find (Ctrl+F)";
constexpr std::string_view swap = "Swap @ and \"";
constexpr std::string_view bold = "Bold (Ctrl+B)";
constexpr std::string_view underline = "Underline (Ctrl+U)";
constexpr std::string_view italic = "Italic (Ctrl+I)";
constexpr std::string_view lockScreen =
    "Lock Screen (Cmd+L on a Mac keyboard, Win+L on a Windows keyboard -> Cmd+Ctrl+Q)";
constexpr std::string_view deleteToBin = "Forward Delete key moves selection to Bin";
constexpr std::string_view confirm = "Confirm before moving to Bin";
constexpr std::string_view rename = "Rename selected item (F2 -> Return)";

constexpr CGEventFlags besideControl = shift | option | command;

/// One shortcut as the user knows it.
struct Shortcut {
  KeyStroke typed;
  /// Modifiers that may be held with those of `typed`; they stay.
  CGEventFlags beside;
  KeyStroke delivered;
  /// What of the event is overwritten, in this order.
  Calls set;
  Where where;
  /// Turns it off.
  std::string_view checkbox;

  Shortcut(const char* from, CGEventFlags others, const char* to, Calls calls, Where place, std::string_view title)
      : typed(keyNamed(from)), beside(others), delivered(keyNamed(to)), set(std::move(calls)), where(place),
        checkbox(title) {}
};

inline const Shortcut shortcuts[] = {
    {"ctrl+c", besideControl, "cmd+c", flags, Anywhere, clipboard},
    {"ctrl+v", besideControl, "cmd+v", flags, Anywhere, clipboard},
    {"ctrl+x", besideControl, "cmd+x", flags, Anywhere, clipboard},
    {"ctrl+a", besideControl, "cmd+a", flags, Anywhere, clipboard},
    {"ctrl+z", besideControl, "cmd+z", flags, Anywhere, clipboard},
    {"ctrl+y", besideControl, "cmd+shift+z", codeThenFlags, Anywhere, redo},
    {"ctrl+n", besideControl, "cmd+n", flags, Anywhere, newFile},
    {"ctrl+s", besideControl, "cmd+s", flags, Anywhere, save},
    {"ctrl+left", besideControl, "option+left", flags, Anywhere, wordSkip},
    {"ctrl+right", besideControl, "option+right", flags, Anywhere, wordSkip},
    {"ctrl+f", besideControl, "cmd+f", flags, Anywhere, find},
    {"shift+quote", 0, "shift+2", code, Anywhere, swap},
    {"shift+2", 0, "shift+quote", code, Anywhere, swap},
    {"ctrl+b", besideControl, "cmd+b", flags, Anywhere, bold},
    {"ctrl+u", besideControl, "cmd+u", flags, Anywhere, underline},
    {"ctrl+i", besideControl, "cmd+i", flags, Anywhere, italic},
    {"cmd+l", shift | option, "cmd+ctrl+q", flagsThenCode, Anywhere, lockScreen},
    {"forwarddelete", 0, "cmd+delete", flagsThenCode, FinderOutsideText, deleteToBin},
    {"f2", 0, "return", flagsThenCode, Finder, rename},
};

/// A desktop on which keys are typed.
struct Situation {
  const char* name;
  bool finder;
  bool text;
  /// The checkboxes that are off.
  std::vector<std::string_view> off;
};

/// A key code as the platform hands it over, wider than any key's, and the flags with it.
struct Typed {
  std::int64_t code;
  CGEventFlags flags;
};

/// What becomes of a key event, and what the program asks and does about it.
struct Fate {
  bool swallowed = false;
  std::int64_t code = 0;
  CGEventFlags flags = 0;
  Calls calls;
  long frontmost = 0;
  long ownIdentifier = 0;
  long focusedElement = 0;
  long role = 0;

  bool operator==(const Fate&) const = default;
  friend void PrintTo(const Fate& fate, std::ostream* stream) {
    *stream << (fate.swallowed ? "swallowed, code 0x" : "code 0x") << std::hex << fate.code << " flags 0x" << fate.flags
            << std::dec << "; frontmost application asked for " << fate.frontmost << ", own identifier "
            << fate.ownIdentifier << ", focus " << fate.focusedElement << ", role " << fate.role << " times; calls";
    for (const std::string_view call : fate.calls)
      *stream << ' ' << call;
  }
};

inline bool isMeant(const Shortcut& shortcut, const Typed& key, const Situation& situation) {
  if (key.code != shortcut.typed.code) return false;
  if ((key.flags & modifiers & ~shortcut.beside) != (shortcut.typed.flags & modifiers)) return false;
  if (shortcut.where == Anywhere) return true;
  return situation.finder && (shortcut.where == Finder || !situation.text);
}

/// What the table says. The Finder's shortcuts ask about the desktop before they look at the key.
inline Fate expected(const Typed& key, const Situation& situation) {
  Fate fate{false, key.code, key.flags, {"CGEventGetFlags", "CGEventGetIntegerValueField"}, 1, 1, 0, 0};
  const auto isOn = [&](std::string_view checkbox) {
    return std::ranges::find(situation.off, checkbox) == situation.off.end();
  };
  std::string_view decided;
  for (const Shortcut& shortcut : shortcuts) {
    if (!isMeant(shortcut, key, situation)) continue;
    decided = shortcut.checkbox;
    if (!isOn(decided)) break;
    fate.swallowed = decided == deleteToBin && isOn(confirm);
    if (fate.swallowed) break;
    fate.code = shortcut.delivered.code;
    fate.flags &= ~(shortcut.typed.flags & ~shortcut.delivered.flags);
    fate.flags |= shortcut.delivered.flags & ~shortcut.typed.flags;
    fate.calls.insert(fate.calls.end(), shortcut.set.begin(), shortcut.set.end());
  }
  if (decided == lockScreen) return fate;
  if (isOn(deleteToBin)) {
    ++fate.frontmost;
    fate.focusedElement = fate.role = situation.finder ? 1 : 0;
    if (decided == deleteToBin) return fate;
  }
  if (isOn(rename)) ++fate.frontmost;
  return fate;
}

/// The event through the taps, as the window server sends it.
inline Fate actual(Desktop& machine, Event& event, CGEventType type, const Typed& key) {
  Fate fate;
  event.type = type;
  event.code = key.code;
  event.flags = key.flags;
  event.calls = &fate.calls;
  machine.queries.reset();
  fate.swallowed = machine.server.throughTaps(&event) == nullptr;
  fate.code = event.code;
  fate.flags = event.flags;
  fate.frontmost = machine.queries.frontmost;
  fate.ownIdentifier = machine.queries.ownIdentifier;
  fate.focusedElement = machine.queries.focusedElement;
  fate.role = machine.queries.role;
  return fate;
}

} // namespace desktop
