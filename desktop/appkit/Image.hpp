/// Images, kept as the files that they came from.
#pragma once

#include "desktop/foundation/Foundation.hpp"
#include "platform/Geometry.hpp"

namespace desktop {

inline bool isPng(std::string_view bytes) {
  return bytes.starts_with("\x89PNG\r\n\x1a\n");
}

struct Image : Object {
  /// The file as it is: PNG or icns. Empty for the picture of an application that has no icon of its own.
  std::string bytes;
  CGSize size{};
  BOOL isTemplate = false;

  Image* initWithContentsOfURL(URL* url);
  /// The one name known is that of the application's own icon; none for any other.
  static Ref<Image> imageNamed(String* name);
  void setTemplate(BOOL value) { isTemplate = value; }
  void setSize(CGSize value) { size = value; }
};

} // namespace desktop
