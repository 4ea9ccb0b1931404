/// A remapper with its tap on a desktop of its own; keys are typed on the keyboard, and what arrives is compared.
#pragma once

#include "remap/KeyRemapper.hpp"
#include "tests/support/TestDesktop.hpp"

#include <ostream>

namespace tarnwick {

/// What an event says about its key.
struct Key {
  std::int64_t code;
  CGEventFlags flags;

  bool operator==(const Key&) const = default;
};

inline void PrintTo(const Key& key, std::ostream* stream) {
  *stream << "code 0x" << std::hex << key.code << " flags 0x" << key.flags << std::dec;
}

/// A key as an application received it; nobody's when there was none in front.
struct Received {
  std::string by;
  Key key;

  bool operator==(const Received&) const = default;
  friend void PrintTo(const Received& received, std::ostream* stream) {
    *stream << received.by << ' ';
    PrintTo(received.key, stream);
  }
};

inline constexpr CGEventFlags shift = kCGEventFlagMaskShift;
inline constexpr CGEventFlags control = kCGEventFlagMaskControl;
inline constexpr CGEventFlags option = kCGEventFlagMaskAlternate;
inline constexpr CGEventFlags command = kCGEventFlagMaskCommand;
inline constexpr CGEventFlags capsLock = kCGEventFlagMaskAlphaShift;
inline constexpr CGEventFlags numericPad = kCGEventFlagMaskNumericPad;
inline constexpr CGEventFlags modifiers = shift | control | option | command;

inline constexpr Key ctrlC{kVK_ANSI_C, control};
inline constexpr Key cmdC{kVK_ANSI_C, command};

/// A switch of the remapper, and the title of the checkbox that it is bound to.
struct Switch {
  const char* title;
  bool KeyRemapper::*flag;
};
inline constexpr Switch switches[] = {
    {"Clipboard (Ctrl+C/V/X/A/Z)", &KeyRemapper::mapClipboard},
    {"Redo (Ctrl+Y -> Cmd+Shift+Z)", &KeyRemapper::mapRedo},
    {"New (Ctrl+N)", &KeyRemapper::mapNewFile},
    {"Save (Ctrl+S)", &KeyRemapper::mapSave},
    {"Word Skip (Ctrl+Left/Right)", &KeyRemapper::mapWordSkip},
    {"Find (Ctrl+F)", &KeyRemapper::mapFind},
    {"Swap @ and \"", &KeyRemapper::mapAtQuoteSwap},
    {"Bold (Ctrl+B)", &KeyRemapper::mapBold},
    {"Underline (Ctrl+U)", &KeyRemapper::mapUnderline},
    {"Italic (Ctrl+I)", &KeyRemapper::mapItalic},
    {"Lock Screen (Cmd+L on a Mac keyboard, Win+L on a Windows keyboard -> Cmd+Ctrl+Q)", &KeyRemapper::mapLockScreen},
    {"Forward Delete key moves selection to Bin", &KeyRemapper::mapFinderDeleteToBin},
    {"Confirm before moving to Bin", &KeyRemapper::mapFinderDeleteConfirm},
    {"Rename selected item (F2 -> Return)", &KeyRemapper::mapFinderRename},
};

class RemapperTest : public testing::Test {
protected:
  desktop::TestDesktop desktop;
  std::shared_ptr<KeyRemapper> remapper = KeyRemapper::make();

  void SetUp() override { ASSERT_TRUE(remapper->start()); }
  void TearDown() override {
    if (remapper) remapper->stop();
  }

  /// What became of an event. A swallowed one is received by "swallowed".
  Received send(CGEventType type, Key key) {
    desktop.facts.clear();
    desktop.machine.server.type(type, static_cast<CGKeyCode>(key.code), key.flags);
    EXPECT_EQ(desktop.facts.size(), 1U) << desktop.trace();
    const desktop::Fact& fact = desktop.facts.front();
    const std::size_t numbers = fact.size() - 2;
    EXPECT_EQ(fact[numbers - 1], type == kCGEventKeyDown ? "down" : "up");
    return {fact.front() == "key" ? fact[1] : fact.front(),
            {std::stoi(fact[numbers], nullptr, 16), std::stoull(fact[numbers + 1], nullptr, 16)}};
  }

  /// The key as it arrived, its release having arrived alike.
  Key press(Key key) {
    const Received down = send(kCGEventKeyDown, key);
    EXPECT_EQ(send(kCGEventKeyUp, key), down);
    return down.key;
  }

  desktop::EventTap& tap() { return *desktop.machine.server.installed().at(0); }

  /// Another run of the program: what it reads on starting is read anew.
  void relaunch() {
    remapper->stop();
    remapper = KeyRemapper::make();
    ASSERT_TRUE(remapper->start());
  }
  /// Puts an application of this identifier in front, or of none.
  void front(const std::optional<std::u16string>& identifier) {
    auto& application = desktop.machine.start("Application", "");
    if (identifier) application.identifier = desktop::string(*identifier);
    desktop.machine.frontmost = desktop::shared(&application);
  }
};

} // namespace tarnwick
