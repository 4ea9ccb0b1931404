#include "desktop/foundation/CoreFoundation.hpp"

#include "desktop/foundation/Collections.hpp"
#include "desktop/foundation/Dispatch.hpp"
#include "desktop/foundation/Strings.hpp"

#include <algorithm>
#include <cmath>

namespace desktop {

MachPort::~MachPort() = default;

void RunLoop::addTimer(double seconds, std::function<void()> work) {
  timers.emplace(MainQueue::current().now + std::llround(seconds * 1e9), std::move(work));
}

bool RunLoop::fireNextTimer() {
  if (timers.empty() || timers.begin()->first > MainQueue::current().now) return false;
  const auto timer = timers.extract(timers.begin());
  timer.mapped()();
  return true;
}

void RunLoop::settle() {
  const platform::AutoreleasePool pool;
  while (sendNextEvent() || MainQueue::current().runNext() || fireNextTimer()) {
  }
}

void RunLoop::serve(const std::function<bool()>& done) {
  settle();
  while (!done()) {
    const platform::AutoreleasePool pool;
    if (!inputEnded && !nextCommand()) inputEnded = true;
    settle();
  }
}

void RunLoop::wait(double seconds) {
  // About 146 years: a wait beyond stops here, rather than make the clock's number overflow.
  constexpr std::int64_t lastMoment = std::int64_t{1} << 62;
  MainQueue& queue = MainQueue::current();
  const double nanoseconds = std::min(seconds * 1e9, static_cast<double>(lastMoment - queue.now));
  const auto end = queue.now + std::llround(nanoseconds);
  settle();
  while (queue.now < end) {
    const std::int64_t nextTimer = timers.empty() ? end : timers.begin()->first;
    queue.now = queue.nextMoment(std::min<std::int64_t>(end, nextTimer));
    settle();
  }
}

namespace {

/// A message that the run loop sends later.
void performAfterDelay(id self, SEL, SEL selector, id argument, double delay, id modes) {
  const auto& names = as<Array>(modes)->elements;
  if (names.size() != 1 || names[0].get() != objectBehind<Object>(kCFRunLoopCommonModes))
    stop("a message for later outside of the common modes would wait for the end of an alert");
  const auto receiver = shared(static_cast<Object*>(self));
  const auto sent = shared(static_cast<Object*>(argument));
  RunLoop::current().addTimer(delay, [=] { sendAction(selector, receiver.get(), sent.get()); });
}

} // namespace

void registerCoreFoundationClasses() {
  class_addMethod(nativeClass<Object>, sel_registerName("performSelector:withObject:afterDelay:inModes:"),
                  reinterpret_cast<IMP>(performAfterDelay), platform::methodEncoding<void, SEL, id, double, id>.text);
  NativeClass<MachPort>("CFMachPort", "NSObject");
  NativeClass<RunLoopSource>("CFRunLoopSource", "NSObject");
}

} // namespace desktop

using namespace desktop;

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFRunLoopMode kCFRunLoopCommonModes = constantString(u"kCFRunLoopCommonModes");
const CFRunLoopMode kCFRunLoopDefaultMode = constantString(u"kCFRunLoopDefaultMode");

CFTypeRef CFRetain(CFTypeRef object) {
  return static_cast<id>(retain(objectBehind<Object>(object)));
}
void CFRelease(CFTypeRef object) {
  release(objectBehind<Object>(object));
}
Boolean CFEqual(CFTypeRef one, CFTypeRef other) {
  return one == other || objectBehind<String>(one)->isEqualToString(objectBehind<String>(other));
}
CFHashCode CFHash(CFTypeRef object) {
  return objectBehind<String>(object)->hash();
}
/// Classes are the type identifiers here.
CFTypeID CFGetTypeID(CFTypeRef object) {
  return reinterpret_cast<CFTypeID>(objectBehind<Object>(object)->isa);
}

CFRunLoopSourceRef CFMachPortCreateRunLoopSource(CFAllocatorRef, CFMachPortRef port, CFIndex order) {
  if (order != 0) stop("a port's source of an order (" + std::to_string(order) + ") would be served out of turn");
  if (fails("CFMachPortCreateRunLoopSource")) return nullptr;
  auto source = create<RunLoopSource>();
  source->port = shared(objectBehind<MachPort>(port));
  return referenceTo<CFRunLoopSourceRef>(source.detach());
}

CFRunLoopRef CFRunLoopGetCurrent() {
  static char onlyLoop;
  return reinterpret_cast<CFRunLoopRef>(&onlyLoop);
}

void CFRunLoopAddSource(CFRunLoopRef, CFRunLoopSourceRef source, CFRunLoopMode mode) {
  if (mode != kCFRunLoopCommonModes) stop("a source outside of the common modes would miss events under an alert");
  objectBehind<RunLoopSource>(source)->port->scheduled = shared(objectBehind<RunLoopSource>(source));
}

CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode, double seconds, Boolean onlyFirst) {
  if (onlyFirst != 0) stop("the run loop runs for all of its time, not up to the first thing that it does");
  RunLoop::current().wait(seconds);
  return kCFRunLoopRunTimedOut;
}

void CFRunLoopRemoveSource(CFRunLoopRef, CFRunLoopSourceRef source, CFRunLoopMode mode) {
  if (mode != kCFRunLoopCommonModes) stop("a source taken from other modes than the common ones would stay in these");
  objectBehind<RunLoopSource>(source)->port->scheduled = nullptr;
}
}
