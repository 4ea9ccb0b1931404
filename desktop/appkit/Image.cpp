#include "desktop/appkit/Image.hpp"

#include "desktop/appkit/AppKit.hpp"
#include "desktop/foundation/Foundation.hpp"
#include "platform/Image.hpp"

namespace desktop {
namespace {

std::size_t bigEndian(std::string_view bytes, std::size_t at) {
  std::size_t number = 0;
  for (std::size_t index = at; index < at + 4; ++index)
    number = number << 8 | static_cast<unsigned char>(bytes[index]);
  return number;
}

bool isPng(std::string_view bytes) {
  constexpr std::size_t throughWidth = 20;
  return bytes.size() >= throughWidth && bytes.starts_with("\x89PNG\r\n\x1a\n");
}

/// Its width; 0 for none.
double pixelsOf(std::string_view png) {
  return png.empty() ? 0 : static_cast<double>(bigEndian(png, 16));
}

/// Of the pictures in an icon file the smallest that is large enough, else the largest; empty when there is none.
std::string_view pictureIn(std::string_view icns, double enough) {
  const auto suitsBetter = [&](std::string_view one, std::string_view other) {
    if (pixelsOf(other) < enough) return pixelsOf(one) > pixelsOf(other);
    return pixelsOf(one) >= enough && pixelsOf(one) < pixelsOf(other);
  };
  constexpr std::size_t header = 8;
  std::string_view best;
  for (std::size_t at = header; at + header <= icns.size();) {
    const std::size_t length = bigEndian(icns, at + 4);
    if (length < header || length > icns.size() - at) break;
    const auto body = icns.substr(at + header, length - header);
    at += length;
    if (isPng(body) && suitsBetter(body, best)) best = body;
  }
  return best;
}

Ref<String> iconName() {
  registerFoundationClasses();
  return string(u"NSApplicationIcon");
}

} // namespace

Image* Image::initWithContentsOfURL(URL* url) {
  bytes = contentsOfFile(url->path);
  if (isPng(bytes) || bytes.starts_with("icns")) return this;
  release(this);
  return nullptr;
}

std::string_view Image::png(double pixels) const {
  return isPng(bytes) ? bytes : pictureIn(bytes, pixels);
}

Ref<Image> Image::imageNamed(String* name) {
  return name->isEqualToString(iconName().get()) ? applicationIcon() : nullptr;
}

Ref<Image> Image::applicationIcon() {
  auto image = create<Image>();
  const auto file = MainBundle::current()->URLForResource(string(u"AppIcon").get(), string(u"icns").get());
  if (file) image->bytes = contentsOfFile(file->path);
  return image;
}

void registerImageClass() {
  NativeClass<Image>("NSImage", "NSObject")
      .fallibleClassMethod<"imageNamed:", &Image::imageNamed>()
      .fallibleMethod<"initWithContentsOfURL:", &Image::initWithContentsOfURL>()
      .method<"setTemplate:", &Image::setTemplate>()
      .method<"setSize:", &Image::setSize>();
}

} // namespace desktop

extern "C" {
const id NSImageNameApplicationIcon = desktop::iconName().detach();
}
