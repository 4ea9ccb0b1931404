/// The stand-in's AppKit: the application object, the status bar with its menus, what is on the screen, modal sessions.
#pragma once

#include "desktop/appkit/Windows.hpp"
#include "desktop/quartz/Desktop.hpp"

namespace desktop {

struct MenuItem : Object {
  Ref<String> title;
  Ref<String> keyEquivalent;
  SEL action = nullptr;
  /// Not owned, as on the platform.
  id target = nullptr;
  BOOL enabled = true;
  bool isSeparator = false;

  MenuItem* initWithTitle(String* text, SEL selector, String* key);
  static Ref<MenuItem> separatorItem();
  void setTarget(id value) { target = value; }
  void setAction(SEL value) { action = value; }
  void setEnabled(BOOL value) { enabled = value; }
  void setTitle(String* value) { title = shared(value); }
};

struct Menu : Object {
  std::vector<Ref<MenuItem>> items;

  void addItem(MenuItem* item) { items.push_back(shared(item)); }
  MenuItem* itemWithTitle(const std::string& title) const;
};

struct StatusBarButton : Button {};

/// In the status bar while somebody keeps it.
struct StatusItem : Object {
  CGFloat length = 0;
  Ref<StatusBarButton> itsButton;
  Ref<Menu> menu;

  ~StatusItem();
  StatusBarButton* button() const { return itsButton.get(); }
  /// With its menu the item is complete: now it shows itself.
  void setMenu(Menu* value);
};

struct Alert : Object {
  Ref<String> message;
  Ref<String> informative;
  NSUInteger style = 0;
  std::vector<Ref<Button>> buttons;

  void setAlertStyle(NSUInteger value) { style = value; }
  void setMessageText(String* text) { message = shared(text); }
  void setInformativeText(String* text) { informative = shared(text); }
  Button* addButtonWithTitle(String* title);
  NSInteger runModal();
  /// How a trace tells of it.
  Fact fact() const;
  /// Presses the `row`th (from 1) button of that title; false when there is none.
  bool press(const std::string& title, std::uint64_t row);
};

struct Application : Object {
  /// Not owned, as on the platform.
  id delegate = nullptr;
  NSInteger activationPolicy = 0;

  void setDelegate(id value);
  BOOL setActivationPolicy(NSInteger policy);
  void run();
  void terminate(id sender);
  void activateIgnoringOtherApps(BOOL ignoring);
};

/// What blocks the program until the user answers it.
struct ModalSession {
  /// An alert or an open panel, kept by whoever runs it.
  Object* shown;
  std::optional<NSInteger> answer;
};

/// AppKit's part of the desktop.
struct AppKit {
  Ref<Application> application;
  bool isTerminated = false;
  /// Not owned: each leaves when it goes.
  std::vector<StatusItem*> statusItems;
  /// The windows on the screen, the front one last. Not owned: each leaves when it goes.
  std::vector<Window*> windows;
  /// Open alerts and panels, the front one last.
  std::vector<ModalSession*> modalSessions;

  Menu* statusMenu() const;
  /// Null without one.
  Window* frontWindow() const { return windows.empty() ? nullptr : windows.back(); }
  Object* frontModal() const { return modalSessions.empty() ? nullptr : modalSessions.back()->shown; }
  Alert* frontAlert() const { return ifIs<Alert>(frontModal()); }
  OpenPanel* frontPanel() const { return ifIs<OpenPanel>(frontModal()); }

  /// Shows an alert or panel, of which `fact` tells. Returns once it is answered, or with -1001 when the user has
  /// nothing more to do.
  NSInteger runModal(Object& shown, const Fact& fact);
  /// Answers the front one; `told` is what the trace tells of it.
  void answerModal(NSInteger answer, const std::string& told) const;
};

/// Sends the delegate a notification that it may have no method for.
void tellDelegate(id delegate, const char* selector);

/// What the Finder does with a key that it receives: Return begins or ends renaming, Escape ends it, Command-Delete
/// moves the selection to the Bin.
void finderReaction(RunningApplication& finder, const Event& event);

void registerImageClass();
void registerStatusBarClasses();
void registerAlertClass();
void registerAppKitClasses();

} // namespace desktop
