#include "desktop/appkit/AppKit.hpp"

namespace desktop {
namespace {

bool isImage(std::string_view bytes) {
  return isPng(bytes) || bytes.starts_with("icns");
}

Ref<String> iconName() {
  registerClasses();
  return string(u"NSApplicationIcon");
}

} // namespace

Image* Image::initWithContentsOfURL(URL* url) {
  bytes = contentsOfFile(url->path);
  if (isImage(bytes)) return this;
  release(this);
  return nullptr;
}

Ref<Image> Image::imageNamed(String* name) {
  if (!name->isEqualToString(iconName().get())) return nullptr;
  auto image = create<Image>();
  const auto file = Desktop::current().mainBundle->URLForResource(string(u"AppIcon").get(), string(u"icns").get());
  if (file) image->bytes = contentsOfFile(file->path);
  return image;
}

void registerImageClass() {
  NativeClass<Image>("NSImage", "NSObject")
      .classMethod<"imageNamed:", &Image::imageNamed>()
      .method<"initWithContentsOfURL:", &Image::initWithContentsOfURL>()
      .method<"setTemplate:", &Image::setTemplate>()
      .method<"setSize:", &Image::setSize>();
}

} // namespace desktop

extern "C" {
extern const id NSImageNameApplicationIcon;
const id NSImageNameApplicationIcon = desktop::iconName().detach();
}
