#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace desktop {

/// The text with tab, line breaks, backslash and control characters written as `\t \n \r \\ \xHH`, so that it stays on
/// one line and within one field. UTF-8 passes as it is.
std::string escaped(std::string_view text);

/// One fact for tests and scripts: the fields, escaped and separated by tabs, without a line end. An empty field is
/// written `-`; a field that is `-` itself looks the same.
std::string traceLine(const std::vector<std::string>& fields);

/// How a trace writes key codes (`0x%02x`), event flags (`0x%x`) and sizes in points (`%g`).
std::string traceCode(std::uint16_t code);
std::string traceFlags(std::uint64_t flags);
std::string traceSize(double size);

} // namespace desktop
