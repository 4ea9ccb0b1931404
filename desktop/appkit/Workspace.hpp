/// The workspace's part in applications: the program asks it for the one in front, and brings others there.
#pragma once

#include "desktop/quartz/Applications.hpp"

namespace desktop {

/// Brings it to the front for the program, and tells the journal.
void bringToFront(RunningApplication& application);

} // namespace desktop
