/// Quartz event services: keyboard events and event taps.
///
/// An event handed to a tap's callback belongs to the caller; one that was created belongs to its creator.
#pragma once

#include "platform/CoreFoundation.hpp"

#if defined(__APPLE__) && __has_include(<CoreGraphics/CGEvent.h>)
#include <CoreGraphics/CGEvent.h>
#else
extern "C" {
using CGEventRef = struct __CGEvent*;
using CGEventSourceRef = struct __CGEventSource*;
using CGEventTapProxy = struct __CGEventTapProxy*;
using CGEventMask = std::uint64_t;
using CGKeyCode = std::uint16_t;

enum CGEventType : std::uint32_t {
  kCGEventKeyDown = 10,
  kCGEventKeyUp = 11,
  kCGEventTapDisabledByTimeout = 0xFFFFFFFE,
  kCGEventTapDisabledByUserInput = 0xFFFFFFFF,
};

using CGEventFlags = std::uint64_t;
enum : CGEventFlags {
  kCGEventFlagMaskNonCoalesced = 0x100,
  kCGEventFlagMaskAlphaShift = 0x10000,
  kCGEventFlagMaskShift = 0x20000,
  kCGEventFlagMaskControl = 0x40000,
  kCGEventFlagMaskAlternate = 0x80000,
  kCGEventFlagMaskCommand = 0x100000,
  kCGEventFlagMaskNumericPad = 0x200000,
  kCGEventFlagMaskHelp = 0x400000,
  kCGEventFlagMaskSecondaryFn = 0x800000,
};

enum CGEventField : std::uint32_t { kCGKeyboardEventKeycode = 9 };
enum CGEventTapLocation : std::uint32_t { kCGHIDEventTap = 0, kCGSessionEventTap = 1 };
enum CGEventTapPlacement : std::uint32_t { kCGHeadInsertEventTap = 0 };
enum CGEventTapOptions : std::uint32_t { kCGEventTapOptionDefault = 0 };

/// Answers the event to deliver, or null to deliver none.
using CGEventTapCallBack = CGEventRef (*)(CGEventTapProxy proxy, CGEventType type, CGEventRef event, void* userInfo);

/// Null when refused: the usual cause is missing Accessibility trust.
CFMachPortRef CGEventTapCreate(CGEventTapLocation tap, CGEventTapPlacement place, CGEventTapOptions options,
                               CGEventMask eventsOfInterest, CGEventTapCallBack callback, void* userInfo);
void CGEventTapEnable(CFMachPortRef tap, bool enable);
CGEventFlags CGEventGetFlags(CGEventRef event);
void CGEventSetFlags(CGEventRef event, CGEventFlags flags);
std::int64_t CGEventGetIntegerValueField(CGEventRef event, CGEventField field);
void CGEventSetIntegerValueField(CGEventRef event, CGEventField field, std::int64_t value);
CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef source, CGKeyCode virtualKey, bool keyDown);
void CGEventPost(CGEventTapLocation tap, CGEventRef event);
}
#endif
