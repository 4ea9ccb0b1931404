/// Whether and how the program updates itself.
#pragma once

#include "platform/Bundles.hpp"
#include "platform/Updater.hpp"

namespace tarnwick {

/// Whether the information dictionary names a feed and a public key. In a build that nobody publishes they are missing,
/// empty or placeholders.
bool isConfiguredForUpdates(const platform::NSBundle& bundle);

/// Loads the update framework from the bundle's Frameworks folder and starts its updater. Empty when there is no such
/// framework, or when its code has no such updater.
platform::SPUStandardUpdaterController startUpdater(const platform::NSBundle& bundle);

} // namespace tarnwick
