/// What the stand-in tells whoever owns the desktop: everything that happens.
#pragma once

#include "desktop/runtime/Part.hpp"

#include <functional>

namespace desktop {

/// One thing that happened, in the words of a trace: its name, then its fields.
using JournalEntry = std::vector<std::string>;

/// How entries write key codes (`0x%02x`), event flags (`0x%x`) and sizes in points (`%g`).
std::string codeText(std::uint16_t code);
std::string flagsText(std::uint64_t flags);
std::string sizeText(double size);

struct Journal : Part<Journal> {
  /// Reads every entry, in the order in which things happen.
  std::function<void(const JournalEntry&)> reader = [](const JournalEntry&) {};
  /// Hears what an application does of its own accord, as a sentence for people.
  std::function<void(const std::string&)> remark = [](const std::string&) {};
};

inline void tell(const JournalEntry& entry) {
  Journal::current().reader(entry);
}

} // namespace desktop
