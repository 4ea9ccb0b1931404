#include "tests/support/RemapperTest.hpp"

#include <random>

namespace tarnwick {
namespace {

/// What the user types, what the application gets, and the switch that alone turns it off.
struct Shortcut {
  const char* name;
  bool KeyRemapper::*gate;
  Key typed;
  Key delivered;
};

// What a keyboard says of itself beside the modifiers: the left Control key's device bit, and that of no coalescing.
constexpr CGEventFlags leftControl = 0x101;
constexpr CGEventFlags arrow = numericPad | kCGEventFlagMaskSecondaryFn;

constexpr Shortcut shortcuts[] = {
    {"Ctrl+C", &KeyRemapper::mapClipboard, {0x08, 0x40000}, {0x08, 0x100000}},
    {"Ctrl+V", &KeyRemapper::mapClipboard, {0x09, 0x40000}, {0x09, 0x100000}},
    {"Ctrl+X", &KeyRemapper::mapClipboard, {0x07, 0x40000}, {0x07, 0x100000}},
    {"Ctrl+A", &KeyRemapper::mapClipboard, {0x00, 0x40000}, {0x00, 0x100000}},
    {"Ctrl+Z", &KeyRemapper::mapClipboard, {0x06, 0x40000}, {0x06, 0x100000}},
    {"Ctrl+Y", &KeyRemapper::mapRedo, {0x10, 0x40000}, {0x06, 0x120000}},
    {"Ctrl+N", &KeyRemapper::mapNewFile, {0x2d, 0x40000}, {0x2d, 0x100000}},
    {"Ctrl+S", &KeyRemapper::mapSave, {0x01, 0x40000}, {0x01, 0x100000}},
    {"Ctrl+F", &KeyRemapper::mapFind, {0x03, 0x40000}, {0x03, 0x100000}},
    {"Ctrl+B", &KeyRemapper::mapBold, {0x0b, 0x40000}, {0x0b, 0x100000}},
    {"Ctrl+U", &KeyRemapper::mapUnderline, {0x20, 0x40000}, {0x20, 0x100000}},
    {"Ctrl+I", &KeyRemapper::mapItalic, {0x22, 0x40000}, {0x22, 0x100000}},
    {"Ctrl+Left", &KeyRemapper::mapWordSkip, {0x7b, 0x40000 | arrow}, {0x7b, 0x80000 | arrow}},
    {"Ctrl+Right", &KeyRemapper::mapWordSkip, {0x7c, 0x40000 | arrow}, {0x7c, 0x80000 | arrow}},
    {"Shift+'", &KeyRemapper::mapAtQuoteSwap, {0x27, 0x20000}, {0x13, 0x20000}},
    {"Shift+2", &KeyRemapper::mapAtQuoteSwap, {0x13, 0x20000}, {0x27, 0x20000}},
    {"Cmd+L", &KeyRemapper::mapLockScreen, {0x25, 0x100000}, {0x0c, 0x140000}},

    {"Ctrl+Shift+Z", &KeyRemapper::mapClipboard, {0x06, 0x60000}, {0x06, 0x120000}},
    {"Ctrl+Cmd+C", &KeyRemapper::mapClipboard, {0x08, 0x140000}, {0x08, 0x100000}},
    {"Ctrl+Option+V", &KeyRemapper::mapClipboard, {0x09, 0xc0000}, {0x09, 0x180000}},
    {"Ctrl+Shift+S", &KeyRemapper::mapSave, {0x01, 0x60000}, {0x01, 0x120000}},
    {"Ctrl+Shift+Y", &KeyRemapper::mapRedo, {0x10, 0x60000}, {0x06, 0x120000}},
    {"Ctrl+Cmd+Y", &KeyRemapper::mapRedo, {0x10, 0x140000}, {0x06, 0x120000}},
    {"Ctrl+Shift+Left", &KeyRemapper::mapWordSkip, {0x7b, 0x60000 | arrow}, {0x7b, 0xa0000 | arrow}},
    {"Ctrl+Option+Right", &KeyRemapper::mapWordSkip, {0x7c, 0xc0000 | arrow}, {0x7c, 0x80000 | arrow}},
    {"Ctrl+Cmd+Left", &KeyRemapper::mapWordSkip, {0x7b, 0x140000 | arrow}, {0x7b, 0x180000 | arrow}},
    {"Cmd+Shift+L", &KeyRemapper::mapLockScreen, {0x25, 0x120000}, {0x0c, 0x160000}},
    {"Cmd+Option+L", &KeyRemapper::mapLockScreen, {0x25, 0x180000}, {0x0c, 0x1c0000}},
    {"left Ctrl+C", &KeyRemapper::mapClipboard, {0x08, 0x40000 | leftControl}, {0x08, 0x100000 | leftControl}},
};

/// What the rules leave alone although all is switched on.
constexpr std::pair<const char*, Key> passing[] = {
    {"C", {0x08, 0}},
    {"Shift+C", {0x08, shift}},
    {"Cmd+C", {0x08, command}},
    {"Ctrl+D", {0x02, control}},
    {"Ctrl+L", {0x25, control}},
    {"Cmd+Ctrl+L", {0x25, command | control}},
    {"L", {0x25, 0}},
    {"Ctrl+Q", {0x0c, control}},
    {"'", {0x27, 0}},
    {"2", {0x13, 0}},
    {"Shift+1", {0x12, shift}},
    {"Caps Lock and 2", {0x13, capsLock}},
    {"Shift+Option+2", {0x13, shift | option}},
    {"Shift+Cmd+'", {0x27, shift | command}},
    {"Ctrl+Shift+2", {0x13, shift | control}},
    {"Left", {0x7b, arrow}},
    {"Option+Left", {0x7b, option | arrow}},
    {"Ctrl+Up", {0x7e, control | arrow}},
    {"Cmd+Delete", {0x33, command}},
    {"F2 outside of the Finder", {0x78, kCGEventFlagMaskSecondaryFn}},
    {"Forward Delete outside of the Finder", {0x75, kCGEventFlagMaskSecondaryFn}},
    {"the highest code", {0xffff, control}},
    {"every flag", {0x02, ~CGEventFlags{0}}},
};

class ShortcutsTest : public RemapperTest {};

TEST_F(ShortcutsTest, ObeyTheirOwnSwitchAndNoOther) {
  for (const auto& [title, flag] : switches) {
    remapper.get()->*flag = false;
    for (const Shortcut& shortcut : shortcuts) {
      EXPECT_EQ(press(shortcut.typed), flag == shortcut.gate ? shortcut.typed : shortcut.delivered)
          << shortcut.name << " without " << title;
    }
    for (const auto& [name, key] : passing)
      EXPECT_EQ(press(key), key) << name << " without " << title;
    remapper.get()->*flag = true;
  }
}

TEST_F(ShortcutsTest, LeaveEveryBitThatIsNoModifierAlone) {
  for (const Shortcut& shortcut : shortcuts) {
    for (CGEventFlags bit = 1; bit != 0; bit <<= 1) {
      if ((bit & modifiers) != 0) continue;
      const Key typed{shortcut.typed.code, shortcut.typed.flags ^ bit};
      const Key delivered{shortcut.delivered.code, shortcut.delivered.flags ^ bit};
      EXPECT_EQ(press(typed), delivered) << shortcut.name << " with bit 0x" << std::hex << bit;
    }
  }
}

TEST_F(ShortcutsTest, JudgeAReleaseByItsOwnModifiers) {
  EXPECT_EQ(send(kCGEventKeyDown, ctrlC).key, cmdC);
  EXPECT_EQ(send(kCGEventKeyUp, {0x08, 0}).key, (Key{0x08, 0})) << "Control was let go first";
}

// A code that no keyboard sends must not be taken for the key of its low sixteen bits.
TEST_F(ShortcutsTest, PassCodesBeyondSixteenBits) {
  for (const Shortcut& shortcut : shortcuts) {
    for (const std::int64_t beyond : {0x10000L, -0x10000L, 0x7fffffff0000L}) {
      const auto event = desktop::create<desktop::Event>();
      event->code = shortcut.typed.code + beyond;
      event->flags = shortcut.typed.flags;
      ASSERT_EQ(desktop.machine.server.throughTaps(event.get()), event.get());
      EXPECT_EQ(event->code, shortcut.typed.code + beyond) << shortcut.name;
      EXPECT_EQ(event->flags, shortcut.typed.flags) << shortcut.name;
    }
  }
}

/// Many random keys, mostly of the codes that occur, under random switches.
TEST_F(ShortcutsTest, KeepTheirPromisesForRandomKeys) {
  std::mt19937_64 random(1);
  for (int round = 0; round < 20000; ++round) {
    const auto positions = random();
    for (std::size_t each = 0; each < std::size(switches); ++each)
      remapper.get()->*switches[each].flag = (positions >> (2 * each) & 3) != 0;
    const auto code = static_cast<CGKeyCode>(random() % (round % 8 == 0 ? 0x10000 : 0x80));
    const Key typed{code, random() & (round % 2 == 0 ? modifiers : ~CGEventFlags{0})};

    const Received received = send(kCGEventKeyDown, typed);
    EXPECT_EQ(received.by, "Editor");
    EXPECT_EQ(send(kCGEventKeyUp, typed), received);
    const Key key = received.key;
    EXPECT_EQ(key.flags & ~modifiers, typed.flags & ~modifiers);
    EXPECT_EQ(typed.flags & ~control & ~key.flags, 0U) << "only Control is ever taken away";
    EXPECT_TRUE(key == typed || key.code == kVK_ANSI_Q || (key.flags & control) == 0);
    const bool swaps = key.flags == typed.flags && key.code != typed.code;
    EXPECT_EQ(press(key), swaps ? typed : key) << "no rewriting leads to another, but for the swap and back";

    remapper->enabled = false;
    EXPECT_EQ(press(typed), typed);
    remapper->enabled = true;
    if (HasFailure()) FAIL() << "round " << round << ", typed " << testing::PrintToString(typed);
  }
}

} // namespace
} // namespace tarnwick
