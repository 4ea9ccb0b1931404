/// What the program takes from the platform, answered by the stand-in and by this machine's C library.
#pragma once

#include <string>

namespace shipped {

/// The address behind an imported symbol (`_CFEqual`). Ends the process with a sentence (Refusal.hpp) when nothing here
/// has that name.
void* addressOf(const std::string& symbol);

} // namespace shipped
