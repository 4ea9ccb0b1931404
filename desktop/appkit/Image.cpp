#include "desktop/appkit/AppKit.hpp"

#include <fstream>
#include <iterator>

namespace desktop {
namespace {

bool isImage(std::string_view bytes) {
  return bytes.substr(0, 8) == "\x89PNG\r\n\x1a\n" || bytes.substr(0, 4) == "icns";
}

} // namespace

Image* Image::initWithContentsOfURL(URL* url) {
  std::ifstream stream(url->path, std::ios::binary);
  bytes.assign(std::istreambuf_iterator<char>(stream), {});
  if (isImage(bytes)) return this;
  release(this);
  return nullptr;
}

void registerImageClass() {
  NativeClass<Image>("NSImage", "NSObject")
      .method<"initWithContentsOfURL:", &Image::initWithContentsOfURL>()
      .method<"setTemplate:", &Image::setTemplate>()
      .method<"setSize:", &Image::setSize>();
}

} // namespace desktop
