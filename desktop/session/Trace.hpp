#pragma once

#include "desktop/quartz/Fact.hpp"

#include <string>
#include <string_view>

namespace desktop {

/// The text with tab, line breaks, backslash and control characters written as `\t \n \r \\ \xHH`, so that it stays on
/// one line and within one field. All other UTF-8 passes as it is, and so does what is not UTF-8.
std::string escaped(std::string_view text);

/// One fact for tests and scripts: the fields, escaped and separated by tabs, without a line end. An empty field is
/// written `-`; a field that is `-` itself looks the same.
std::string traceLine(const Fact& fact);

} // namespace desktop
