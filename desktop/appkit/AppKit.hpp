/// The stand-in's AppKit: the application object, the status bar with its menus, modal sessions, images.
#pragma once

#include "desktop/quartz/Desktop.hpp"

namespace desktop {

struct Image : Object {
  /// The file as it is: PNG or icns.
  std::string bytes;
  CGSize size{};
  BOOL isTemplate = false;

  Image* initWithContentsOfURL(URL* url);
  void setTemplate(BOOL value) { isTemplate = value; }
  void setSize(CGSize value) { size = value; }
};

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

struct StatusBarButton : Object {
  Ref<Image> image;
  NSUInteger imagePosition = 0;
  Ref<String> title;

  void setImage(Image* value) { image = shared(value); }
  void setImagePosition(NSUInteger value) { imagePosition = value; }
  void setTitle(String* value) { title = shared(value); }
};

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

/// What blocks the program until the user answers: an alert or a panel.
struct ModalSession {
  std::optional<NSInteger> answer;
};

struct Alert : Object {
  Ref<String> message;
  Ref<String> informative;
  NSUInteger style = 0;
  std::vector<Ref<String>> buttons;
  ModalSession session;

  void setAlertStyle(NSUInteger value) { style = value; }
  void setMessageText(String* text) { message = shared(text); }
  void setInformativeText(String* text) { informative = shared(text); }
  Ref<Object> addButtonWithTitle(String* title);
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

/// AppKit's part of the desktop.
struct AppKit {
  Ref<Application> application;
  bool isTerminated = false;
  /// Not owned: each leaves when it goes.
  std::vector<StatusItem*> statusItems;
  /// Open alerts, the front one last. Each is kept by whoever runs it.
  std::vector<Alert*> alerts;

  Menu* statusMenu() const;
  Alert* frontAlert() const { return alerts.empty() ? nullptr : alerts.back(); }
};

/// Blocks until the session is answered, or with -1001 until the user has nothing more to do.
NSInteger runModalSession(ModalSession& session);

/// What the Finder does with a key that it receives: Return begins or ends renaming, Escape ends it, Command-Delete
/// moves the selection to the Bin.
void finderReaction(RunningApplication& finder, const Event& event);

void registerImageClass();
void registerStatusBarClasses();
void registerAlertClass();
void registerAppKitClasses();

} // namespace desktop
