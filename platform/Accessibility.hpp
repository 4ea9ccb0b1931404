/// Accessibility: trust, and the element that has the keyboard focus.
#pragma once

#include "platform/CoreFoundation.hpp"

#if defined(__APPLE__) && __has_include(<ApplicationServices/ApplicationServices.h>)
#include <ApplicationServices/ApplicationServices.h>
#else
extern "C" {
using AXUIElementRef = const struct __AXUIElement*;
enum AXError : std::int32_t { kAXErrorSuccess = 0 };

extern const CFStringRef kAXTrustedCheckOptionPrompt;

/// With the prompt option set, the system offers the user its request for access; the call does not wait for it.
Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options);
AXUIElementRef AXUIElementCreateSystemWide(void);
/// Waits for the application that owns the element. On success `value`, if any, belongs to the caller.
AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef* value);
CFTypeID AXUIElementGetTypeID(void);
}
#endif
