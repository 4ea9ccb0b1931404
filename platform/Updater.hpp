/// The Sparkle update framework, version 2: a part of the application bundle, not of the system.
#pragma once

#include "platform/Send.hpp"

namespace platform {

/// Makes an updater with the framework's own user interface. It reads its feed address and public key from the main
/// bundle's information dictionary.
class SPUStandardUpdaterController : public NSObject {
public:
  using NSObject::NSObject;
  /// Starts the updater at once, without delegates. Empty while the framework is not loaded.
  static SPUStandardUpdaterController makeStarted() {
    return make<"SPUStandardUpdaterController", "initWithStartingUpdater:updaterDelegate:userDriverDelegate:",
                SPUStandardUpdaterController>(YES, nullptr, nullptr);
  }

  void checkForUpdates() const { send<"checkForUpdates:">(*this, nullptr); }
};

} // namespace platform
