/// Keys by the names that sessions and people call them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace desktop {

/// A key with the modifiers held beside it, in the numbers that a keyboard event carries.
struct KeyStroke {
  std::uint16_t code = 0;
  std::uint64_t flags = 0;

  bool operator==(const KeyStroke&) const = default;
};

/// The key that a session calls by name, modifiers first: `ctrl+shift+left`, `win+l`, `F2`. The flags hold the
/// modifiers and what the key carries by itself: function keys and forward delete the fn bit, arrow keys also that of
/// the numeric pad. Throws std::invalid_argument with a sentence for people when a name is unknown or missing.
KeyStroke keyNamed(std::string_view name);

/// The other way round, for people: `Cmd+Shift+Z`, `Cmd+Delete`, `Ctrl+key 0x5d` for a key without a name. Flags that
/// the key carries by itself, or that are no modifier, are not shown.
std::string describeKey(std::uint16_t code, std::uint64_t flags);

/// All names of modifiers, and of keys, as a text for people: `cmd command win, ctrl control, ...`.
std::string modifierNames();
std::string keyNames();

/// The same one by one, but for letters, digits, signs and function keys: what may be written wrong.
std::vector<std::string> modifierWords();
std::vector<std::string> keyWords();

} // namespace desktop
