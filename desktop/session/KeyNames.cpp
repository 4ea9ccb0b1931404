#include "desktop/session/KeyNames.hpp"

#include "desktop/runtime/Journal.hpp"
#include "desktop/session/Words.hpp"
#include "platform/KeyCodes.hpp"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace desktop {

namespace {

struct Modifier {
  std::string_view name;
  std::uint64_t flag;
};

// clang-format off
// In the order in which people are told them; of names with one flag the first is told.
constexpr Modifier modifiers[] = {
    {"Cmd", kCGEventFlagMaskCommand},
    {"Command", kCGEventFlagMaskCommand},
    {"Win", kCGEventFlagMaskCommand},
    {"Super", kCGEventFlagMaskCommand},
    {"Meta", kCGEventFlagMaskCommand},
    {"Ctrl", kCGEventFlagMaskControl},
    {"Control", kCGEventFlagMaskControl},
    {"Option", kCGEventFlagMaskAlternate},
    {"Opt", kCGEventFlagMaskAlternate},
    {"Alt", kCGEventFlagMaskAlternate},
    {"Shift", kCGEventFlagMaskShift},
    {"Caps", kCGEventFlagMaskAlphaShift},
    {"Fn", kCGEventFlagMaskSecondaryFn},
};
// clang-format on

struct Key {
  std::string_view name;
  std::uint16_t code;
  std::uint64_t ownFlags = 0;
};

// What some keys carry without a modifier being held.
constexpr CGEventFlags function = kCGEventFlagMaskSecondaryFn;
constexpr CGEventFlags arrow = kCGEventFlagMaskNumericPad | kCGEventFlagMaskSecondaryFn;

// clang-format off
// Of names with one code the first is told. The others are what keyboards and people call the same key.
constexpr Key keys[] = {
    {"A", kVK_ANSI_A}, {"B", kVK_ANSI_B}, {"C", kVK_ANSI_C}, {"D", kVK_ANSI_D}, {"E", kVK_ANSI_E}, {"F", kVK_ANSI_F},
    {"G", kVK_ANSI_G}, {"H", kVK_ANSI_H}, {"I", kVK_ANSI_I}, {"J", kVK_ANSI_J}, {"K", kVK_ANSI_K}, {"L", kVK_ANSI_L},
    {"M", kVK_ANSI_M}, {"N", kVK_ANSI_N}, {"O", kVK_ANSI_O}, {"P", kVK_ANSI_P}, {"Q", kVK_ANSI_Q}, {"R", kVK_ANSI_R},
    {"S", kVK_ANSI_S}, {"T", kVK_ANSI_T}, {"U", kVK_ANSI_U}, {"V", kVK_ANSI_V}, {"W", kVK_ANSI_W}, {"X", kVK_ANSI_X},
    {"Y", kVK_ANSI_Y}, {"Z", kVK_ANSI_Z}, {"0", kVK_ANSI_0}, {"1", kVK_ANSI_1}, {"2", kVK_ANSI_2}, {"3", kVK_ANSI_3},
    {"4", kVK_ANSI_4}, {"5", kVK_ANSI_5}, {"6", kVK_ANSI_6}, {"7", kVK_ANSI_7}, {"8", kVK_ANSI_8}, {"9", kVK_ANSI_9},
    {"Minus", kVK_ANSI_Minus}, {"Equal", kVK_ANSI_Equal}, {"LeftBracket", kVK_ANSI_LeftBracket},
    {"RightBracket", kVK_ANSI_RightBracket}, {"Backslash", kVK_ANSI_Backslash}, {"Semicolon", kVK_ANSI_Semicolon},
    {"Comma", kVK_ANSI_Comma}, {"Period", kVK_ANSI_Period}, {"Slash", kVK_ANSI_Slash}, {"Grave", kVK_ANSI_Grave},
    {"Home", kVK_Home, function}, {"End", kVK_End, function}, {"PageUp", kVK_PageUp, function},
    {"PageDown", kVK_PageDown, function},
    {"Quote", kVK_ANSI_Quote}, {"Return", kVK_Return}, {"Delete", kVK_Delete}, {"Space", kVK_Space}, {"Tab", kVK_Tab},
    {"Escape", kVK_Escape}, {"ForwardDelete", kVK_ForwardDelete, function}, {"Left", kVK_LeftArrow, arrow},
    {"Right", kVK_RightArrow, arrow}, {"Up", kVK_UpArrow, arrow}, {"Down", kVK_DownArrow, arrow},
    {"F1", kVK_F1, function}, {"F2", kVK_F2, function}, {"F3", kVK_F3, function}, {"F4", kVK_F4, function},
    {"F5", kVK_F5, function}, {"F6", kVK_F6, function}, {"F7", kVK_F7, function}, {"F8", kVK_F8, function},
    {"F9", kVK_F9, function}, {"F10", kVK_F10, function}, {"F11", kVK_F11, function}, {"F12", kVK_F12, function},
    {"F13", kVK_F13, function}, {"F14", kVK_F14, function}, {"F15", kVK_F15, function}, {"F16", kVK_F16, function},
    {"F17", kVK_F17, function}, {"F18", kVK_F18, function}, {"F19", kVK_F19, function}, {"F20", kVK_F20, function},
    {"Enter", kVK_Return}, {"Backspace", kVK_Delete}, {"Esc", kVK_Escape}, {"Del", kVK_ForwardDelete, function},
    {"PgUp", kVK_PageUp, function}, {"PgDn", kVK_PageDown, function},
    {"-", kVK_ANSI_Minus}, {"=", kVK_ANSI_Equal}, {"[", kVK_ANSI_LeftBracket}, {"]", kVK_ANSI_RightBracket},
    {"\\", kVK_ANSI_Backslash}, {";", kVK_ANSI_Semicolon}, {"'", kVK_ANSI_Quote}, {",", kVK_ANSI_Comma},
    {".", kVK_ANSI_Period}, {"/", kVK_ANSI_Slash}, {"`", kVK_ANSI_Grave},
};
// clang-format on

char lowerCase(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool sameName(std::string_view one, std::string_view other) {
  return std::ranges::equal(one, other, {}, lowerCase, lowerCase);
}

/// The entry of that name, or null.
template <class Row, std::size_t size> const Row* rowNamed(const Row (&table)[size], std::string_view name) {
  const auto* found = std::ranges::find_if(table, [&](const Row& row) { return sameName(row.name, name); });
  return found == std::end(table) ? nullptr : found;
}

std::uint64_t modifierNamed(std::string_view name) {
  if (const Modifier* modifier = rowNamed(modifiers, name)) return modifier->flag;
  throw std::invalid_argument("unknown modifier " + inQuotes(name));
}

bool isLetterOrDigit(char sign) {
  return (sign >= 'A' && sign <= 'Z') || (sign >= '0' && sign <= '9');
}

bool isFunctionKey(std::string_view name) {
  return name.size() > 1 && name[0] == 'F' && name[1] >= '0' && name[1] <= '9';
}

bool isWord(std::string_view name) {
  return name.size() > 1 && !isFunctionKey(name);
}

std::string lowered(std::string_view name) {
  std::string word(name);
  std::transform(word.begin(), word.end(), word.begin(), lowerCase);
  return word;
}

/// The names of a table that are words, in lower case.
template <class Entry, std::size_t size> std::vector<std::string> wordsOf(const Entry (&table)[size]) {
  std::vector<std::string> words;
  for (const Entry& entry : table)
    if (isWord(entry.name)) words.push_back(lowered(entry.name));
  return words;
}

/// The same as a text; those that mean the same stand side by side, the others are set off by commas.
template <class Entry, std::size_t size, class Meaning>
std::string listed(const Entry (&table)[size], Meaning Entry::*meaning) {
  std::string list;
  for (const Entry& first : table) {
    if (!isWord(first.name) || std::ranges::find(table, first.*meaning, meaning) != &first) continue;
    list += list.empty() ? "" : ",";
    for (const Entry& same : table) {
      if (same.*meaning != first.*meaning || !isWord(same.name)) continue;
      list.append(list.empty() ? "" : " ") += lowered(same.name);
    }
  }
  return list;
}

} // namespace

std::string modifierNames() {
  return listed(modifiers, &Modifier::flag);
}

std::string keyNames() {
  std::string list = "letters, digits, the signs";
  for (const Key& key : keys)
    if (key.name.size() == 1 && !isLetterOrDigit(key.name[0])) list.append(" ").append(key.name);
  return list + ", f1 to f20, " + listed(keys, &Key::code);
}

std::vector<std::string> modifierWords() {
  return wordsOf(modifiers);
}

std::vector<std::string> keyWords() {
  return wordsOf(keys);
}

KeyStroke keyNamed(std::string_view name) {
  std::uint64_t flags = 0;
  for (auto plus = name.find('+'); plus != std::string_view::npos; plus = name.find('+')) {
    flags |= modifierNamed(name.substr(0, plus));
    name.remove_prefix(plus + 1);
  }
  if (const Key* key = rowNamed(keys, name)) return {key->code, flags | key->ownFlags};
  if (rowNamed(modifiers, name)) throw std::invalid_argument("modifier " + inQuotes(name) + " without a key");
  throw std::invalid_argument("unknown key " + inQuotes(name));
}

std::string describeKey(std::uint16_t code, std::uint64_t flags) {
  const auto* key = std::ranges::find(keys, code, &Key::code);
  const bool known = key != std::end(keys);
  std::uint64_t untold = known ? flags & ~key->ownFlags : flags;
  std::string told;
  for (const Modifier& modifier : modifiers) {
    if ((untold & modifier.flag) == 0) continue;
    told.append(modifier.name) += '+';
    untold &= ~modifier.flag;
  }
  return known ? told.append(key->name) : told + "key " + codeText(code);
}

} // namespace desktop
