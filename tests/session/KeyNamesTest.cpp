#include "desktop/session/KeyNames.hpp"

#include "platform/KeyCodes.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <stdexcept>

using namespace desktop;

namespace {

constexpr CGEventFlags command = kCGEventFlagMaskCommand;
constexpr CGEventFlags control = kCGEventFlagMaskControl;
constexpr CGEventFlags option = kCGEventFlagMaskAlternate;
constexpr CGEventFlags shift = kCGEventFlagMaskShift;
constexpr CGEventFlags caps = kCGEventFlagMaskAlphaShift;
constexpr CGEventFlags fn = kCGEventFlagMaskSecondaryFn;
constexpr CGEventFlags pad = kCGEventFlagMaskNumericPad;

TEST(KeyNames, ReadsAndTellsKeysWithTheirModifiers) {
  struct {
    const char* name;
    KeyStroke key;
    const char* told;
  } const rows[] = {
      {"a", {kVK_ANSI_A, 0}, "A"},
      {"Win+L", {kVK_ANSI_L, command}, "Cmd+L"},
      {"CTRL+shift+left", {kVK_LeftArrow, control | shift | fn | pad}, "Ctrl+Shift+Left"},
      {"fn+caps+down", {kVK_DownArrow, caps | fn | pad}, "Caps+Down"},
      {"f20", {kVK_F20, fn}, "F20"},
      {"ForwardDelete", {kVK_ForwardDelete, fn}, "ForwardDelete"},
      {"ctrl+cmd+q", {kVK_ANSI_Q, command | control}, "Cmd+Ctrl+Q"},
      {"fn+option+alt+option+0", {kVK_ANSI_0, option | fn}, "Option+Fn+0"},
      {"control+command+enter", {kVK_Return, command | control}, "Cmd+Ctrl+Return"},
      {"shift+'", {kVK_ANSI_Quote, shift}, "Shift+Quote"},
      {"del", {kVK_ForwardDelete, fn}, "ForwardDelete"},
      {"Backspace", {kVK_Delete, 0}, "Delete"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(keyNamed(row.name), row.key) << row.name;
    EXPECT_EQ(describeKey(row.key.code, row.key.flags), row.told);
  }
  EXPECT_EQ(describeKey(kVK_JIS_Yen, 0), "key 0x5d");
  EXPECT_EQ(describeKey(0xffff, ~0ull), "Cmd+Ctrl+Option+Shift+Caps+Fn+key 0xffff");
  EXPECT_EQ(describeKey(kVK_ANSI_C, control | kCGEventFlagMaskNonCoalesced | 1), "Ctrl+C")
      << "bits that are no modifier";
}

// The platform's names, as its header lists them, but for what they say of the layout and of arrows.
TEST(KeyNames, AreThePlatformsOwn) {
  std::ifstream header(TARNWICK_SOURCE_DIR "/platform/KeyCodes.hpp");
  const std::regex entry(".* kVK_(ANSI_)?(\\w+?)(Arrow)? = (0x\\w+);");
  int named = 0;
  std::smatch parts;
  for (std::string line; std::getline(header, line);) {
    if (!std::regex_match(line, parts, entry)) continue;
    const auto code = static_cast<std::uint16_t>(std::stoi(parts[4], nullptr, 16));
    const std::string told = describeKey(code, 0);
    if (told.starts_with("key ")) continue;
    ++named;
    EXPECT_EQ(told, parts[2]);
    EXPECT_EQ(keyNamed(told).code, code);
  }
  EXPECT_EQ(named, 26 + 10 + 20 + 4 + 21) << "letters, digits, function keys, arrows and the others";
}

// What helps and pages list is typed as it stands there, and of names that stand side by side each means the same.
TEST(KeyNames, AreListedAsTheyAreTyped) {
  EXPECT_EQ(modifierNames(), "cmd command win, ctrl control, option alt, shift, caps, fn");
  const std::string all = keyNames();
  const std::string signsEnd = "f20,";
  std::istringstream list(all.substr(all.find(signsEnd) + signsEnd.size()));
  std::string group;
  int named = 0;
  while (std::getline(list, group, ',')) {
    std::istringstream names(group);
    std::string first;
    names >> first;
    for (std::string name = first; names; names >> name, ++named)
      EXPECT_EQ(keyNamed(name), keyNamed(first)) << name;
  }
  EXPECT_GT(named, 30);
}

TEST(KeyNames, RefusesEverythingElse) {
  for (const char* wrong : {"", "+", "a+", "+a", "ctrl++a", "ctrl", "ctrl+shift", "a+b", "left+ctrl", "f0", "f21",
                            "f02", "é", "insert", "--", "ctrl + a"})
    EXPECT_THROW(keyNamed(wrong), std::invalid_argument) << wrong;
}

} // namespace
