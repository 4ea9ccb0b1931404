#include "platform/Accessibility.hpp"

#include "desktop/quartz/Desktop.hpp"

using namespace desktop;

namespace {

/// A constant of the platform: there before the program begins, never released.
CFStringRef constant(std::u16string_view text) {
  registerClasses();
  return referenceTo<CFStringRef>(string(text).detach());
}

} // namespace

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFRunLoopMode kCFRunLoopCommonModes = constant(u"kCFRunLoopCommonModes");
const CFStringRef kAXTrustedCheckOptionPrompt = constant(u"AXTrustedCheckOptionPrompt");

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
}
