/// Images, kept as the files that they came from.
#pragma once

#include "desktop/foundation/Bundles.hpp"
#include "platform/Geometry.hpp"

namespace desktop {

struct Image : Object {
  /// The file as it is: PNG or icns. Empty for the picture of an application that has no icon of its own.
  std::string bytes;
  CGSize size{};
  BOOL isTemplate = false;

  Image* initWithContentsOfURL(URL* url);
  /// The one name known is that of the application's own icon; none for any other.
  static Ref<Image> imageNamed(String* name);
  static Ref<Image> applicationIcon();
  /// Of the pictures in the file the one that suits so many pixels best; empty when there is none.
  std::string_view png(double pixels) const;
  void setTemplate(BOOL value) { isTemplate = value; }
  void setSize(CGSize value) { size = value; }
};

} // namespace desktop
