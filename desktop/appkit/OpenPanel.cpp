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

NSInteger SavePanel::runModal() {
  chosen = nullptr;
  return AppKit::current().runModal(*this, {"panel", textOf(title.get())});
}

void SavePanel::choose(const std::string& path) {
  chosen = fileURL(path);
  AppKit::current().answerModal(platform::NSModalResponseOK, path);
}

void SavePanel::cancel() {
  AppKit::current().answerModal(NSModalResponseCancel, "");
}

void registerOpenPanelClasses() {
  NativeClass<ContentType>("UTType", "NSObject");
  NativeClass<SavePanel>("NSSavePanel", "NSWindow")
      .method<"setMessage:", &SavePanel::setMessage>()
      .method<"setPrompt:", &SavePanel::setPrompt>()
      .method<"setAllowedContentTypes:", &SavePanel::setAllowedContentTypes>()
      .method<"setDirectoryURL:", &SavePanel::setDirectoryURL>()
      .method<"message", &SavePanel::itsMessage>()
      .method<"prompt", &SavePanel::itsPrompt>()
      .method<"allowedContentTypes", &SavePanel::contentTypes>()
      .method<"directoryURL", &SavePanel::directoryURL>()
      .method<"runModal", &SavePanel::runModal>()
      .fallibleMethod<"URL", &SavePanel::url>();
  NativeClass<OpenPanel>("NSOpenPanel", "NSSavePanel")
      .classMethod<"openPanel", &OpenPanel::openPanel>()
      .method<"setCanChooseFiles:", &OpenPanel::setCanChooseFiles>()
      .method<"setCanChooseDirectories:", &OpenPanel::setCanChooseDirectories>()
      .method<"setAllowsMultipleSelection:", &OpenPanel::setAllowsMultipleSelection>()
      .method<"canChooseFiles", &OpenPanel::choosesFiles>()
      .method<"canChooseDirectories", &OpenPanel::choosesDirectories>()
      .method<"allowsMultipleSelection", &OpenPanel::choosesSeveral>();
}

} // namespace desktop

extern "C" {
const id UTTypeApplicationBundle = desktop::contentType(u"com.apple.application-bundle").detach();
}
