#include "desktop/appkit/AppKit.hpp"

namespace desktop {
namespace {

constexpr std::int64_t returnKey = 0x24;
constexpr std::int64_t deleteKey = 0x33;
constexpr std::int64_t escapeKey = 0x35;
constexpr CGEventFlags modifiers = 0x1E0000;

bool isEditing(const RunningApplication& finder) {
  return finder.role == "AXTextField" || finder.role == "AXTextArea" || finder.role == "AXComboBox";
}

void beginRenaming(RunningApplication& finder) {
  finder.role = "AXTextField";
  Desktop::current().remark("the Finder lets the selection's name be edited");
}

void endRenaming(RunningApplication& finder) {
  finder.role = "AXList";
  Desktop::current().remark("the Finder ends the editing of the name");
}

} // namespace

void finderReaction(RunningApplication& finder, const Event& event) {
  if (event.type != kCGEventKeyDown) return;
  const CGEventFlags held = event.flags & modifiers;
  const bool isRenaming = isEditing(finder);
  if (held == kCGEventFlagMaskCommand && event.code == deleteKey && !isRenaming) {
    Desktop::current().remark("the Finder moves the selection to the Bin");
  }
  if (held != 0) return;
  if (event.code == returnKey) isRenaming ? endRenaming(finder) : beginRenaming(finder);
  if (event.code == escapeKey && isRenaming) endRenaming(finder);
}

} // namespace desktop
