/// How a line of a session falls into words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace desktop {

/// The words of one line of a session, separated by blanks and tabs. A word that starts with `#` starts a comment, one
/// that starts with `"` reaches to the next `"`, may hold blanks and knows the escapes `\" \\ \t \n \r \xHH`; anywhere
/// else `#`, `"` and `\` stand for themselves.
/// Throws std::invalid_argument with a sentence for people: unterminated quote, bad escape, text after a closing quote.
std::vector<std::string> splitWords(std::string_view line);

/// The word as it is written in a session: in quotes and with escapes where it needs them.
std::string asWord(std::string_view word);

/// The word as a message quotes it: on one line, and shortened when it is very long.
std::string inQuotes(std::string_view word);

} // namespace desktop
