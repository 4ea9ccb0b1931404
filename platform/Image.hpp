/// Images.
#pragma once

#include "platform/Bundles.hpp"

/// An `NSString`: the application's own icon among the platform's named images.
extern "C" const id NSImageNameApplicationIcon;

namespace platform {

class NSImage : public NSObject {
public:
  using NSObject::NSObject;
  /// Empty when the file cannot be read as an image.
  static NSImage withContentsOfURL(const NSURL& url) { return make<"NSImage", "initWithContentsOfURL:", NSImage>(url); }

  /// Empty when there is no image of that name.
  static NSImage imageNamed(const NSString& name) { return send<"imageNamed:", NSImage>(theClass<"NSImage">, name); }

  void setTemplate(BOOL isTemplate) const { send<"setTemplate:">(*this, isTemplate); }
  void setSize(NSSize size) const { send<"setSize:">(*this, size); }
};

} // namespace platform
