/// The settings window: switches for the families of shortcuts, and the list of exempt applications.
#pragma once

#include "platform/Control.hpp"
#include "platform/Window.hpp"
#include "remap/KeyRemapper.hpp"

#include <memory>
#include <vector>

namespace tarnwick {

/// State of the one run-time object of class `MappingsWindowController`, which the application delegate makes and
/// keeps. The object owns its window, whose delegate it is; closing only hides that. What the window shows is the
/// remapper's and is read anew at every `show()`. Main thread only.
class MappingsWindowController {
public:
  static constexpr platform::NSSize defaultContentSize{540, 780};
  static constexpr auto loginItemsAddress = "x-apple.systempreferences:com.apple.LoginItems-Settings.extension";

  /// A new run-time object with its window, built and not yet shown.
  static platform::NSWindowController make(std::shared_ptr<KeyRemapper> remapper);

  MappingsWindowController(id instance, std::shared_ptr<KeyRemapper> engine);

  /// Brings the window up to date and in front of everything, at its fitted size the first time.
  void show();
  void windowDidResize(id notification);

  void toggleMapping(id sender);
  void chooseAppExemption();
  void removeExemption(id sender);
  void openLoginItems();
  void openDeveloperWebsite();

private:
  /// A view whose y axis runs downwards, so that content stays at the top of what is taller.
  class FlippedView : public platform::NSView {
  public:
    using NSView::NSView;
    static FlippedView make();

  private:
    static Class runtimeClass();
    static id initWithFrame(id self, platform::NSRect frame);
    static id initWithCoder(id self, id coder);
    static BOOL isFlipped(id /*self*/) { return YES; }
  };

  /// A checkbox and the switch that it shows.
  struct Binding {
    platform::NSButton checkbox;
    bool KeyRemapper::*flag;
  };

  /// The run-time object that this is the state of; it is the target of the window's controls.
  id self;

  /// Shared with the application delegate.
  const std::shared_ptr<KeyRemapper> remapper;
  // The views are empty until the content is set up.
  platform::NSButton clipboardCheckbox;
  platform::NSButton redoCheckbox;
  platform::NSButton newFileCheckbox;
  platform::NSButton saveCheckbox;
  platform::NSButton wordSkipCheckbox;
  platform::NSButton findCheckbox;
  platform::NSButton atQuoteSwapCheckbox;
  platform::NSButton lockScreenCheckbox;
  platform::NSButton boldCheckbox;
  platform::NSButton underlineCheckbox;
  platform::NSButton italicCheckbox;
  platform::NSButton finderDeleteToBinCheckbox;
  platform::NSButton finderRenameCheckbox;
  platform::NSButton finderDeleteConfirmCheckbox;
  /// Of all of these, in the order of the rows.
  std::vector<Binding> bindings;
  platform::NSStackView exemptionsListStack;
  platform::NSButton openLoginItemsButton;
  platform::NSScrollView settingsScrollView;
  FlippedView settingsDocumentView;
  platform::NSStackView settingsStack;
  bool didApplyInitialWindowSize = false;

  static Class runtimeClass();
  /// The window cannot be had from an archive: answers nothing.
  static id initWithCoder(id self, id coder);
  [[nodiscard]] platform::NSWindow window() const;

  void setupContent();
  void addRows();
  [[nodiscard]] platform::NSView makeAboutRow() const;
  [[nodiscard]] platform::NSView makeExemptionRow(const platform::NSString& bundleID) const;
  /// A checkbox that shows this switch and sets it.
  platform::NSButton makeCheckbox(const char* title, bool KeyRemapper::*flag);
  [[nodiscard]] platform::NSButton makeButton(const char* title, SEL action) const;

  void updateScrollLayout();
  void applyInitialWindowSizeIfNeeded();
  void updateCheckboxes();
  void refreshExemptionsUI();
};

} // namespace tarnwick
