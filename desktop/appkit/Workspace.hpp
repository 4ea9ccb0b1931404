/// The workspace's part in applications: the program asks it for the one in front, and brings others there.
#pragma once

#include "desktop/quartz/Applications.hpp"

namespace desktop {

/// By the program's wish, of which the journal tells.
void bringToFront(RunningApplication& application);

} // namespace desktop
