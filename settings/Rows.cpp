#include "settings/MappingsWindowController.hpp"
#include "settings/Views.hpp"

namespace tarnwick {

using namespace platform;

namespace {

NSTextField makeHeading(const char* text) {
  auto label = NSTextField::labelWithString(text);
  label.setFont(NSFont::boldSystemFontOfSize(12));
  return label;
}

NSTextField makeNote(const char* text) {
  auto label = NSTextField::labelWithString(text);
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
  const NSString version = asString(NSBundle::mainBundle().objectForInfoDictionaryKey("CFBundleShortVersionString"));
  return NSString("Version ").stringByAppendingString(version ? version : "Unknown");
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
      clipboardCheckbox = makeCheckbox("Clipboard (Ctrl+C/V/X/A/Z)", &KeyRemapper::mapClipboard),
      redoCheckbox = makeCheckbox("Redo (Ctrl+Y -> Cmd+Shift+Z)", &KeyRemapper::mapRedo),
      newFileCheckbox = makeCheckbox("New (Ctrl+N)", &KeyRemapper::mapNewFile),
      saveCheckbox = makeCheckbox("Save (Ctrl+S)", &KeyRemapper::mapSave),
      wordSkipCheckbox = makeCheckbox("Word Skip (Ctrl+Left/Right)", &KeyRemapper::mapWordSkip),
      findCheckbox = makeCheckbox("Find (Ctrl+F)", &KeyRemapper::mapFind),
      atQuoteSwapCheckbox = makeCheckbox("Swap @ and \"", &KeyRemapper::mapAtQuoteSwap),

      makeHeading("Text Editing"),
      boldCheckbox = makeCheckbox("Bold (Ctrl+B)", &KeyRemapper::mapBold),
      underlineCheckbox = makeCheckbox("Underline (Ctrl+U)", &KeyRemapper::mapUnderline),
      italicCheckbox = makeCheckbox("Italic (Ctrl+I)", &KeyRemapper::mapItalic),

      makeHeading("System"),
      lockScreenCheckbox =
          makeCheckbox("Lock Screen (Cmd+L on a Mac keyboard, Win+L on a Windows keyboard -> Cmd+Ctrl+Q)",
                       &KeyRemapper::mapLockScreen),

      makeHeading("Finder"),
      finderDeleteToBinCheckbox =
          makeCheckbox("Forward Delete key moves selection to Bin", &KeyRemapper::mapFinderDeleteToBin),
      finderDeleteConfirmCheckbox = makeCheckbox("Confirm before moving to Bin", &KeyRemapper::mapFinderDeleteConfirm),
      finderRenameCheckbox = makeCheckbox("Rename selected item (F2 -> Return)", &KeyRemapper::mapFinderRename),

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

NSButton MappingsWindowController::makeButton(const char* title, SEL action) const {
  return NSButton::buttonWithTitle(title, self, action);
}

} // namespace tarnwick
