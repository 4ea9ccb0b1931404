#include "desktop/appkit/AppKit.hpp"

namespace desktop {
namespace {

struct Notification : Object {};

void tellDelegate(id delegate, const char* selector) {
  if (delegate == nullptr || !respondsTo(delegate, selector)) return;
  const auto notification = create<Notification>();
  platform::wire::call<void, id>(delegate, sel_registerName(selector), notification.get());
}

Application* sharedApplication() {
  Ref<Application>& application = Desktop::current().appKit->application;
  if (!application) application = create<Application>();
  return application.get();
}

} // namespace

void Application::setDelegate(id value) {
  if (value != nullptr && !conformsTo(value, "NSApplicationDelegate")) {
    stop("a " + value->isa->name + " is no NSApplicationDelegate");
  }
  delegate = value;
}

BOOL Application::setActivationPolicy(NSInteger policy) {
  activationPolicy = policy;
  return true;
}

void Application::run() {
  Desktop& desktop = Desktop::current();
  const String* identifier = desktop.mainBundle->identifier.get();
  desktop.tarnwick = shared(&desktop.start("Tarnwick", textOf(identifier), "AXGroup"));
  tellDelegate(delegate, "applicationDidFinishLaunching:");
  desktop.serve([&] { return desktop.inputEnded; });
  terminate(nullptr);
}

void Application::terminate(id /*sender*/) {
  Desktop& desktop = Desktop::current();
  if (desktop.appKit->isTerminated) return;
  tellDelegate(delegate, "applicationWillTerminate:");
  desktop.appKit->isTerminated = true;
  desktop.journal({"terminate"});
  desktop.server.forgetProgram();
  desktop.queue.clear();
  desktop.end("Tarnwick");
}

void Application::activateIgnoringOtherApps(BOOL /*ignoring*/) {
  Desktop::current().tarnwick->activateWithOptions(0);
}

NSInteger runModalSession(ModalSession& session) {
  constexpr NSInteger NSModalResponseAbort = -1001;
  Desktop& desktop = Desktop::current();
  session.answer.reset();
  desktop.serve([&] { return session.answer || desktop.inputEnded; });
  return session.answer.value_or(NSModalResponseAbort);
}

void registerAppKitClasses() {
  NativeClass<Notification>("NSNotification", "NSObject");
  NativeClass<Application>("NSApplication", "NSObject")
      .classMethod<"sharedApplication", &sharedApplication>()
      .method<"setDelegate:", &Application::setDelegate>()
      .method<"setActivationPolicy:", &Application::setActivationPolicy>()
      .method<"run", &Application::run>()
      .method<"terminate:", &Application::terminate>()
      .method<"activateIgnoringOtherApps:", &Application::activateIgnoringOtherApps>();
  registerImageClass();
  registerStatusBarClasses();
  registerAlertClass();
}

} // namespace desktop
