/// Colours, fonts and layers: how views look.
#pragma once

#include "platform/Send.hpp"

#if defined(__APPLE__) && __has_include(<CoreGraphics/CGColor.h>)
#include <CoreGraphics/CGColor.h>
#else
extern "C" {
using CGColorRef = struct CGColor*;
}
#endif

namespace platform {

class NSColor : public NSObject {
public:
  using NSObject::NSObject;
  static NSColor blackColor() { return send<"blackColor", NSColor>(theClass<"NSColor">); }
  static NSColor labelColor() { return send<"labelColor", NSColor>(theClass<"NSColor">); }
  static NSColor secondaryLabelColor() { return send<"secondaryLabelColor", NSColor>(theClass<"NSColor">); }

  /// Not owned by the caller.
  [[nodiscard]] CGColorRef CGColor() const { return send<"CGColor", CGColorRef>(*this); }
};

class NSFont : public NSObject {
public:
  using NSObject::NSObject;
  static NSFont boldSystemFontOfSize(CGFloat size) {
    return send<"boldSystemFontOfSize:", NSFont>(theClass<"NSFont">, size);
  }
};

/// What a layer-backed view draws into.
class CALayer : public NSObject {
public:
  using NSObject::NSObject;
  void setShadowColor(CGColorRef color) const { send<"setShadowColor:">(*this, color); }
  void setShadowOpacity(float opacity) const { send<"setShadowOpacity:">(*this, opacity); }
  void setShadowRadius(CGFloat radius) const { send<"setShadowRadius:">(*this, radius); }
  void setShadowOffset(CGSize offset) const { send<"setShadowOffset:">(*this, offset); }
  void setCornerRadius(CGFloat radius) const { send<"setCornerRadius:">(*this, radius); }
  void setMasksToBounds(BOOL masks) const { send<"setMasksToBounds:">(*this, masks); }
};

} // namespace platform
