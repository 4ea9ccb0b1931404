#include "desktop/session/KeyNames.hpp"

#include "desktop/quartz/Fact.hpp"
#include "desktop/session/Words.hpp"
#include "platform/EventServices.hpp"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace desktop {

namespace {

constexpr std::uint64_t capsLock = 0x10000;

struct Modifier {
  std::string_view name;
  std::uint64_t flag;
};

// In the order in which people are told them; of two names with one flag the first is told.
constexpr Modifier modifiers[] = {
    {"Cmd", kCGEventFlagMaskCommand},
    {"Win", kCGEventFlagMaskCommand},
    {"Ctrl", kCGEventFlagMaskControl},
    {"Option", kCGEventFlagMaskAlternate},
    {"Alt", kCGEventFlagMaskAlternate},
    {"Shift", kCGEventFlagMaskShift},
    {"Caps", capsLock},
    {"Fn", kCGEventFlagMaskSecondaryFn},
};

struct Key {
  std::string_view name;
  std::uint16_t code;
  std::uint64_t ownFlags = 0;
};

constexpr std::uint64_t arrow = 0xa00000;
constexpr std::uint64_t function = kCGEventFlagMaskSecondaryFn;

// The codes of the ANSI layout follow the places of the keys, so there is no order to exploit.
// clang-format off
constexpr Key keys[] = {
    {"A", 0}, {"B", 11}, {"C", 8}, {"D", 2}, {"E", 14}, {"F", 3}, {"G", 5}, {"H", 4}, {"I", 34}, {"J", 38}, {"K", 40},
    {"L", 37}, {"M", 46}, {"N", 45}, {"O", 31}, {"P", 35}, {"Q", 12}, {"R", 15}, {"S", 1}, {"T", 17}, {"U", 32},
    {"V", 9}, {"W", 13}, {"X", 7}, {"Y", 16}, {"Z", 6}, {"0", 29}, {"1", 18}, {"2", 19}, {"3", 20}, {"4", 21},
    {"5", 23}, {"6", 22}, {"7", 26}, {"8", 28}, {"9", 25}, {"Quote", 39}, {"Return", 36}, {"Delete", 51},
    {"Space", 49}, {"Tab", 48}, {"Escape", 53}, {"ForwardDelete", 117, function}, {"Left", 123, arrow},
    {"Right", 124, arrow}, {"Up", 126, arrow}, {"Down", 125, arrow}, {"F1", 122, function}, {"F2", 120, function},
    {"F3", 99, function}, {"F4", 118, function}, {"F5", 96, function}, {"F6", 97, function}, {"F7", 98, function},
    {"F8", 100, function}, {"F9", 101, function}, {"F10", 109, function}, {"F11", 103, function},
    {"F12", 111, function}, {"F13", 105, function}, {"F14", 107, function}, {"F15", 113, function},
    {"F16", 106, function}, {"F17", 64, function}, {"F18", 79, function}, {"F19", 80, function},
    {"F20", 90, function},
};
// clang-format on

char lowered(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool sameName(std::string_view one, std::string_view other) {
  return std::ranges::equal(one, other, {}, lowered, lowered);
}

/// The entry of that name, or null.
template <class Entry, std::size_t size> const Entry* entryNamed(const Entry (&table)[size], std::string_view name) {
  const auto* found = std::ranges::find_if(table, [&](const Entry& entry) { return sameName(entry.name, name); });
  return found == std::end(table) ? nullptr : found;
}

std::uint64_t modifierNamed(std::string_view name) {
  if (const Modifier* modifier = entryNamed(modifiers, name)) return modifier->flag;
  throw std::invalid_argument("unknown modifier " + inQuotes(name));
}

} // namespace

KeyStroke keyNamed(std::string_view name) {
  std::uint64_t flags = 0;
  for (auto plus = name.find('+'); plus != std::string_view::npos; plus = name.find('+')) {
    flags |= modifierNamed(name.substr(0, plus));
    name.remove_prefix(plus + 1);
  }
  if (const Key* key = entryNamed(keys, name)) return {key->code, flags | key->ownFlags};
  if (entryNamed(modifiers, name)) throw std::invalid_argument("modifier " + inQuotes(name) + " without a key");
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
  return known ? told.append(key->name) : told + "key " + factCode(code);
}

} // namespace desktop
