#include "settings/MappingsWindowController.hpp"

namespace tarnwick {

using namespace platform;

NSButton MappingsWindowController::makeCheckbox(const char* title, bool KeyRemapper::*flag) {
  auto checkbox = NSButton::checkboxWithTitle(title, self, selectorNamed<"toggleMapping:">());
  checkbox.setButtonType(NSButtonTypeSwitch);
  bindings.push_back({checkbox, flag});
  return checkbox;
}

void MappingsWindowController::updateCheckboxes() {
  for (const auto& [checkbox, flag] : bindings)
    checkbox.setState((*remapper).*flag ? NSControlStateValueOn : NSControlStateValueOff);
}

void MappingsWindowController::toggleMapping(id sender) {
  for (const auto& [checkbox, flag] : bindings) {
    if (!checkbox || checkbox.object() != sender) continue;
    (*remapper).*flag = checkbox.state() == NSControlStateValueOn;
    return;
  }
}

} // namespace tarnwick
