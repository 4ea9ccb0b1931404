#include "settings/Forms.hpp"
#include "settings/MappingsWindowController.hpp"

namespace tarnwick {

using namespace platform;

namespace {

NSTextField makeHeading(const char* text) {
  auto label = NSTextField::labelWithString(NSString::utf8(text));
  label.setFont(NSFont::boldSystemFontOfSize(12));
  return label;
}

NSTextField makeNote(const char* text) {
  auto label = NSTextField::labelWithString(NSString::utf8(text));
  label.setLineBreakMode(NSLineBreakByWordWrapping);
  label.setMaximumNumberOfLines(0);
  return label;
}

NSBox makeSeparator() {
  auto box = NSBox::make();
  box.setBoxType(NSBoxSeparator);
  return box;
}

/// A plain row, as tall as the view in its middle.
NSView makeCentered(const NSView& view) {
  auto row = NSView::make();
  row.setTranslatesAutoresizingMaskIntoConstraints(NO);
  view.setTranslatesAutoresizingMaskIntoConstraints(NO);
  row.addSubview(view);
  NSLayoutConstraint::activateConstraints(NSArray::of<NSLayoutConstraint>({
      view.centerXAnchor().constraintEqualToAnchor(row.centerXAnchor()),
      view.topAnchor().constraintEqualToAnchor(row.topAnchor()),
      view.bottomAnchor().constraintEqualToAnchor(row.bottomAnchor()),
  }));
  return row;
}

NSString versionText() {
  const auto key = NSString::utf8("CFBundleShortVersionString");
  const NSString version = asString(NSBundle::mainBundle().objectForInfoDictionaryKey(key));
  return NSString::utf8("Version ").stringByAppendingString(version ? version : NSString::utf8("Unknown"));
}

NSView makeFooter() {
  const auto version = makeSecondaryLabel(versionText());
  version.setTranslatesAutoresizingMaskIntoConstraints(NO);
  auto row = makeRow({version});
  row.setTranslatesAutoresizingMaskIntoConstraints(NO);
  auto column = makeColumn(NSLayoutAttributeCenterX, 6);
  column.addArrangedSubview(row);
  return makeCentered(column);
}

} // namespace

void MappingsWindowController::addRows() {
  const NSView rows[] = {
      makeAboutRow(),

      makeHeading("General Shortcuts"),
      clipboardCheckbox = makeCheckbox("Clipboard (Ctrl+C/V/X/A/Z)"),
      redoCheckbox = makeCheckbox("Redo (Ctrl+Y -> Cmd+Shift+Z)"),
      newFileCheckbox = makeCheckbox("New (Ctrl+N)"),
      saveCheckbox = makeCheckbox("Save (Ctrl+S)"),
      wordSkipCheckbox = makeCheckbox("Word Skip (Ctrl+Left/Right)"),
      findCheckbox = makeCheckbox("Find (Ctrl+F)"),
      atQuoteSwapCheckbox = makeCheckbox("Swap @ and \""),

      makeHeading("Text Editing"),
      boldCheckbox = makeCheckbox("Bold (Ctrl+B)"),
      underlineCheckbox = makeCheckbox("Underline (Ctrl+U)"),
      italicCheckbox = makeCheckbox("Italic (Ctrl+I)"),

      makeHeading("System"),
      lockScreenCheckbox =
          makeCheckbox("Lock Screen (Cmd+L on a Mac keyboard, Win+L on a Windows keyboard -> Cmd+Ctrl+Q)"),

      makeHeading("Finder"),
      finderDeleteToBinCheckbox = makeCheckbox("Forward Delete key moves selection to Bin"),
      finderDeleteConfirmCheckbox = makeCheckbox("Confirm before moving to Bin"),
      finderRenameCheckbox = makeCheckbox("Rename selected item (F2 -> Return)"),

      makeSeparator(),
      makeHeading("App Exemptions"),
      makeNote("Remapping is disabled for the following apps."),
      makeRow({makeButton("Choose App…", selectorNamed<"chooseAppExemption">())}),
      exemptionsListStack = makeColumn(NSLayoutAttributeLeading, 6),

      makeSeparator(),
      makeNote("To manage startup manually, use System Settings > General > Login Items."),
      openLoginItemsButton = makeButton("Open Login Items", selectorNamed<"openLoginItems">()),

      makeSeparator(),
      makeFooter(),
  };
  for (const NSView& row : rows)
    settingsStack.addArrangedSubview(row);
}

NSView MappingsWindowController::makeAboutRow() const {
  const auto about = makeButton("About Tarnwick", selectorNamed<"openDeveloperWebsite">());
  about.setBezelStyle(NSBezelStyleInline);
  about.setContentTintColor(NSColor::labelColor());
  return makeCentered(about);
}

NSButton MappingsWindowController::makeCheckbox(const char* title) const {
  auto checkbox = NSButton::checkboxWithTitle(NSString::utf8(title), self, selectorNamed<"toggleMapping:">());
  checkbox.setButtonType(NSButtonTypeSwitch);
  return checkbox;
}

NSButton MappingsWindowController::makeButton(const char* title, SEL action) const {
  return NSButton::buttonWithTitle(NSString::utf8(title), self, action);
}

} // namespace tarnwick
