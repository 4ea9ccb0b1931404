#include "desktop/Desktop.hpp"
#include "platform/KeyCodes.hpp"

namespace desktop {
namespace {

constexpr CGEventFlags modifiers =
    kCGEventFlagMaskShift | kCGEventFlagMaskControl | kCGEventFlagMaskAlternate | kCGEventFlagMaskCommand;

bool isEditing(const RunningApplication& finder) {
  return finder.role == "AXTextField" || finder.role == "AXTextArea" || finder.role == "AXComboBox";
}

void beginRenaming(RunningApplication& finder) {
  finder.role = "AXTextField";
  Journal::current().remark("the Finder lets the selection's name be edited");
}

void endRenaming(RunningApplication& finder) {
  finder.role = "AXList";
  Journal::current().remark("the Finder ends the editing of the name");
}

} // namespace

void finderReaction(RunningApplication& finder, const Event& event) {
  if (event.type != kCGEventKeyDown) return;
  const CGEventFlags held = event.flags & modifiers;
  const bool isRenaming = isEditing(finder);
  if (held == kCGEventFlagMaskCommand && event.code == kVK_Delete && !isRenaming) {
    Journal::current().remark("the Finder moves the selection to the Bin");
  }
  if (held != 0) return;
  if (event.code == kVK_Return) isRenaming ? endRenaming(finder) : beginRenaming(finder);
  if (event.code == kVK_Escape && isRenaming) endRenaming(finder);
}

} // namespace desktop
