/// What the loader does with a file that it cannot run.
#pragma once

#include <string>

namespace shipped {

/// Says "tarnwick: SENTENCE" on standard error and ends the process with exit status 2.
[[noreturn]] void refuse(const std::string& sentence);

} // namespace shipped
