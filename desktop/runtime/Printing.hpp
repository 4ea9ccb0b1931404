/// What is printed may come from anywhere, files and names of files among it: it stays on its line, within a bound, and
/// gives no orders to a terminal.
#pragma once

#include <string>
#include <string_view>

namespace desktop {

/// The text with tab, line breaks, backslash, control characters and what is not UTF-8 written as `\t \n \r \\ \xHH`,
/// so that it stays on one line and within one field. All other UTF-8 passes as it is.
std::string escaped(std::string_view text);

/// The text as a line for people: escaped but for backslashes, so that what is escaped already stays as it is, and
/// without its middle when it is very long.
std::string printable(std::string_view text);

/// Prints the sentence on standard error, as a line for people.
void complain(std::string_view sentence);

} // namespace desktop
