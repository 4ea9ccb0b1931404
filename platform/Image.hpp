/// Images.
#pragma once

#include "platform/Foundation.hpp"

namespace platform {

class NSImage : public NSObject {
public:
  using NSObject::NSObject;
  /// Empty when the file cannot be read as an image.
  static NSImage withContentsOfURL(const NSURL& url) { return make<"NSImage", "initWithContentsOfURL:", NSImage>(url); }

  void setTemplate(BOOL isTemplate) const { send<"setTemplate:">(*this, isTemplate); }
  void setSize(NSSize size) const { send<"setSize:">(*this, size); }
};

} // namespace platform
