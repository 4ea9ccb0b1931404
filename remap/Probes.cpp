#include "platform/Accessibility.hpp"
#include "platform/Workspace.hpp"
#include "remap/KeyRemapper.hpp"

namespace tarnwick {

using namespace platform;

namespace {

/// The value of an attribute; empty when the application does not answer, or answers nothing.
CF<CFTypeRef> attribute(AXUIElementRef element, const NSString& name) {
  CFTypeRef value = nullptr;
  if (AXUIElementCopyAttributeValue(element, name.asCFString(), &value) != kAXErrorSuccess) return {};
  return {adopt, value};
}

} // namespace

bool KeyRemapper::isTypingInEditableField() const {
  const CF<AXUIElementRef> system(adopt, AXUIElementCreateSystemWide());
  const auto focused = attribute(system.get(), NSString::constant<"AXFocusedUIElement">());
  if (!focused || CFGetTypeID(focused.get()) != AXUIElementGetTypeID()) return false;

  const auto value = attribute(static_cast<AXUIElementRef>(focused.get()), NSString::constant<"AXRole">());
  const Lent<NSString> role(objectOf(value.get()));
  if (!isString(role)) return false;
  return role == NSString::constant<"AXTextField">() || role == NSString::constant<"AXTextArea">() ||
         role == NSString::constant<"AXComboBox">();
}

bool KeyRemapper::isFinderFrontmost() const {
  const Lent<NSString> bundleID = frontmostBundleID();
  return bundleID && bundleID == NSString::constant<finderBundleID>();
}

Lent<NSString> KeyRemapper::frontmostBundleID() {
  return NSWorkspace::sharedWorkspace().frontmostApplication().bundleIdentifier();
}

} // namespace tarnwick
