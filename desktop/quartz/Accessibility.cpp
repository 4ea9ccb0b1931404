#include "desktop/quartz/Accessibility.hpp"

#include "desktop/foundation/Collections.hpp"
#include "desktop/foundation/Dispatch.hpp"
#include "desktop/foundation/Strings.hpp"
#include "desktop/quartz/Applications.hpp"
#include "desktop/quartz/Quartz.hpp"
#include "desktop/runtime/Faults.hpp"
#include "desktop/runtime/Journal.hpp"
#include "platform/Accessibility.hpp"

#include <functional>

using namespace desktop;

namespace {

// The platform's codes for a question that could not be answered.
constexpr auto kAXErrorFailure = static_cast<AXError>(-25200);
constexpr auto kAXErrorIllegalArgument = static_cast<AXError>(-25201);
constexpr auto kAXErrorAttributeUnsupported = static_cast<AXError>(-25205);
constexpr auto kAXErrorCannotComplete = static_cast<AXError>(-25204);
constexpr auto kAXErrorNoValue = static_cast<AXError>(-25212);
constexpr auto kAXErrorAPIDisabled = static_cast<AXError>(-25211);
/// The platform's default messaging time-out.
constexpr std::int64_t timeoutNanoseconds = 6'000'000'000;

/// What lies where a value would be when the question failed: whoever uses or releases it is found out.
struct Rubbish : Object {};

AXError give(Ref<Object> value, CFTypeRef* result) {
  *result = static_cast<id>(value.detach());
  return kAXErrorSuccess;
}

Ref<Object> focusedElement(const RunningApplication& application) {
  auto element = create<AccessibilityElement>();
  element->role = application.role;
  return element;
}

/// An answer as the desktop was told to give it, `proper` unless it was told otherwise.
AXError answer(AccessibilityAnswer how, const std::function<Ref<Object>()>& proper, CFTypeRef* result) {
  switch (how) {
  case AccessibilityAnswer::NotAtAll:
    MainQueue::current().now += timeoutNanoseconds;
    return kAXErrorCannotComplete;
  case AccessibilityAnswer::Error:
    return kAXErrorFailure;
  case AccessibilityAnswer::Nothing:
    return give(nullptr, result);
  case AccessibilityAnswer::WrongType:
    return give(create<Number>(), result);
  case AccessibilityAnswer::Proper:
    break;
  }
  return give(proper(), result);
}

AXError copyValue(const AccessibilityElement* element, const std::string& attribute, CFTypeRef* value) {
  if (element == nullptr) return kAXErrorIllegalArgument;
  const Accessibility& accessibility = Accessibility::current();
  const bool asksFocus = element->isSystemWide && attribute == "AXFocusedUIElement";
  const bool asksRole = !element->isSystemWide && attribute == "AXRole";
  if (!asksFocus && !asksRole) return kAXErrorAttributeUnsupported;
  ++(asksFocus ? Queries::current().focusedElement : Queries::current().role);
  if (!accessibility.trusted) return kAXErrorAPIDisabled;
  if (fails("AXUIElementCopyAttributeValue")) return kAXErrorCannotComplete;
  if (asksRole) {
    return answer(
        accessibility.roleAnswer, [&] { return string(*element->role); }, value);
  }
  const Applications& applications = Applications::current();
  const auto& focused = applications.focusElsewhere ? applications.focusElsewhere : applications.frontmost;
  if (!focused || !focused->role) return kAXErrorNoValue;
  return answer(
      accessibility.focusAnswer, [&] { return focusedElement(*focused); }, value);
}

} // namespace

namespace desktop {

void registerAccessibilityClass() {
  NativeClass<AccessibilityElement>("AXUIElement", "NSObject");
  NativeClass<Rubbish>("result of a failed question", "NSObject");
}

} // namespace desktop

extern "C" {

const CFStringRef kAXTrustedCheckOptionPrompt = constantString(u"AXTrustedCheckOptionPrompt");

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
  const bool trusted = Accessibility::current().trusted && !fails("AXIsProcessTrustedWithOptions");
  const auto* entries = objectBehind<Dictionary>(options);
  const auto* key = objectBehind<String>(kAXTrustedCheckOptionPrompt);
  const auto found = entries->entries.find(key->text);
  const bool mayPrompt =
      found != entries->entries.end() && as<Number>(found->second.get())->value == PropertyList(true);
  if (!trusted && mayPrompt) tell({"prompt"});
  return trusted;
}

AXUIElementRef AXUIElementCreateSystemWide() {
  if (fails("AXUIElementCreateSystemWide")) return nullptr;
  auto element = create<AccessibilityElement>();
  element->isSystemWide = true;
  return referenceTo<AXUIElementRef>(element.detach());
}

CFTypeID AXUIElementGetTypeID() {
  return reinterpret_cast<CFTypeID>(nativeClass<AccessibilityElement>);
}

AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef* value) {
  const AXError error =
      copyValue(objectBehind<AccessibilityElement>(element), textOf(objectBehind<String>(attribute)), value);
  if (error != kAXErrorSuccess) *value = referenceTo<CFTypeRef>(create<Rubbish>().get());
  return error;
}
}
