/// The journal put into words: as a trace for tests and scripts, and as sentences for people.
#pragma once

#include "desktop/runtime/Journal.hpp"

#include <string>
#include <string_view>

namespace desktop {

/// The text with tab, line breaks, backslash and control characters written as `\t \n \r \\ \xHH`, so that it stays on
/// one line and within one field. All other UTF-8 passes as it is, and so does what is not UTF-8.
std::string escaped(std::string_view text);

/// One entry for tests and scripts: the fields, escaped and separated by tabs, without a line end. An empty field is
/// written `-`; a field that is `-` itself looks the same.
std::string traceLine(const JournalEntry& entry);

/// The entry as an indented sentence for people.
std::string sentenceFor(const JournalEntry& entry);

} // namespace desktop
