#include "desktop/appkit/AppKit.hpp"

namespace desktop {
namespace {

struct UpdaterController : Object {
  UpdaterController* initWithStartingUpdater(BOOL starts, Object* /*updaterDelegate*/, Object* /*userDriverDelegate*/) {
    if (starts) tell({"updater", "started"});
    return this;
  }
  static void checkForUpdates(Object* /*sender*/) { tell({"updater", "check"}); }
};

} // namespace

void registerUpdaterClass() {
  if (nativeClass<UpdaterController> != nullptr) return;
  NativeClass<UpdaterController>("SPUStandardUpdaterController", "NSObject")
      .fallibleMethod<"initWithStartingUpdater:updaterDelegate:userDriverDelegate:",
                      &UpdaterController::initWithStartingUpdater>()
      .fallibleMethod<"checkForUpdates:", &UpdaterController::checkForUpdates>();
}

} // namespace desktop
