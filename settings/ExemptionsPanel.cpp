#include "settings/MappingsWindowController.hpp"
#include "settings/Views.hpp"

#include "platform/OpenPanel.hpp"

namespace tarnwick {

using namespace platform;

namespace {

NSOpenPanel makeApplicationPanel() {
  auto panel = NSOpenPanel::openPanel();
  panel.setTitle("Choose Application to Exempt");
  panel.setMessage("Select an application bundle (.app)");
  panel.setPrompt("Add Exemption");
  panel.setCanChooseFiles(YES);
  panel.setCanChooseDirectories(NO);
  panel.setAllowsMultipleSelection(NO);
  panel.setAllowedContentTypes(NSArray::of<UTType>({UTType::applicationBundle()}));
  panel.setDirectoryURL(NSURL::fileURLWithPath("/Applications"));
  return panel;
}

void removeAll(const NSStackView& stack) {
  const NSArray views = stack.arrangedSubviews();
  for (NSUInteger index = 0; index < views.count(); ++index) {
    const auto view = views.objectAtIndex<NSView>(index);
    stack.removeArrangedSubview(view);
    view.removeFromSuperview();
  }
}

} // namespace

void MappingsWindowController::refreshExemptionsUI() {
  if (!exemptionsListStack) return;
  removeAll(exemptionsListStack);
  const std::vector<NSString> bundleIDs = remapper->allExemptBundleIDs();
  if (bundleIDs.empty()) {
    exemptionsListStack.addArrangedSubview(makeSecondaryLabel("No exempt apps yet."));
    return;
  }
  for (const NSString& bundleID : bundleIDs)
    exemptionsListStack.addArrangedSubview(makeExemptionRow(bundleID));
  updateScrollLayout();
}

/// A long identifier is shortened before its button is. The button carries it back to `removeExemption`.
NSView MappingsWindowController::makeExemptionRow(const NSString& bundleID) const {
  auto label = NSTextField::labelWithString(bundleID);
  label.setLineBreakMode(NSLineBreakByTruncatingMiddle);
  label.setContentCompressionResistancePriority(NSLayoutPriorityDefaultLow, NSLayoutConstraintOrientationHorizontal);
  const auto remove = makeButton("Remove", selectorNamed<"removeExemption:">());
  remove.setIdentifier(bundleID);
  return makeRow({label, remove});
}

void MappingsWindowController::chooseAppExemption() {
  auto panel = makeApplicationPanel();
  if (panel.runModal() != NSModalResponseOK) return;
  const NSURL chosen = panel.URL();
  if (!chosen) return;
  const NSString bundleID = NSBundle::withURL(chosen).bundleIdentifier();
  if (!bundleID) return;
  remapper->addExemptBundleID(bundleID);
  refreshExemptionsUI();
}

void MappingsWindowController::removeExemption(id sender) {
  // Holds on to the button, which leaves the window before this ends.
  const NSButton button(share, sender);
  const NSString bundleID = button.identifier();
  if (!bundleID) return;
  remapper->removeExemptBundleID(bundleID);
  refreshExemptionsUI();
}

} // namespace tarnwick
