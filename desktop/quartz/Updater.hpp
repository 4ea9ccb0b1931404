/// The update framework, of which the desktop knows the controller and tells what it was asked.
#pragma once

namespace desktop {

/// What loading the framework does: its class exists from then on.
void registerUpdaterClass();

} // namespace desktop
