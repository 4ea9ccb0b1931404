/// The journal put into words: as a trace for tests and scripts, and as sentences for people.
#pragma once

#include "desktop/runtime/Journal.hpp"
#include "desktop/runtime/Printing.hpp"

#include <string>

namespace desktop {

/// One entry for tests and scripts: the fields, escaped and separated by tabs, without a line end. An empty field is
/// written `-`; a field that is `-` itself looks the same.
std::string traceLine(const JournalEntry& entry);

/// The entry as an indented sentence for people.
std::string sentenceFor(const JournalEntry& entry);

} // namespace desktop
