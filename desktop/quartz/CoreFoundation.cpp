#include "platform/Accessibility.hpp"

#include "desktop/quartz/Desktop.hpp"

using namespace desktop;

namespace {

/// A constant of the platform: there before the program begins, never released.
CFStringRef constant(std::u16string_view text) {
  registerClasses();
  return reinterpret_cast<CFStringRef>(static_cast<id>(string(text).detach()));
}

Object* objectOf(CFTypeRef reference) {
  return static_cast<Object*>(static_cast<id>(const_cast<void*>(reference)));
}

} // namespace

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFRunLoopMode kCFRunLoopCommonModes = constant(u"kCFRunLoopCommonModes");
const CFStringRef kAXTrustedCheckOptionPrompt = constant(u"AXTrustedCheckOptionPrompt");

CFTypeRef CFRetain(CFTypeRef object) {
  return static_cast<id>(retain(::objectOf(object)));
}
void CFRelease(CFTypeRef object) {
  release(::objectOf(object));
}
Boolean CFEqual(CFTypeRef one, CFTypeRef other) {
  return one == other || as<String>(::objectOf(one))->isEqualToString(as<String>(::objectOf(other)));
}
CFHashCode CFHash(CFTypeRef object) {
  return as<String>(::objectOf(object))->hash();
}
/// Classes are the type identifiers here.
CFTypeID CFGetTypeID(CFTypeRef object) {
  return reinterpret_cast<CFTypeID>(::objectOf(object)->isa);
}
}
