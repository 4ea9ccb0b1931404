/// CoreFoundation under its own names, and the owner of its references.
#pragma once

#include "platform/Send.hpp"

#if defined(__APPLE__) && __has_include(<CoreFoundation/CoreFoundation.h>)
#include <CoreFoundation/CoreFoundation.h>
#else
extern "C" {
using Boolean = unsigned char;
using CFIndex = long;
using CFTypeID = unsigned long;
using CFHashCode = unsigned long;
using CFTypeRef = const void*;
using CFAllocatorRef = const struct __CFAllocator*;
using CFStringRef = const struct __CFString*;
using CFDictionaryRef = const struct __CFDictionary*;
using CFMachPortRef = struct __CFMachPort*;
using CFRunLoopRef = struct __CFRunLoop*;
using CFRunLoopSourceRef = struct __CFRunLoopSource*;
using CFRunLoopMode = CFStringRef;
enum CFRunLoopRunResult : std::int32_t { kCFRunLoopRunTimedOut = 3 };

extern const CFAllocatorRef kCFAllocatorDefault;
extern const CFRunLoopMode kCFRunLoopCommonModes;
extern const CFRunLoopMode kCFRunLoopDefaultMode;

CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);
Boolean CFEqual(CFTypeRef one, CFTypeRef other);
CFHashCode CFHash(CFTypeRef object);

/// Null when no source could be made.
CFRunLoopSourceRef CFMachPortCreateRunLoopSource(CFAllocatorRef allocator, CFMachPortRef port, CFIndex order);
CFRunLoopRef CFRunLoopGetCurrent(void);
void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode);
void CFRunLoopRemoveSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode);
/// Does what becomes due in the next `seconds`, or only the first of it.
CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, double seconds, Boolean onlyFirst);
}
#endif

namespace platform {

/// One reference to a CoreFoundation object, or none; moved, never copied.
template <class Reference> class CF {
public:
  CF() = default;
  CF(Adopt, Reference taken) : held(taken) {}
  CF(Share, Reference shared) : held(shared) {
    if (held != nullptr) CFRetain(held);
  }
  CF(CF&& other) noexcept : held(std::exchange(other.held, nullptr)) {}
  CF& operator=(CF other) noexcept {
    std::swap(held, other.held);
    return *this;
  }
  ~CF() {
    if (held != nullptr) CFRelease(held);
  }

  explicit operator bool() const { return held != nullptr; }
  [[nodiscard]] Reference get() const { return held; }

private:
  Reference held = nullptr;
};

} // namespace platform
