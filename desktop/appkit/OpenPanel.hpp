/// The open panel, and the types of files that it offers.
#pragma once

#include "desktop/appkit/Window.hpp"
#include "desktop/foundation/Bundles.hpp"

namespace desktop {

/// What a file is, by name.
struct ContentType : Object {
  Ref<String> identifier;
};

struct OpenPanel : Window {
  Ref<String> message;
  Ref<String> prompt;
  BOOL canChooseFiles = true;
  BOOL canChooseDirectories = false;
  BOOL allowsMultipleSelection = false;
  Ref<Array> allowedContentTypes;
  Ref<URL> directory;
  /// What the user chose last; none when they cancelled.
  Ref<URL> chosen;

  static Ref<OpenPanel> openPanel() { return create<OpenPanel>(); }
  void setMessage(String* value) { message = shared(value); }
  void setPrompt(String* value) { prompt = shared(value); }
  void setCanChooseFiles(BOOL value) { canChooseFiles = value; }
  void setCanChooseDirectories(BOOL value) { canChooseDirectories = value; }
  void setAllowsMultipleSelection(BOOL value) { allowsMultipleSelection = value; }
  void setAllowedContentTypes(Array* types) { allowedContentTypes = shared(types); }
  void setDirectoryURL(URL* url) { directory = shared(url); }
  NSInteger runModal();
  URL* url() const { return chosen.get(); }

  /// The user confirms with this path, whatever is there, or cancels.
  void choose(const std::string& path);
  void cancel();
};

} // namespace desktop
