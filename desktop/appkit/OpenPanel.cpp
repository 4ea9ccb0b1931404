#include "desktop/appkit/AppKit.hpp"

namespace desktop {
namespace {

constexpr NSInteger confirmed = 1;
constexpr NSInteger cancelled = 0;

Ref<ContentType> contentType(std::u16string_view identifier) {
  registerClasses();
  auto type = create<ContentType>();
  type->identifier = string(identifier);
  return type;
}

} // namespace

NSInteger OpenPanel::runModal() {
  chosen = nullptr;
  return Desktop::current().appKit->runModal(*this, {"panel", textOf(title.get())});
}

void OpenPanel::choose(const std::string& path) {
  chosen = fileURL(path);
  Desktop::current().appKit->answerModal(confirmed, path);
}

void OpenPanel::cancel() {
  Desktop::current().appKit->answerModal(cancelled, "");
}

void registerOpenPanelClasses() {
  NativeClass<ContentType>("UTType", "NSObject");
  NativeClass<OpenPanel>("NSOpenPanel", "NSWindow")
      .classMethod<"openPanel", &OpenPanel::openPanel>()
      .method<"setMessage:", &OpenPanel::setMessage>()
      .method<"setPrompt:", &OpenPanel::setPrompt>()
      .method<"setCanChooseFiles:", &OpenPanel::setCanChooseFiles>()
      .method<"setCanChooseDirectories:", &OpenPanel::setCanChooseDirectories>()
      .method<"setAllowsMultipleSelection:", &OpenPanel::setAllowsMultipleSelection>()
      .method<"setAllowedContentTypes:", &OpenPanel::setAllowedContentTypes>()
      .method<"setDirectoryURL:", &OpenPanel::setDirectoryURL>()
      .method<"runModal", &OpenPanel::runModal>()
      .method<"URL", &OpenPanel::url>();
}

} // namespace desktop

extern "C" {
extern const id UTTypeApplicationBundle;
const id UTTypeApplicationBundle = desktop::contentType(u"com.apple.application-bundle").detach();
}
