#include "desktop/appkit/AppKit.hpp"

#include "desktop/foundation/Bundles.hpp"
#include "desktop/foundation/CoreFoundation.hpp"
#include "desktop/quartz/Quartz.hpp"

namespace desktop {

NSInteger AppKit::runModal(Object& shown, const JournalEntry& entry) {
  ModalSession session{&shown, std::nullopt};
  modalSessions.push_back(&session);
  tell(entry);
  RunLoop& loop = RunLoop::current();
  loop.serve([&] { return session.answer || loop.inputEnded; });
  modalSessions.pop_back();
  return session.answer.value_or(NSModalResponseAbort);
}

void AppKit::answerModal(NSInteger answer, const std::string& told) const {
  modalSessions.back()->answer = answer;
  tell({"answer", told});
}

Menu* AppKit::statusMenu() const {
  return isTerminated || statusItems.empty() ? nullptr : statusItems.front()->menu.get();
}

void registerAppKitClasses() {
  static const bool once = [] {
    registerQuartzClasses();
    registerApplicationClasses();
    registerWorkspaceClasses();
    registerImageClass();
    registerAppearanceClasses();
    registerConstraintClasses();
    registerViewClasses();
    registerControlClasses();
    registerWindowClasses();
    registerOpenPanelClasses();
    registerStatusBarClasses();
    registerAlertClass();
    addLoadableClass("SPUStandardUpdaterController", registerUpdaterClass);
    return true;
  }();
  static_cast<void>(once);
}

} // namespace desktop
