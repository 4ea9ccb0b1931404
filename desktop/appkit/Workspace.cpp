#include "desktop/appkit/Workspace.hpp"

#include "desktop/appkit/AppKit.hpp"
#include "desktop/foundation/Bundles.hpp"
#include "desktop/runtime/Faults.hpp"
#include "desktop/runtime/Journal.hpp"

namespace desktop {
namespace {

struct Workspace : Object {
  static RunningApplication* frontmostApplication() {
    static const std::string call = "NSWorkspace frontmostApplication"; // made once: each key asks
    ++Queries::current().frontmost;
    if (fails(call)) return nullptr;
    return Applications::current().frontmost.get();
  }
  static BOOL openURL(URL* url) {
    tell({"open", url->text});
    return true;
  }
};

Workspace* sharedWorkspace() {
  static Workspace* const shared = create<Workspace>().detach();
  return shared;
}

Ref<Array> runningApplicationsWithBundleIdentifier(String* identifier) {
  auto found = create<Array>();
  for (const auto& application : Applications::current().identifiedBy(identifier))
    found->elements.emplace_back(application);
  return found;
}

Ref<String> bundleIdentifier(RunningApplication& application) {
  static const std::string call = "NSRunningApplication bundleIdentifier";
  if (fails(call)) return nullptr;
  const Ref<String>& own = application.identifier;
  return !own || Applications::current().lendIdentifiers ? own : string(own->text);
}

BOOL activateWithOptions(RunningApplication& application, NSUInteger options) {
  if (options != 0) stop("applications are activated with no options (0) only");
  bringToFront(application);
  return true;
}

} // namespace

void bringToFront(RunningApplication& application) {
  Applications::current().frontmost = shared(&application);
  tell({"front", application.name});
}

void registerWorkspaceClasses() {
  NativeClass<RunningApplication>("NSRunningApplication", "NSObject")
      .classMethod<"runningApplicationsWithBundleIdentifier:", &runningApplicationsWithBundleIdentifier>()
      .method<"bundleIdentifier", &bundleIdentifier>()
      .fallibleMethod<"activateWithOptions:", &activateWithOptions>();
  NativeClass<Workspace>("NSWorkspace", "NSObject")
      .classMethod<"sharedWorkspace", &sharedWorkspace>()
      .method<"frontmostApplication", &Workspace::frontmostApplication>()
      .fallibleMethod<"openURL:", &Workspace::openURL>();
}

} // namespace desktop
