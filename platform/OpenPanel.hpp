/// The panel that lets the user choose files, and the types that it offers.
#pragma once

#include "platform/Bundles.hpp"
#include "platform/Window.hpp"

/// A `UTType`: a folder that is an application.
extern "C" const id UTTypeApplicationBundle;

namespace platform {

inline constexpr NSInteger NSModalResponseOK = 1;

class UTType : public NSObject {
public:
  using NSObject::NSObject;
  static UTType applicationBundle() { return {share, UTTypeApplicationBundle}; }
};

class NSSavePanel : public NSWindow {
public:
  using NSWindow::NSWindow;
  void setMessage(const NSString& message) const { send<"setMessage:">(*this, message); }
  /// The title of the button that confirms.
  void setPrompt(const NSString& prompt) const { send<"setPrompt:">(*this, prompt); }
  void setAllowedContentTypes(const NSArray& types) const { send<"setAllowedContentTypes:">(*this, types); }
  void setDirectoryURL(const NSURL& url) const { send<"setDirectoryURL:">(*this, url); }
  /// Blocks in a modal session until the user confirms or cancels.
  NSInteger runModal() const { return send<"runModal", NSInteger>(*this); }
  /// What the user chose; empty when nothing.
  [[nodiscard]] NSURL URL() const { return send<"URL", NSURL>(*this); }
};

class NSOpenPanel : public NSSavePanel {
public:
  using NSSavePanel::NSSavePanel;
  static NSOpenPanel openPanel() { return send<"openPanel", NSOpenPanel>(theClass<"NSOpenPanel">); }

  void setCanChooseFiles(BOOL can) const { send<"setCanChooseFiles:">(*this, can); }
  void setCanChooseDirectories(BOOL can) const { send<"setCanChooseDirectories:">(*this, can); }
  void setAllowsMultipleSelection(BOOL allows) const { send<"setAllowsMultipleSelection:">(*this, allows); }
};

} // namespace platform
