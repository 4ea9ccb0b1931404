#include "desktop/appkit/Workspace.hpp"

#include "desktop/appkit/AppKit.hpp"
#include "desktop/foundation/Bundles.hpp"
#include "desktop/runtime/Faults.hpp"
#include "desktop/runtime/Journal.hpp"

namespace desktop {
namespace {

struct Workspace : Object {
  static RunningApplication* frontmostApplication() {
    ++Queries::current().frontmost;
    if (fails("NSWorkspace frontmostApplication")) return nullptr;
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

String* bundleIdentifier(RunningApplication& application) {
  if (fails("NSRunningApplication bundleIdentifier")) return nullptr;
  String* const own = application.identifier.get();
  if (own == nullptr || Applications::current().lendIdentifiers) return own;
  return static_cast<String*>(autorelease(string(own->text).detach()));
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
      .fallibleClassMethod<"runningApplicationsWithBundleIdentifier:", &runningApplicationsWithBundleIdentifier>()
      .method<"bundleIdentifier", &bundleIdentifier>()
      .fallibleMethod<"activateWithOptions:", &activateWithOptions>();
  NativeClass<Workspace>("NSWorkspace", "NSObject")
      .classMethod<"sharedWorkspace", &sharedWorkspace>()
      .method<"frontmostApplication", &Workspace::frontmostApplication>()
      .fallibleMethod<"openURL:", &Workspace::openURL>();
}

} // namespace desktop
