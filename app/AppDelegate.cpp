#include "app/AppDelegate.hpp"

#include "app/AccessibilityPermissions.hpp"
#include "app/Updates.hpp"
#include "platform/Application.hpp"
#include "platform/RuntimeClass.hpp"
#include "platform/Workspace.hpp"
#include "settings/MappingsWindowController.hpp"

namespace tarnwick {

using namespace platform;

namespace {

constexpr auto developerAddress = "https://tarnwick.example";
constexpr const char* disableTitle = "Disable Tarnwick";
constexpr const char* enableTitle = "Enable Tarnwick";

/// The image of the status bar, or its name where the image cannot be had.
void showStatusImage(const NSStatusBarButton& button) {
  const NSURL file = NSBundle::mainBundle().URLForResource("MenuBarTemplate", "png");
  const NSImage image = file ? NSImage::withContentsOfURL(file) : NSImage();
  if (!image) {
    button.setTitle("Tarnwick");
    return;
  }
  image.setTemplate(YES);
  image.setSize({18, 18});
  button.setImage(image);
  button.setImagePosition(NSImageOnly);
  button.setTitle("");
}

} // namespace

Class AppDelegate::runtimeClass() {
  static const Class registered =
      RuntimeClass<AppDelegate, "AppDelegate", "NSObject">()
          .conformsTo("NSApplicationDelegate")
          .method<"init", &initialise<AppDelegate, "NSObject">>()
          .method<"applicationDidFinishLaunching:", &AppDelegate::applicationDidFinishLaunching>()
          .method<"applicationWillTerminate:", &AppDelegate::applicationWillTerminate>()
          .method<"toggleRemap", &AppDelegate::toggleRemap>()
          .method<"openMappings", &AppDelegate::openMappings>()
          .method<"checkForUpdates", &AppDelegate::checkForUpdates>()
          .method<"openDeveloper", &AppDelegate::openDeveloper>()
          .method<"quitApp", &AppDelegate::quitApp>()
          .registered();
  return registered;
}

void AppDelegate::applicationDidFinishLaunching(id /*notification*/) {
  const auto application = NSApplication::sharedApplication();
  application.setActivationPolicy(NSApplicationActivationPolicyAccessory);
  setupMenu();
  setupUpdater();

  if (!AccessibilityPermissions::ensure()) AccessibilityPermissions::showAlert();
  if (!remapper->start()) {
    AccessibilityPermissions::showAlert();
    application.terminate();
    return;
  }
  toggleItem.setEnabled(YES);
  showToggleTitle();
}

void AppDelegate::applicationWillTerminate(id /*notification*/) {
  remapper->stop();
}

NSMenuItem AppDelegate::makeItem(const char* title, SEL action, const char* keyEquivalent) const {
  auto item = NSMenuItem::make(title, action, keyEquivalent);
  item.setTarget(self);
  return item;
}

void AppDelegate::setupMenu() {
  statusItem = NSStatusBar::systemStatusBar().statusItemWithLength(NSSquareStatusItemLength);
  showStatusImage(statusItem.button());

  toggleItem = makeItem(disableTitle, selectorNamed<"toggleRemap">());
  checkForUpdatesItem = makeItem("Check for Updates...", selectorNamed<"checkForUpdates">());
  checkForUpdatesItem.setEnabled(NO);

  const auto menu = NSMenu::make();
  menu.addItem(toggleItem);
  menu.addItem(NSMenuItem::separatorItem());
  menu.addItem(makeItem("Settings…", selectorNamed<"openMappings">()));
  menu.addItem(NSMenuItem::separatorItem());
  menu.addItem(checkForUpdatesItem);
  menu.addItem(NSMenuItem::separatorItem());
  menu.addItem(makeItem("Developer", selectorNamed<"openDeveloper">()));
  menu.addItem(NSMenuItem::separatorItem());
  menu.addItem(makeItem("Quit Tarnwick", selectorNamed<"quitApp">(), "q"));
  statusItem.setMenu(menu);
}

void AppDelegate::setupUpdater() {
  const NSBundle bundle = NSBundle::mainBundle();
  if (isConfiguredForUpdates(bundle)) updaterController = startUpdater(bundle);
  if (!updaterController) return;
  checkForUpdatesItem.setTarget(updaterController.object());
  checkForUpdatesItem.setAction(selectorNamed<"checkForUpdates:">());
  checkForUpdatesItem.setEnabled(YES);
}

void AppDelegate::showToggleTitle() const {
  toggleItem.setTitle(remapper->enabled ? disableTitle : enableTitle);
}

void AppDelegate::toggleRemap() {
  remapper->enabled = !remapper->enabled;
  showToggleTitle();
}

void AppDelegate::openMappings() {
  if (!mappingsWindow) mappingsWindow = MappingsWindowController::make(remapper);
  send<"show">(mappingsWindow);
}

void AppDelegate::checkForUpdates() {
  updaterController.checkForUpdates();
}

void AppDelegate::openDeveloper() {
  NSWorkspace::openAddress(developerAddress);
}

void AppDelegate::quitApp() {
  NSApplication::sharedApplication().terminate();
}

} // namespace tarnwick
