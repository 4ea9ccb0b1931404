#include "desktop/appkit/Appearance.hpp"

#include "desktop/appkit/AppKit.hpp"

namespace desktop {
namespace {

template <Color::Ink ink> Color* colorOf() {
  static Color* const only = [] {
    auto made = create<Color>();
    made->ink = ink;
    return made.detach();
  }();
  return only;
}

Ref<Font> boldSystemFontOfSize(CGFloat size) {
  auto font = create<Font>();
  font->face = {size, true};
  return font;
}

} // namespace

void registerAppearanceClasses() {
  NativeClass<Color>("NSColor", "NSObject")
      .classMethod<"blackColor", &colorOf<Color::Ink::Black>>()
      .classMethod<"labelColor", &colorOf<Color::Ink::Label>>()
      .classMethod<"secondaryLabelColor", &colorOf<Color::Ink::SecondaryLabel>>()
      .method<"CGColor", &Color::asCGColor>();
  NativeClass<Font>("NSFont", "NSObject").classMethod<"boldSystemFontOfSize:", &boldSystemFontOfSize>();
  NativeClass<Layer>("CALayer", "NSObject")
      .method<"setShadowColor:", &Layer::setShadowColor>()
      .method<"setShadowOpacity:", &Layer::setShadowOpacity>()
      .method<"setShadowRadius:", &Layer::setShadowRadius>()
      .method<"setShadowOffset:", &Layer::setShadowOffset>()
      .method<"setCornerRadius:", &Layer::setCornerRadius>()
      .method<"setMasksToBounds:", &Layer::setMasksToBounds>();
}

} // namespace desktop
