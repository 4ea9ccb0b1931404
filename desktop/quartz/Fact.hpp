#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace desktop {

/// One thing that happened, in the words of a trace: its name, then its fields.
using Fact = std::vector<std::string>;

/// How facts write key codes (`0x%02x`), event flags (`0x%x`) and sizes in points (`%g`).
std::string factCode(std::uint16_t code);
std::string factFlags(std::uint64_t flags);
std::string factSize(double size);

} // namespace desktop
