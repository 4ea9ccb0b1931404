#include "desktop/quartz/Desktop.hpp"

#include "desktop/appkit/AppKit.hpp"
#include "desktop/quartz/Accessibility.hpp"

#include <algorithm>
#include <cmath>

namespace desktop {
namespace {

Desktop* only = nullptr;

[[noreturn, gnu::noinline]] void stopWithoutDesktop() {
  stop("there is no desktop to run on");
}

struct Workspace : Object {
  static RunningApplication* frontmostApplication() {
    Desktop& desktop = Desktop::current();
    ++desktop.queries.frontmost;
    return desktop.frontmost.get();
  }
  static BOOL openURL(URL* url) {
    Desktop::current().journal({"open", url->text});
    return true;
  }
};

/// Role of the element that has the focus in an application that has just started.
const char* firstRole(const std::string& name) {
  if (name == "Editor") return "AXTextArea";
  return name == "Finder" ? "AXList" : "AXGroup";
}

Workspace* sharedWorkspace() {
  static Workspace* const shared = create<Workspace>().detach();
  return shared;
}

Ref<Array> runningApplicationsWithBundleIdentifier(String* identifier) {
  auto found = create<Array>();
  for (const auto& application : Desktop::current().applications) {
    const String* own = application->identifier.get();
    if (own != nullptr && own->isEqualToString(identifier)) found->elements.emplace_back(application);
  }
  return found;
}

} // namespace

BOOL RunningApplication::activateWithOptions(NSUInteger options) {
  if (options != 0) stop("applications are activated with no options (0) only");
  Desktop& desktop = Desktop::current();
  desktop.frontmost = shared(this);
  desktop.journal({"front", name});
  return true;
}

Desktop::Desktop() : appKit((registerClasses(), std::make_unique<AppKit>())) {
  if (only != nullptr) stop("there can only be one desktop at a time");
  only = this;
  mainBundle = create<Bundle>();
  mainBundle->isMain = true;
  defaults = create<UserDefaults>();
  defaults->file = std::make_unique<PropertyListFile>();
  start("Finder", "com.apple.finder");
  frontmost = shared(&start("Editor", "com.example.editor"));
}

Desktop::~Desktop() {
  const platform::AutoreleasePool pool;
  server.forgetProgram();
  appKit.reset();
  only = nullptr;
}

Desktop& Desktop::current() {
  if (only == nullptr) stopWithoutDesktop();
  return *only;
}

RunningApplication& Desktop::start(const std::string& name, const std::string& identifier) {
  auto application = create<RunningApplication>();
  application->name = name;
  if (!identifier.empty()) application->identifier = string(identifier);
  application->role = firstRole(name);
  if (identifier == "com.apple.finder") application->reaction = finderReaction;
  applications.push_back(application);
  return *application;
}

bool Desktop::end(const std::string& name) {
  const auto isIt = [&](const auto& application) { return application->name == name; };
  if (frontmost && isIt(frontmost)) frontmost = nullptr;
  return std::erase_if(applications, isIt) != 0;
}

RunningApplication* Desktop::named(const std::string& name) const {
  for (const auto& application : applications) {
    if (application->name == name) return application.get();
  }
  return nullptr;
}

void Desktop::settle() {
  const platform::AutoreleasePool pool;
  while (server.sendPosted() || queue.runNext()) {
  }
}

void Desktop::serve(const std::function<bool()>& done) {
  settle();
  while (!done()) {
    const platform::AutoreleasePool pool;
    if (!inputEnded && !nextCommand()) inputEnded = true;
    settle();
  }
}

void Desktop::wait(double seconds) {
  // So far the clock goes; it stops there rather than run over.
  constexpr std::int64_t lastMoment = std::int64_t{1} << 62;
  const double nanoseconds = std::min(seconds * 1e9, static_cast<double>(lastMoment - queue.now));
  const auto end = queue.now + std::llround(nanoseconds);
  settle();
  while (queue.now < end) {
    queue.now = queue.nextMoment(end);
    settle();
  }
}

void registerQuartzClasses() {
  NativeClass<Event>("CGEvent", "NSObject");
  NativeClass<EventTap>("CFMachPort", "NSObject");
  NativeClass<RunLoopSource>("CFRunLoopSource", "NSObject");
  NativeClass<AccessibilityElement>("AXUIElement", "NSObject");
  NativeClass<RunningApplication>("NSRunningApplication", "NSObject")
      .classMethod<"runningApplicationsWithBundleIdentifier:", &runningApplicationsWithBundleIdentifier>()
      .method<"bundleIdentifier", &RunningApplication::bundleIdentifier>()
      .method<"activateWithOptions:", &RunningApplication::activateWithOptions>();
  NativeClass<Workspace>("NSWorkspace", "NSObject")
      .classMethod<"sharedWorkspace", &sharedWorkspace>()
      .method<"frontmostApplication", &Workspace::frontmostApplication>()
      .method<"openURL:", &Workspace::openURL>();
}

void registerClasses() {
  static const bool once = [] {
    registerRootClass();
    registerStringClasses();
    registerCollectionClasses();
    registerBundleClasses();
    registerQuartzClasses();
    registerAppKitClasses();
    return true;
  }();
  static_cast<void>(once);
}

} // namespace desktop
