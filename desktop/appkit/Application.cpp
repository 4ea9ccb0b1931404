#include "desktop/appkit/AppKit.hpp"
#include "desktop/appkit/Constraints.hpp"

namespace desktop {
namespace {

struct Notification : Object {};

Application* sharedApplication() {
  Ref<Application>& application = Desktop::current().appKit->application;
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
  desktop.tarnwick = shared(&desktop.start("Tarnwick", textOf(identifier)));
  tellDelegate(delegate, "applicationDidFinishLaunching:");
  desktop.serve([&] { return desktop.inputEnded; });
  terminate(nullptr);
}

void Application::terminate(id /*sender*/) {
  Desktop& desktop = Desktop::current();
  if (desktop.appKit->isTerminated) return;
  tellDelegate(delegate, "applicationWillTerminate:");
  desktop.appKit->isTerminated = true;
  desktop.appKit->windows.clear();
  desktop.journal({"terminate"});
  desktop.server.forgetProgram();
  desktop.queue.clear();
  desktop.end("Tarnwick");
  desktop.tarnwick = nullptr;
}

void Application::activateIgnoringOtherApps(BOOL ignoring) {
  if (!ignoring && Desktop::current().frontmost) return;
  Desktop::current().tarnwick->activateWithOptions(0);
}

NSInteger AppKit::runModal(Object& shown, const Fact& fact) {
  constexpr NSInteger NSModalResponseAbort = -1001;
  Desktop& desktop = Desktop::current();
  ModalSession session{&shown, std::nullopt};
  modalSessions.push_back(&session);
  desktop.journal(fact);
  desktop.serve([&] { return session.answer || desktop.inputEnded; });
  modalSessions.pop_back();
  return session.answer.value_or(NSModalResponseAbort);
}

void AppKit::answerModal(NSInteger answer, const std::string& told) const {
  modalSessions.back()->answer = answer;
  Desktop::current().journal({"answer", told});
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
  registerAppearanceClasses();
  registerConstraintClasses();
  registerViewClasses();
  registerControlClasses();
  registerContainerClasses();
  registerWindowClasses();
  registerOpenPanelClasses();
  registerStatusBarClasses();
  registerAlertClass();
}

} // namespace desktop
