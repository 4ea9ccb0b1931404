/// The application delegate: launch, status-bar menu, termination.
#pragma once

#include "platform/StatusBar.hpp"
#include "platform/Updater.hpp"
#include "platform/Window.hpp"
#include "remap/KeyRemapper.hpp"

#include <memory>

namespace tarnwick {

/// State of the one run-time object of class `AppDelegate`, which `main` makes and keeps. It owns the remapper and
/// every long-lived part of the user interface. Main thread only.
class AppDelegate {
public:
  explicit AppDelegate(id instance) : self(instance) {}

  /// The run-time class, registered on first use.
  static Class runtimeClass();

  void applicationDidFinishLaunching(id notification);
  void applicationWillTerminate(id notification);

  void toggleRemap();
  void openMappings();
  void checkForUpdates();
  void openDeveloper();
  void quitApp();

private:
  /// The run-time object that this is the state of; it is the target of the menu's actions.
  id self;

  std::shared_ptr<KeyRemapper> remapper = KeyRemapper::make();
  /// Absent unless the bundle is configured for updates.
  platform::SPUStandardUpdaterController updaterController;
  platform::NSStatusItem statusItem;
  platform::NSMenuItem checkForUpdatesItem;
  platform::NSMenuItem toggleItem;
  /// Made on first use.
  platform::NSWindowController mappingsWindow;

  void setupMenu();
  void setupUpdater();
  [[nodiscard]] platform::NSMenuItem makeItem(const char* title, SEL action, const char* keyEquivalent = "") const;
  void showToggleTitle() const;
};

} // namespace tarnwick
