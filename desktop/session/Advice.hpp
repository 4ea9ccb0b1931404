/// What a person at the prompt is told beyond what happened, as sentences.
#pragma once

#include "desktop/Desktop.hpp"
#include "desktop/session/Command.hpp"

#include <string>
#include <vector>

namespace desktop {

/// After a command that found nothing to act on: which name was perhaps meant, and what there is.
std::string adviceFor(const Desktop& desktop, const Command& command);

/// After a command that worked without anything to tell: what came of it.
std::string outcomeOf(const Desktop& desktop, const Command& command);

/// `did you mean "Settings…"? ` for those of the names that are written much like the given one; else empty.
std::string nearMatches(std::string_view name, const std::vector<std::string>& names);

} // namespace desktop
