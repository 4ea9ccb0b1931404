#include "tests/support/Shortcuts.hpp"
#include "desktop/session/WindowCommands.hpp"
#include "tests/support/TestDesktop.hpp"

#include <limits>
#include <set>

namespace desktop {
namespace {

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
              << ", flags 0x" << std::hex << key.flags << ", in " << situation.name << ", without \""
              << situation.off.front() << '"';
        }
      }
    }
  }
}

/// Types the same keys in the Editor, and in the Finder with and without a text field in focus.
std::vector<Step> everywhere(Desktop& machine, std::string_view off, const std::vector<std::int64_t>& codes,
                             const std::vector<CGEventFlags>& marks) {
  const auto in = [&machine, off, codes, marks](const char* name, bool finder, bool text) {
    return [=, &machine] { compare(machine, {name, finder, text, {off}}, codes, marks); };
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
