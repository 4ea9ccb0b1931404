#include "remap/KeyRemapper.hpp"

namespace tarnwick {

bool KeyRemapper::start() {
  constexpr CGEventMask keyEvents = (CGEventMask{1} << kCGEventKeyDown) | (CGEventMask{1} << kCGEventKeyUp);
  eventTap = {platform::adopt, CGEventTapCreate(kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionDefault,
                                                keyEvents, tapCallback, this)};
  if (!eventTap) return false;
  runLoopSource = {platform::adopt, CFMachPortCreateRunLoopSource(kCFAllocatorDefault, eventTap.get(), 0)};
  if (runLoopSource) {
    // The common modes, so that keys keep flowing while a menu is open or an alert is up.
    CFRunLoopAddSource(CFRunLoopGetCurrent(), runLoopSource.get(), kCFRunLoopCommonModes);
    CGEventTapEnable(eventTap.get(), true);
  }
  return true;
}

void KeyRemapper::stop() {
  if (runLoopSource) CFRunLoopRemoveSource(CFRunLoopGetCurrent(), runLoopSource.get(), kCFRunLoopCommonModes);
  if (eventTap) CGEventTapEnable(eventTap.get(), false);
  runLoopSource = {};
  eventTap = {};
}

CGEventRef KeyRemapper::tapCallback(CGEventTapProxy proxy, CGEventType type, CGEventRef event,
                                    void* userInfo) noexcept {
  if (userInfo == nullptr) return event;
  const platform::AutoreleasePool pool;
  // Never empty: whoever started the tap stops it before letting go of the remapper.
  const auto remapper = static_cast<KeyRemapper*>(userInfo)->self.lock();
  return remapper->handleEvent(proxy, type, event);
}

} // namespace tarnwick
