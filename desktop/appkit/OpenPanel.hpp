/// The open panel, and the types of files that it offers.
#pragma once

#include "desktop/appkit/Window.hpp"
#include "desktop/foundation/Bundles.hpp"

namespace desktop {

/// What a file is, by name.
struct ContentType : Object {
  Ref<String> identifier;
};

/// What panels for files have in common.
struct SavePanel : Window {
  Ref<String> message;
  Ref<String> prompt;
  Ref<Array> allowedContentTypes;
  Ref<URL> directory;
  /// What the user chose last; none when they cancelled.
  Ref<URL> chosen;

  void setMessage(String* value) { message = shared(value); }
  void setPrompt(String* value) { prompt = shared(value); }
  void setAllowedContentTypes(Array* types) { allowedContentTypes = shared(types); }
  void setDirectoryURL(URL* url) { directory = shared(url); }
  String* itsMessage() const { return message.get(); }
  String* itsPrompt() const { return prompt.get(); }
  Array* contentTypes() const { return allowedContentTypes.get(); }
  URL* directoryURL() const { return directory.get(); }
  NSInteger runModal();
  URL* url() const { return chosen.get(); }

  /// The user confirms with this path, whatever is there, or cancels.
  void choose(const std::string& path);
  void cancel();
};

struct OpenPanel : SavePanel {
  BOOL canChooseFiles = true;
  BOOL canChooseDirectories = false;
  BOOL allowsMultipleSelection = false;

  static Ref<OpenPanel> openPanel() { return create<OpenPanel>(); }
  void setCanChooseFiles(BOOL value) { canChooseFiles = value; }
  void setCanChooseDirectories(BOOL value) { canChooseDirectories = value; }
  void setAllowsMultipleSelection(BOOL value) { allowsMultipleSelection = value; }
  BOOL choosesFiles() const { return canChooseFiles; }
  BOOL choosesDirectories() const { return canChooseDirectories; }
  BOOL choosesSeveral() const { return allowsMultipleSelection; }
};

} // namespace desktop
