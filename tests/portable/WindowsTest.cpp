/// The settings window, the menu, an alert and the open panel. On a Mac they are on the screen for a moment.
#include "app/AccessibilityPermissions.hpp"
#include "app/AppDelegate.hpp"
#include "platform/Dispatch.hpp"
#include "platform/OpenPanel.hpp"
#include "platform/Workspace.hpp"
#include "settings/MappingsWindowController.hpp"
#include "settings/WindowSizing.hpp"
#include "tests/portable/Portable.hpp"

namespace tarnwick {

struct SetupMenu {
  friend constexpr auto memberOf(SetupMenu);
};
template struct Opened<SetupMenu, &AppDelegate::setupMenu>;
struct StatusItem {
  friend constexpr auto memberOf(StatusItem);
};
template struct Opened<StatusItem, &AppDelegate::statusItem>;

namespace {

using namespace platform;

template <class View> View subview(const NSView& view, NSUInteger index) {
  return send<"subviews", NSArray>(view).objectAtIndex<View>(index);
}
NSRect frameOf(const NSView& view) {
  return send<"frame", NSRect>(view);
}

/// The window with all that is looked at in it.
struct Settings {
  std::shared_ptr<KeyRemapper> remapper = KeyRemapper::make();
  NSWindowController controller = MappingsWindowController::make(remapper);
  NSWindow window = controller.window();
  NSScrollView scrollView = subview<NSScrollView>(window.contentView(), 0);
  NSView document = send<"documentView", NSView>(scrollView);
  NSStackView stack = subview<NSStackView>(document, 1);

  Settings() {
    // Whatever the user's mouse: scrollers over the content, that take no room.
    constexpr NSInteger NSScrollerStyleOverlay = 1;
    send<"setScrollerStyle:">(scrollView, NSScrollerStyleOverlay);
  }
  ~Settings() { send<"close">(window); }
  Settings(const Settings&) = delete;
  Settings& operator=(const Settings&) = delete;

  void expectDocumentAsReckoned() const {
    const NSSize wanted = documentSize(scrollView.contentSize(), stack.fittingSize().height);
    EXPECT_EQ(frameOf(document).size.width, wanted.width);
    EXPECT_EQ(frameOf(document).size.height, wanted.height);
  }
  std::vector<NSButton> checkboxes() const {
    std::vector<NSButton> found;
    const NSArray rows = stack.arrangedSubviews();
    for (NSUInteger index = 0; index < rows.count(); ++index) {
      const auto row = rows.objectAtIndex<NSButton>(index);
      if (send<"isKindOfClass:", BOOL>(row, theClass<"NSButton">) == NO) continue;
      if (send<"action", SEL>(row) == selectorNamed<"toggleMapping:">()) found.push_back(row);
    }
    return found;
  }
};

using SettingsWindowPortableTest = PortableTest;

TEST_F(SettingsWindowPortableTest, HasItsDocumentAsReckonedAtEverySize) {
  const Settings settings;
  send<"show">(settings.controller);
  settings.expectDocumentAsReckoned();
  for (const NSSize size : {NSSize{900, 600}, NSSize{460, 472}}) {
    settings.window.setContentSize(size);
    runFor(0.1);
    EXPECT_EQ(settings.scrollView.contentSize().width, size.width);
    settings.expectDocumentAsReckoned();
  }
  send<"close">(settings.window);
  send<"show">(settings.controller);
  settings.expectDocumentAsReckoned();
}

/// Whether the layout is ambiguous is not asked: no constraint ties the document to the scroll view, so the platform
/// may call everything in it ambiguous. What counts is where the rows end up.
TEST_F(SettingsWindowPortableTest, HasItsRowsOneBelowTheOther) {
  const Settings settings;
  send<"show">(settings.controller);
  settings.document.layoutSubtreeIfNeeded();
  const NSArray rows = settings.stack.arrangedSubviews();
  ASSERT_GT(rows.count(), 0U);
  CGFloat above = frameOf(settings.stack).size.height;
  for (NSUInteger index = 0; index < rows.count(); ++index) {
    const auto row = rows.objectAtIndex<NSView>(index);
    const bool isEmptyList = frameOf(row).size.height == 0 && send<"subviews", NSArray>(row).count() == 0;
    EXPECT_TRUE(isEmptyList || frameOf(row).size.height > 0) << "row " << index;
    EXPECT_GE(frameOf(row).origin.x, 0) << "row " << index;
    EXPECT_LE(frameOf(row).origin.y + frameOf(row).size.height, above) << "row " << index;
    above = frameOf(row).origin.y;
  }
  const NSRect stack = frameOf(settings.stack); // in the document, from the top
  EXPECT_LE(stack.origin.y + stack.size.height - above, frameOf(settings.document).size.height)
      << "the last row is cut off";
}

TEST_F(SettingsWindowPortableTest, HasCheckboxesThatSwitchWhatTheyShow) {
  const Settings settings;
  send<"show">(settings.controller);
  bool KeyRemapper::*const switches[] = {&KeyRemapper::mapClipboard,
                                         &KeyRemapper::mapRedo,
                                         &KeyRemapper::mapNewFile,
                                         &KeyRemapper::mapSave,
                                         &KeyRemapper::mapWordSkip,
                                         &KeyRemapper::mapFind,
                                         &KeyRemapper::mapAtQuoteSwap,
                                         &KeyRemapper::mapBold,
                                         &KeyRemapper::mapUnderline,
                                         &KeyRemapper::mapItalic,
                                         &KeyRemapper::mapLockScreen,
                                         &KeyRemapper::mapFinderDeleteToBin,
                                         &KeyRemapper::mapFinderDeleteConfirm,
                                         &KeyRemapper::mapFinderRename};
  const auto checkboxes = settings.checkboxes();
  ASSERT_EQ(checkboxes.size(), std::size(switches));
  for (std::size_t index = 0; index < checkboxes.size(); ++index) {
    for (const bool on : {false, true}) {
      send<"performClick:">(checkboxes[index], nullptr);
      EXPECT_EQ((*settings.remapper).*switches[index], on) << "checkbox " << index;
      EXPECT_EQ(checkboxes[index].state(), on ? 1 : 0) << "checkbox " << index;
    }
  }
}

TEST_F(SettingsWindowPortableTest, TakesItsStateAlongWhenItGoes) {
  std::weak_ptr<KeyRemapper> remapper;
  {
    const AutoreleasePool inner;
    const Settings settings;
    remapper = settings.remapper;
    for (int times = 0; times < 2; ++times) {
      send<"show">(settings.controller);
      runFor(0.1);
      send<"close">(settings.window);
    }
  }
  runFor(0.1);
  EXPECT_TRUE(remapper.expired()) << "somebody keeps the window's controller";
}

using MenuPortableTest = PortableTest;

TEST_F(MenuPortableTest, HasNineEntriesThatTheDelegateAnswers) {
  const Class delegateClass = AppDelegate::runtimeClass();
  const auto object = make<"AppDelegate", "init">();
  auto& delegate = InstanceState<AppDelegate>::of(object.object());
  (delegate.*memberOf(SetupMenu()))();
  const auto items = send<"itemArray", NSArray>(send<"menu", NSMenu>(delegate.*memberOf(StatusItem())));
  ASSERT_EQ(items.count(), 9U);
  for (NSUInteger index = 0; index < items.count(); ++index) {
    const auto item = items.objectAtIndex<NSMenuItem>(index);
    const bool isSeparator = index % 2 == 1;
    EXPECT_EQ((send<"isSeparatorItem", BOOL>(item) != NO), isSeparator) << "entry " << index;
    if (isSeparator) continue;
    EXPECT_EQ((send<"target", id>(item)), object.object()) << "entry " << index;
    EXPECT_TRUE(class_getInstanceMethod(delegateClass, send<"action", SEL>(item))) << "entry " << index;
  }
}

using ModalPortableTest = PortableTest;

TEST_F(ModalPortableTest, AnAlertOfTheMainQueueHoldsBackTheBlocksBehindIt) {
  enum { notYet, open, answered } alert = notYet;
  bool behind = false;
  asyncOnMain([&] {
    alert = open;
    AccessibilityPermissions::showAlert();
    alert = answered;
  });
  asyncOnMain([&] { behind = true; });
  after(0.5, [&] {
    EXPECT_EQ(alert, open);
    EXPECT_FALSE(behind);
  });
  dismissAfter(1);
  runFor(2);
  EXPECT_EQ(alert, answered);
  EXPECT_TRUE(behind);
}

TEST_F(ModalPortableTest, TheOpenPanelOffersOneApplication) {
  const Settings settings;
  bool looked = false;
  after(0.5, [&] {
    const auto panel = send<"modalWindow", NSOpenPanel>(application);
    ASSERT_TRUE(panel) << "no panel is open";
    EXPECT_TRUE((send<"title", NSString>(panel)) == NSString("Choose Application to Exempt"));
    EXPECT_TRUE((send<"message", NSString>(panel)) == NSString("Select an application bundle (.app)"));
    EXPECT_TRUE((send<"prompt", NSString>(panel)) == NSString("Add Exemption"));
    EXPECT_TRUE((send<"canChooseFiles", BOOL>(panel)));
    EXPECT_FALSE((send<"canChooseDirectories", BOOL>(panel)));
    EXPECT_FALSE((send<"allowsMultipleSelection", BOOL>(panel)));
    EXPECT_TRUE((send<"path", NSString>(send<"directoryURL", NSURL>(panel))) == NSString("/Applications"));
    const auto types = send<"allowedContentTypes", NSArray>(panel);
    ASSERT_EQ(types.count(), 1U);
    EXPECT_EQ(types.objectAtIndex(0).object(), UTTypeApplicationBundle);
    looked = true;
  });
  dismissAfter(1);
  send<"chooseAppExemption">(settings.controller);
  EXPECT_TRUE(looked);
}

TEST_F(PortableTest, SomethingOpensTheAddressOfTheLoginItems) {
  if (isStandIn()) GTEST_SKIP() << "the stand-in opens any address, and nothing in it takes them";
  const auto address = NSURL::URLWithString(MappingsWindowController::loginItemsAddress);
  EXPECT_TRUE((send<"URLForApplicationToOpenURL:", NSURL>(NSWorkspace::sharedWorkspace(), address)));
}

} // namespace
} // namespace tarnwick
