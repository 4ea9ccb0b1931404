/// The status bar, its items and their menus.
#pragma once

#include "desktop/appkit/Control.hpp"

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
  BOOL isSeparatorItem() const { return isSeparator; }
  id itsTarget() const { return target; }
  SEL itsAction() const { return action; }
};

struct Menu : Object {
  std::vector<Ref<MenuItem>> items;

  void addItem(MenuItem* item) { items.push_back(shared(item)); }
  Ref<Array> itemArray() const;
  MenuItem* itemWithTitle(const std::string& title) const;
};

struct StatusBarButton : Button {};

/// One place in the status bar, with a button and the menu that hangs from it. It leaves the bar with its last owner.
struct StatusItem : Object {
  CGFloat length = 0;
  Ref<StatusBarButton> itsButton;
  Ref<Menu> menu;

  ~StatusItem();
  StatusBarButton* button() const { return itsButton.get(); }
  /// With its menu the item is complete: now it shows itself.
  void setMenu(Menu* value);
  Menu* itsMenu() const { return menu.get(); }
};

} // namespace desktop
