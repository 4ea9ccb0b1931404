#include "desktop/session/KeyNames.hpp"
#include "desktop/session/WindowCommands.hpp"
#include "platform/KeyCodes.hpp"
#include "tests/support/TestDesktop.hpp"

#include <limits>
#include <ostream>
#include <set>

namespace desktop {
namespace {

constexpr CGEventFlags shift = kCGEventFlagMaskShift;
constexpr CGEventFlags control = kCGEventFlagMaskControl;
constexpr CGEventFlags option = kCGEventFlagMaskAlternate;
constexpr CGEventFlags command = kCGEventFlagMaskCommand;
constexpr CGEventFlags modifiers = shift | control | option | command;

using Calls = std::vector<std::string_view>;
const Calls flags{"CGEventSetFlags"};
const Calls code{"CGEventSetIntegerValueField"};
const Calls flagsThenCode{flags[0], code[0]};
const Calls codeThenFlags{code[0], flags[0]};

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

const Shortcut shortcuts[] = {
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

/// A desktop on which every key is typed.
struct Situation {
  const char* name;
  bool finder;
  bool text;
  /// The checkbox that is off.
  std::string_view off;
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

bool isMeant(const Shortcut& shortcut, const Typed& key, const Situation& situation) {
  if (key.code != shortcut.typed.code) return false;
  if ((key.flags & modifiers & ~shortcut.beside) != (shortcut.typed.flags & modifiers)) return false;
  if (shortcut.where == Anywhere) return true;
  return situation.finder && (shortcut.where == Finder || !situation.text);
}

/// What the table says. The Finder's shortcuts ask about the desktop before they look at the key.
Fate expected(const Typed& key, const Situation& situation) {
  Fate fate{false, key.code, key.flags, {"CGEventGetFlags", "CGEventGetIntegerValueField"}, 1, 1, 0, 0};
  const auto isOn = [&](std::string_view checkbox) { return checkbox != situation.off; };
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
Fate actual(Desktop& machine, Event& event, CGEventType type, const Typed& key) {
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

/// Every code that a keyboard might send, and what must not be taken for the key of its low bits.
std::vector<std::int64_t> everyCode() {
  std::vector<std::int64_t> codes{0xffff, std::numeric_limits<std::int64_t>::min(),
                                  std::numeric_limits<std::int64_t>::max()};
  for (std::int64_t each = 0; each <= 0x1ff; ++each)
    codes.push_back(each);
  for (const Shortcut& shortcut : shortcuts) {
    for (const int above : {16, 32, 47, 63})
      codes.push_back(shortcut.typed.code | static_cast<std::int64_t>(std::uint64_t{1} << above));
  }
  return codes;
}

// What a keyboard says of itself beside the modifiers: which of two Control keys it was, and the like.
constexpr CGEventFlags device = 0xffff;
constexpr CGEventFlags unused = ~CGEventFlags{0} << 32;
const std::vector<CGEventFlags> everyMark{
    0,
    device,
    kCGEventFlagMaskAlphaShift,
    kCGEventFlagMaskNumericPad,
    kCGEventFlagMaskHelp,
    kCGEventFlagMaskSecondaryFn,
    unused,
    ~modifiers,
};

void compare(Desktop& machine, const Situation& situation, const std::vector<std::int64_t>& codes,
             const std::vector<CGEventFlags>& marks) {
  const auto event = create<Event>();
  for (const std::int64_t each : codes) {
    for (const CGEventFlags mark : marks) {
      for (CGEventFlags held = 0; held <= modifiers; held += shift) {
        const Typed key{each, held | mark};
        for (const CGEventType type : {kCGEventKeyDown, kCGEventKeyUp}) {
          ASSERT_EQ(actual(machine, *event, type, key), expected(key, situation))
              << describeKey(static_cast<std::uint16_t>(each), held) << (type == kCGEventKeyDown ? " down" : " up")
              << ", flags 0x" << std::hex << key.flags << ", in " << situation.name << ", without \"" << situation.off
              << '"';
        }
      }
    }
  }
}

/// Types the same keys in the Editor, and in the Finder with and without a text field in focus.
std::vector<Step> everywhere(Desktop& machine, std::string_view off, const std::vector<std::int64_t>& codes,
                             const std::vector<CGEventFlags>& marks) {
  const auto in = [&machine, off, codes, marks](const char* name, bool finder, bool text) {
    return [=, &machine] { compare(machine, {name, finder, text, off}, codes, marks); };
  };
  return {
      "front Editor",          in("the Editor", false, true), "front Finder",           in("the Finder", true, false),
      "wait 0\n click Cancel", "focus AXTextField",           in("a name", true, true), "focus AXList"};
}

TEST(Shortcuts, AreThoseOfTheTableAndNoOthers) {
  TestDesktop desktop;
  std::vector<Step> steps{"menu Settings…\n click \"Confirm before moving to Bin\""};
  for (const Step& step : everywhere(desktop.machine, confirm, everyCode(), everyMark))
    steps.push_back(step);
  desktop.play(steps);
}

/// The titles of all checkboxes that the settings window shows.
std::set<std::string> checkboxes(const Desktop& machine) {
  std::set<std::string> titles;
  forEachView(*machine.appKit.frontWindow()->contentView(), [&](View& view) {
    const auto* button = ifIs<Button>(&view);
    if (button != nullptr && button->isCheckbox()) titles.insert(textOf(button->title.get()));
  });
  return titles;
}

TEST(Shortcuts, HaveACheckboxEach) {
  std::set<std::string> named{std::string(confirm)};
  for (const Shortcut& shortcut : shortcuts)
    named.emplace(shortcut.checkbox);
  TestDesktop desktop;
  desktop.play({"menu Settings…", [&] { EXPECT_EQ(checkboxes(desktop.machine), named); }});
}

TEST(Shortcuts, ObeyTheirOwnCheckboxAndNoOther) {
  std::vector<std::int64_t> codes;
  std::set<std::string_view> titles{confirm, {}};
  for (const Shortcut& shortcut : shortcuts) {
    codes.push_back(shortcut.typed.code);
    titles.insert(shortcut.checkbox);
  }
  TestDesktop desktop;
  std::vector<Step> steps{"menu Settings…"};
  for (const std::string_view checkbox : titles) {
    const auto click = [&desktop, checkbox] {
      EXPECT_EQ(clickInWindow(desktop.machine, std::string(checkbox), 1), !checkbox.empty()) << checkbox;
    };
    steps.emplace_back(click);
    for (const Step& step : everywhere(desktop.machine, checkbox, codes, {0}))
      steps.push_back(step);
    steps.emplace_back(click);
  }
  desktop.play(steps);
}

} // namespace
} // namespace desktop
