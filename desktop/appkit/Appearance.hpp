/// Colours, fonts and layers: how views look.
#pragma once

#include "desktop/appkit/FontMetrics.hpp"
#include "desktop/runtime/Runtime.hpp"
#include "platform/Appearance.hpp"

namespace desktop {

struct Color : Object {
  enum class Ink { Black, Label, SecondaryLabel };
  Ink ink = Ink::Black;

  /// Lasts as long as the colour; colours last for ever.
  CGColorRef asCGColor() { return reinterpret_cast<CGColorRef>(this); }
};

struct Font : Object {
  Typeface face;
};

/// What a layer-backed view draws into.
struct Layer : Object {
  /// None for no shadow.
  const Color* shadowColor = nullptr;
  float shadowOpacity = 0;
  CGFloat shadowRadius = 3;
  /// Upwards for positive heights.
  CGSize shadowOffset{0, -3};
  CGFloat cornerRadius = 0;
  BOOL masksToBounds = false;

  void setShadowColor(CGColorRef color) { shadowColor = reinterpret_cast<const Color*>(color); }
  void setShadowOpacity(float value) { shadowOpacity = value; }
  void setShadowRadius(CGFloat value) { shadowRadius = value; }
  void setShadowOffset(CGSize value) { shadowOffset = value; }
  void setCornerRadius(CGFloat value) { cornerRadius = value; }
  void setMasksToBounds(BOOL value) { masksToBounds = value; }
};

} // namespace desktop
