#include "desktop/appkit/Application.hpp"

#include "desktop/appkit/AppKit.hpp"
#include "desktop/appkit/Workspace.hpp"
#include "desktop/foundation/Bundles.hpp"
#include "desktop/foundation/CoreFoundation.hpp"
#include "desktop/foundation/Dispatch.hpp"
#include "desktop/quartz/Applications.hpp"
#include "desktop/quartz/EventServices.hpp"

namespace desktop {
namespace {

struct Notification : Object {};

Application* sharedApplication() {
  Ref<Application>& application = AppKit::current().application;
  if (!application) application = create<Application>();
  return application.get();
}

} // namespace

void tellDelegate(id delegate, const char* selector) {
  if (delegate == nullptr || !respondsTo(delegate, selector)) return;
  const auto notification = create<Notification>();
  perform<void, id>(delegate, sel_registerName(selector), notification.get());
}

void Application::setDelegate(id value) {
  checkDelegate(value, "NSApplicationDelegate");
  delegate = value;
}

BOOL Application::setActivationPolicy(NSInteger policy) {
  activationPolicy = policy;
  return true;
}

void Application::run() {
  const String* identifier = MainBundle::current()->identifier.get();
  Applications& applications = Applications::current();
  applications.tarnwick = shared(&applications.start("Tarnwick", textOf(identifier)));
  tellDelegate(delegate, "applicationDidFinishLaunching:");
  RunLoop& loop = RunLoop::current();
  loop.serve([&] { return loop.inputEnded; });
  terminate(nullptr);
}

void Application::terminate(id /*sender*/) {
  AppKit& appKit = AppKit::current();
  if (appKit.isTerminated) return;
  tellDelegate(delegate, "applicationWillTerminate:");
  appKit.isTerminated = true;
  appKit.windows.clear();
  tell({"terminate"});
  WindowServer::current().forgetProgram();
  MainQueue::current().clear();
  Applications::current().end("Tarnwick");
  Applications::current().tarnwick = nullptr;
}

void Application::activateIgnoringOtherApps(BOOL ignoring) {
  const Applications& applications = Applications::current();
  if (ignoring || !applications.frontmost) bringToFront(*applications.tarnwick);
}

Window* Application::modalWindow() const {
  return ifIs<Window>(AppKit::current().frontModal());
}

void Application::abortModal() {
  const AppKit& appKit = AppKit::current();
  if (appKit.frontModal() != nullptr) appKit.answerModal(NSModalResponseAbort, "");
}

void registerApplicationClasses() {
  NativeClass<Notification>("NSNotification", "NSObject");
  NativeClass<Application>("NSApplication", "NSObject")
      .classMethod<"sharedApplication", &sharedApplication>()
      .method<"setDelegate:", &Application::setDelegate>()
      .fallibleMethod<"setActivationPolicy:", &Application::setActivationPolicy>()
      .method<"run", &Application::run>()
      .method<"terminate:", &Application::terminate>()
      .method<"activateIgnoringOtherApps:", &Application::activateIgnoringOtherApps>()
      .method<"modalWindow", &Application::modalWindow>()
      .method<"abortModal", &Application::abortModal>();
}

} // namespace desktop
