#include "desktop/appkit/OpenPanel.hpp"

#include "desktop/appkit/AppKit.hpp"
#include "platform/OpenPanel.hpp"

namespace desktop {
namespace {

constexpr NSInteger NSModalResponseCancel = 0;

Ref<ContentType> contentType(std::u16string_view identifier) {
  registerAppKitClasses();
  auto type = create<ContentType>();
  type->identifier = string(identifier);
  return type;
}

} // namespace

NSInteger OpenPanel::runModal() {
  chosen = nullptr;
  return AppKit::current().runModal(*this, {"panel", textOf(title.get())});
}

void OpenPanel::choose(const std::string& path) {
  chosen = fileURL(path);
  AppKit::current().answerModal(platform::NSModalResponseOK, path);
}

void OpenPanel::cancel() {
  AppKit::current().answerModal(NSModalResponseCancel, "");
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
      .fallibleMethod<"URL", &OpenPanel::url>();
}

} // namespace desktop

extern "C" {
const id UTTypeApplicationBundle = desktop::contentType(u"com.apple.application-bundle").detach();
}
