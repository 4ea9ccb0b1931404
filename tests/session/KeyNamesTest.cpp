#include "desktop/session/KeyNames.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace desktop;

namespace {

TEST(KeyNames, ReadsAndTellsKeys) {
  struct {
    const char* name;
    KeyStroke key;
    const char* told;
  } const rows[] = {
      {"a", {0x00, 0}, "A"},
      {"Win+L", {0x25, 0x100000}, "Cmd+L"},
      {"CTRL+shift+left", {0x7b, 0xa60000}, "Ctrl+Shift+Left"},
      {"fn+caps+down", {0x7d, 0xa10000}, "Caps+Down"},
      {"f20", {0x5a, 0x800000}, "F20"},
      {"ctrl+cmd+q", {0x0c, 0x140000}, "Cmd+Ctrl+Q"},
      {"fn+option+alt+option+0", {0x1d, 0x880000}, "Option+Fn+0"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(keyNamed(row.name), row.key) << row.name;
    EXPECT_EQ(describeKey(row.key.code, row.key.flags), row.told);
  }
  EXPECT_EQ(describeKey(0x5d, 0), "key 0x5d");
  EXPECT_EQ(describeKey(0xffff, ~0ull), "Cmd+Ctrl+Option+Shift+Caps+Fn+key 0xffff");
  EXPECT_EQ(describeKey(0x08, 0x40101), "Ctrl+C") << "bits that are no modifier";
}

TEST(KeyNames, TellsEachKeyByANameThatReadsBack) {
  int named = 0;
  for (unsigned code = 0; code <= 0xffff; ++code) {
    const std::string told = describeKey(static_cast<std::uint16_t>(code), 0x20000);
    if (told.starts_with("Shift+key ")) continue;
    ++named;
    EXPECT_EQ(keyNamed(told).code, code) << told;
  }
  EXPECT_EQ(named, 26 + 10 + 20 + 4 + 7) << "letters, digits, function keys, arrows and the others: no code twice";
}

TEST(KeyNames, RefusesEverythingElse) {
  for (const char* wrong : {"", "+", "a+", "+a", "ctrl++a", "ctrl", "ctrl+shift", "a+b", "left+ctrl", "f0", "f21",
                            "f02", "é", "home", "-", "ctrl + a", "control+a"})
    EXPECT_THROW(keyNamed(wrong), std::invalid_argument) << wrong;
}

} // namespace
