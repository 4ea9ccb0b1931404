#include "settings/MappingsWindowController.hpp"

#include "platform/Application.hpp"
#include "platform/RuntimeClass.hpp"
#include "platform/Workspace.hpp"

namespace tarnwick {

using namespace platform;

namespace {

constexpr auto websiteAddress = "https://tarnwick.example/about";

NSWindow makeWindow() {
  auto window = NSWindow::make({{0, 0}, MappingsWindowController::defaultContentSize},
                               NSWindowStyleMaskTitled | NSWindowStyleMaskClosable | NSWindowStyleMaskResizable,
                               NSBackingStoreBuffered, NO);
  window.setTitle("Tarnwick Settings");
  window.setReleasedWhenClosed(NO);
  window.setMinSize({460, 500});
  return window;
}

} // namespace

Class MappingsWindowController::runtimeClass() {
  static const Class registered =
      RuntimeClass<MappingsWindowController, "MappingsWindowController", "NSWindowController">()
          .conformsTo("NSWindowDelegate")
          .method<"initWithCoder:", &MappingsWindowController::initWithCoder>()
          .method<"show", &MappingsWindowController::show>()
          .method<"windowDidResize:", &MappingsWindowController::windowDidResize>()
          .method<"toggleMapping:", &MappingsWindowController::toggleMapping>()
          .method<"chooseAppExemption", &MappingsWindowController::chooseAppExemption>()
          .method<"removeExemption:", &MappingsWindowController::removeExemption>()
          .method<"openLoginItems", &MappingsWindowController::openLoginItems>()
          .method<"openDeveloperWebsite", &MappingsWindowController::openDeveloperWebsite>()
          .registered();
  return registered;
}

NSWindowController MappingsWindowController::make(std::shared_ptr<KeyRemapper> remapper) {
  runtimeClass();
  auto controller = platform::make<"MappingsWindowController", "initWithWindow:", NSWindowController>(makeWindow());
  if (!controller) return controller;
  const id instance = controller.object();
  auto& state = InstanceState<MappingsWindowController>::attach(instance, instance, std::move(remapper));
  controller.window().setDelegate(instance);
  state.setupContent();
  return controller;
}

MappingsWindowController::MappingsWindowController(id instance, std::shared_ptr<KeyRemapper> engine)
    : self(instance), remapper(std::move(engine)) {}

id MappingsWindowController::initWithCoder(id self, id /*coder*/) {
  const NSObject refused(adopt, self);
  return nullptr;
}

NSWindow MappingsWindowController::window() const {
  return NSWindowController(share, self).window();
}

void MappingsWindowController::show() {
  updateCheckboxes();
  refreshExemptionsUI();
  applyInitialWindowSizeIfNeeded();
  updateScrollLayout();
  window().center();
  window().makeKeyAndOrderFront();
  NSApplication::sharedApplication().activateIgnoringOtherApps(YES);
}

void MappingsWindowController::openLoginItems() {
  NSWorkspace::openAddress(loginItemsAddress);
}

void MappingsWindowController::openDeveloperWebsite() {
  NSWorkspace::openAddress(websiteAddress);
}

} // namespace tarnwick
