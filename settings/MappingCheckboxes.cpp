#include "settings/MappingsWindowController.hpp"

namespace tarnwick {

using namespace platform;

using Window = MappingsWindowController;
using Engine = KeyRemapper;

constinit const std::array<Window::Binding, 14> Window::bindings{{
    {&Window::clipboardCheckbox, &Engine::mapClipboard},
    {&Window::redoCheckbox, &Engine::mapRedo},
    {&Window::newFileCheckbox, &Engine::mapNewFile},
    {&Window::saveCheckbox, &Engine::mapSave},
    {&Window::wordSkipCheckbox, &Engine::mapWordSkip},
    {&Window::findCheckbox, &Engine::mapFind},
    {&Window::atQuoteSwapCheckbox, &Engine::mapAtQuoteSwap},
    {&Window::boldCheckbox, &Engine::mapBold},
    {&Window::underlineCheckbox, &Engine::mapUnderline},
    {&Window::italicCheckbox, &Engine::mapItalic},
    {&Window::lockScreenCheckbox, &Engine::mapLockScreen},
    {&Window::finderDeleteToBinCheckbox, &Engine::mapFinderDeleteToBin},
    {&Window::finderDeleteConfirmCheckbox, &Engine::mapFinderDeleteConfirm},
    {&Window::finderRenameCheckbox, &Engine::mapFinderRename},
}};

void MappingsWindowController::updateCheckboxes() {
  for (const auto& [checkbox, flag] : bindings)
    (this->*checkbox).setState((*remapper).*flag ? NSControlStateValueOn : NSControlStateValueOff);
}

void MappingsWindowController::toggleMapping(id sender) {
  for (const auto& [checkbox, flag] : bindings) {
    const NSButton& candidate = this->*checkbox;
    if (!candidate || candidate.object() != sender) continue;
    (*remapper).*flag = candidate.state() == NSControlStateValueOn;
    return;
  }
}

} // namespace tarnwick
