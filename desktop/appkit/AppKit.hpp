/// The stand-in's AppKit: everything that the user sees of the program, and that they act on.
///
/// Read what platform/'s headers of the same names are about: Application and Workspace, StatusBar, Alert, then View,
/// Control and Window with what they need, and Updater, the controller of an update framework. Layout,
/// with Constraints and ConstraintSolver, gives the views their frames, for which FontMetrics measures their texts.
#pragma once

#include "desktop/appkit/Alert.hpp"
#include "desktop/appkit/Application.hpp"
#include "desktop/appkit/OpenPanel.hpp"
#include "desktop/appkit/StatusBar.hpp"

#include <map>

namespace desktop {

/// How an alert or panel ends that the user does not answer.
inline constexpr NSInteger NSModalResponseAbort = -1001;

/// What blocks the program until the user answers it.
struct ModalSession {
  /// An alert or an open panel, kept by whoever runs it.
  Object* shown;
  std::optional<NSInteger> answer;
};

/// AppKit's part of the desktop.
struct AppKit : Part<AppKit> {
  Ref<Application> application;
  /// Visible frame of the main screen; none without a screen.
  std::optional<CGSize> screen = CGSize{1440, 815};
  /// That of another screen, which a window is on before it is shown; none while there is only the main one.
  std::optional<CGSize> otherScreen;
  bool isTerminated = false;
  /// Not owned: each leaves when it goes.
  std::vector<StatusItem*> statusItems;
  /// The windows on the screen by their `order`, the front one last. Not owned: each leaves when it goes.
  std::map<long, Window*> windows;
  /// How often windows have come to the front.
  long ordered = 0;
  /// Open alerts and panels, the front one last.
  std::vector<ModalSession*> modalSessions;

  Menu* statusMenu() const;
  /// Null without one.
  Window* frontWindow() const { return windows.empty() ? nullptr : windows.rbegin()->second; }
  Object* frontModal() const { return modalSessions.empty() ? nullptr : modalSessions.back()->shown; }
  Alert* frontAlert() const { return ifIs<Alert>(frontModal()); }
  OpenPanel* frontPanel() const { return ifIs<OpenPanel>(frontModal()); }

  /// Shows an alert or panel, of which `entry` tells. Returns once it is answered, or as aborted when the user has
  /// nothing more to do.
  NSInteger runModal(Object& shown, const JournalEntry& entry);
  /// Answers the front one; `told` is what the trace tells of it.
  void answerModal(NSInteger answer, const std::string& told) const;
};

/// Registers the classes of this folder and of those before it, once.
void registerAppKitClasses();

void registerApplicationClasses();
void registerWorkspaceClasses();
void registerImageClass();
void registerAppearanceClasses();
void registerConstraintClasses();
void registerViewClasses();
void registerControlClasses();
void registerWindowClasses();
void registerOpenPanelClasses();
void registerStatusBarClasses();
void registerAlertClass();
/// Only when the framework is loaded, which it comes with.
void registerUpdaterClass();

} // namespace desktop
