#include "settings/MappingsWindowController.hpp"

namespace tarnwick {

using namespace platform;

namespace {
using Controller = MappingsWindowController;
using Engine = KeyRemapper;
} // namespace

constinit const std::array<Controller::Binding, 14> Controller::bindings{{
    {&Controller::clipboardCheckbox, &Engine::mapClipboard},
    {&Controller::redoCheckbox, &Engine::mapRedo},
    {&Controller::newFileCheckbox, &Engine::mapNewFile},
    {&Controller::saveCheckbox, &Engine::mapSave},
    {&Controller::wordSkipCheckbox, &Engine::mapWordSkip},
    {&Controller::findCheckbox, &Engine::mapFind},
    {&Controller::atQuoteSwapCheckbox, &Engine::mapAtQuoteSwap},
    {&Controller::boldCheckbox, &Engine::mapBold},
    {&Controller::underlineCheckbox, &Engine::mapUnderline},
    {&Controller::italicCheckbox, &Engine::mapItalic},
    {&Controller::lockScreenCheckbox, &Engine::mapLockScreen},
    {&Controller::finderDeleteToBinCheckbox, &Engine::mapFinderDeleteToBin},
    {&Controller::finderDeleteConfirmCheckbox, &Engine::mapFinderDeleteConfirm},
    {&Controller::finderRenameCheckbox, &Engine::mapFinderRename},
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
