#include "desktop/appkit/AppKit.hpp"

namespace desktop {
namespace {

constexpr std::int64_t returnKey = 0x24;
constexpr std::int64_t escapeKey = 0x35;
constexpr CGEventFlags modifiers = 0x1E0000;

} // namespace

void finderReaction(RunningApplication& finder, const Event& event) {
  if (event.type != kCGEventKeyDown || (event.flags & modifiers) != 0) return;
  const bool isRenaming = finder.role == "AXTextField";
  if (event.code == returnKey) finder.role = isRenaming ? "AXList" : "AXTextField";
  if (event.code == escapeKey && isRenaming) finder.role = "AXList";
}

} // namespace desktop
