#include "desktop/appkit/StatusBar.hpp"

#include "desktop/appkit/AppKit.hpp"

namespace desktop {
namespace {

struct StatusBar : Object {
  static Ref<StatusItem> statusItemWithLength(CGFloat length) {
    auto item = create<StatusItem>();
    item->length = length;
    item->itsButton = create<StatusBarButton>();
    AppKit::current().statusItems.push_back(item.get());
    return item;
  }
};

StatusBar* systemStatusBar() {
  static StatusBar* const bar = create<StatusBar>().detach();
  return bar;
}

} // namespace

MenuItem* MenuItem::initWithTitle(String* text, SEL selector, String* key) {
  title = shared(text);
  action = selector;
  keyEquivalent = shared(key);
  return this;
}

Ref<MenuItem> MenuItem::separatorItem() {
  auto item = create<MenuItem>();
  item->isSeparator = true;
  return item;
}

Ref<Array> Menu::itemArray() const {
  auto array = create<Array>();
  array->elements.assign(items.begin(), items.end());
  return array;
}

MenuItem* Menu::itemWithTitle(const std::string& title) const {
  for (const auto& item : items) {
    if (!item->isSeparator && textOf(item->title.get()) == title) return item.get();
  }
  return nullptr;
}

StatusItem::~StatusItem() {
  std::erase(AppKit::current().statusItems, this);
}

void StatusItem::setMenu(Menu* value) {
  menu = shared(value);
  const bool showsImage = static_cast<bool>(itsButton->image);
  tell({"status", showsImage ? "image" : textOf(itsButton->title.get())});
}

void registerStatusBarClasses() {
  NativeClass<MenuItem>("NSMenuItem", "NSObject")
      .classMethod<"separatorItem", &MenuItem::separatorItem>()
      .method<"initWithTitle:action:keyEquivalent:", &MenuItem::initWithTitle>()
      .method<"setTarget:", &MenuItem::setTarget>()
      .method<"setAction:", &MenuItem::setAction>()
      .method<"setEnabled:", &MenuItem::setEnabled>()
      .method<"setTitle:", &MenuItem::setTitle>()
      .method<"isSeparatorItem", &MenuItem::isSeparatorItem>()
      .method<"target", &MenuItem::itsTarget>()
      .method<"action", &MenuItem::itsAction>();
  NativeClass<Menu>("NSMenu", "NSObject").method<"addItem:", &Menu::addItem>().method<"itemArray", &Menu::itemArray>();
  NativeClass<StatusBarButton>("NSStatusBarButton", "NSButton");
  NativeClass<StatusItem>("NSStatusItem", "NSObject")
      .fallibleMethod<"button", &StatusItem::button>()
      .method<"setMenu:", &StatusItem::setMenu>()
      .method<"menu", &StatusItem::itsMenu>();
  NativeClass<StatusBar>("NSStatusBar", "NSObject")
      .classMethod<"systemStatusBar", &systemStatusBar>()
      .fallibleMethod<"statusItemWithLength:", &StatusBar::statusItemWithLength>();
}

} // namespace desktop
