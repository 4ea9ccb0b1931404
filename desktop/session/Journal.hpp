/// What happened, told to people.
#pragma once

#include "desktop/quartz/Fact.hpp"

namespace desktop {

/// The fact as an indented sentence for people.
std::string sentenceFor(const Fact& fact);

} // namespace desktop
