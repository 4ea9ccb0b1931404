#include "platform/Accessibility.hpp"
#include "platform/EventServices.hpp"
#include "platform/Workspace.hpp"
#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

using platform::NSString;

CGEventRef passOn(CGEventTapProxy, CGEventType, CGEventRef event, void*) {
  return event;
}
/// Opens no autorelease pool for what it asks for.
CGEventRef askWithoutPool(CGEventTapProxy, CGEventType, CGEventRef event, void*) {
  static_cast<void>(platform::NSWorkspace::sharedWorkspace().frontmostApplication().bundleIdentifier());
  return event;
}

/// A tap on the main run loop.
struct Tap {
  platform::CF<CFMachPortRef> port;
  platform::CF<CFRunLoopSourceRef> source;

  explicit Tap(CGEventTapCallBack callback = passOn)
      : port(platform::adopt, CGEventTapCreate(kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionDefault,
                                               CGEventMask{1} << kCGEventKeyDown, callback, nullptr)),
        source(platform::adopt, CFMachPortCreateRunLoopSource(kCFAllocatorDefault, port.get(), 0)) {
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source.get(), kCFRunLoopCommonModes);
  }
};

CFTypeRef focusedElement() {
  const platform::CF<AXUIElementRef> system(platform::adopt, AXUIElementCreateSystemWide());
  CFTypeRef value = nullptr;
  AXUIElementCopyAttributeValue(system.get(), NSString("AXFocusedUIElement").asCFString(), &value);
  return value;
}

// On a Mac these would go unnoticed here, and wrong somewhere else.
TEST(QuartzDeathTest, MistakesOfTheProgramStopIt) {
  const struct {
    const char* what;
    void (*mistake)(Desktop&);
    const char* sentence;
  } mistakes[] = {
      {"a source added in a mode of its own",
       [](Desktop&) { CFRunLoopAddSource(CFRunLoopGetCurrent(), Tap().source.get(), NSString("mode").asCFString()); },
       "a source outside of the common modes"},
      {"a source removed from another mode than it was added in",
       [](Desktop&) {
         CFRunLoopRemoveSource(CFRunLoopGetCurrent(), Tap().source.get(), NSString("mode").asCFString());
       },
       "a source taken from other modes than the common ones"},
      {"a source that waits for others",
       [](Desktop&) { CFMachPortCreateRunLoopSource(kCFAllocatorDefault, Tap().port.get(), 1); },
       "a port's source of an order \\(1\\)"},
      {"a callback without a pool",
       [](Desktop& machine) {
         const Tap tap(askWithoutPool);
         machine.server.type(kCGEventKeyDown, 0, 0);
       },
       "a tap's callback left behind what a pool of its own would release"},
      {"an identifier kept without a reference",
       [](Desktop&) {
         id kept = nullptr;
         {
           const platform::AutoreleasePool pool;
           kept = platform::NSWorkspace::sharedWorkspace().frontmostApplication().bundleIdentifier().object();
         }
         platform::send<"length", NSUInteger>(kept);
       },
       "message 'length' to a released NSString"},
      {"a value taken although the question failed",
       [](Desktop& machine) {
         machine.accessibility.trusted = false;
         CFGetTypeID(focusedElement());
       },
       "a released result of a failed question was used"},
  };
  for (const auto& [what, mistake, sentence] : mistakes) {
    TestDesktop desktop;
    EXPECT_DEATH(mistake(desktop.machine), std::string("tarnwick: ") + sentence) << what;
  }
}

} // namespace
} // namespace desktop
