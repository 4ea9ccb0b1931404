/// The settings window, an alert and the open panel. On a Mac they are on the screen for a moment.
#include "app/AccessibilityPermissions.hpp"
#include "platform/Dispatch.hpp"
#include "platform/OpenPanel.hpp"
#include "platform/Workspace.hpp"
#include "settings/MappingsWindowController.hpp"
#include "settings/WindowSizing.hpp"
#include "tests/portable/Portable.hpp"

namespace tarnwick {
namespace {

using namespace platform;

template <class Element> std::vector<Element> elements(const NSArray& array) {
  std::vector<Element> found;
  for (NSUInteger index = 0; index < array.count(); ++index)
    found.push_back(array.objectAtIndex<Element>(index));
  return found;
}
template <class View> View subview(const NSView& view, NSUInteger index) {
  return send<"subviews", NSArray>(view).objectAtIndex<View>(index);
}
NSRect frameOf(const NSView& view) {
  return send<"frame", NSRect>(view);
}

class SettingsPortableTest : public PortableTest {
protected:
  std::shared_ptr<KeyRemapper> remapper = KeyRemapper::make();
  NSWindowController controller = MappingsWindowController::make(remapper);
  NSWindow window = controller.window();
  NSScrollView scrollView = subview<NSScrollView>(window.contentView(), 0);
  NSView document = send<"documentView", NSView>(scrollView);
  NSStackView stack = subview<NSStackView>(document, 1);

  void SetUp() override {
    // Over the content, whatever the user's mouse, so that they take no room.
    constexpr NSInteger NSScrollerStyleOverlay = 1;
    send<"setScrollerStyle:">(scrollView, NSScrollerStyleOverlay);
    send<"show">(controller);
  }
  void TearDown() override { send<"close">(window); }

  void expectDocumentAsReckoned() {
    const NSSize wanted = documentSize(scrollView.contentSize(), stack.fittingSize().height);
    EXPECT_EQ(frameOf(document).size.width, wanted.width);
    EXPECT_EQ(frameOf(document).size.height, wanted.height);
  }
};

TEST_F(SettingsPortableTest, HasItsDocumentAsReckonedAtEverySize) {
  expectDocumentAsReckoned();
  for (const NSSize size : {NSSize{900, 600}, NSSize{460, 472}}) {
    window.setContentSize(size);
    runFor(0.1);
    EXPECT_EQ(scrollView.contentSize().width, size.width);
    expectDocumentAsReckoned();
  }
  send<"close">(window);
  send<"show">(controller);
  expectDocumentAsReckoned();
}

/// Whether the layout is ambiguous is not asked: no constraint ties the document to the scroll view, so the platform
/// may call everything in it ambiguous. What counts is where the rows end up.
TEST_F(SettingsPortableTest, HasItsRowsOneBelowTheOther) {
  document.layoutSubtreeIfNeeded();
  CGFloat above = frameOf(stack).size.height;
  for (const NSView& row : elements<NSView>(stack.arrangedSubviews())) {
    EXPECT_GT(frameOf(row).size.height, 0);
    EXPECT_LE(frameOf(row).origin.y + frameOf(row).size.height, above);
    above = frameOf(row).origin.y;
  }
  const CGFloat top = frameOf(stack).origin.y; // from that of the document
  EXPECT_LE(top + frameOf(stack).size.height - above, frameOf(document).size.height) << "the last row is cut off";
}

TEST_F(SettingsPortableTest, HasCheckboxesThatSwitchWhatTheyShow) {
  for (const bool on : {false, true}) {
    for (const NSButton& row : elements<NSButton>(stack.arrangedSubviews())) {
      if (send<"isKindOfClass:", BOOL>(row, theClass<"NSButton">) == NO) continue;
      if (send<"action", SEL>(row) != selectorNamed<"toggleMapping:">()) continue;
      send<"performClick:">(row, nullptr);
      EXPECT_EQ(row.state(), on ? 1 : 0);
    }
    EXPECT_EQ(remapper->mapClipboard, on) << "of the first checkbox";
    EXPECT_EQ(remapper->mapFinderRename, on) << "of the last one";
  }
}

TEST_F(SettingsPortableTest, TheOpenPanelOffersOneApplication) {
  bool looked = false;
  asyncOnMainAfter(0.5, [&] {
    const auto panel = send<"modalWindow", NSOpenPanel>(application);
    ASSERT_TRUE(panel) << "no panel is open";
    EXPECT_TRUE((send<"message", NSString>(panel)) == NSString("Select an application bundle (.app)"));
    EXPECT_TRUE((send<"prompt", NSString>(panel)) == NSString("Add Exemption"));
    EXPECT_TRUE((send<"canChooseFiles", BOOL>(panel)));
    EXPECT_FALSE((send<"canChooseDirectories", BOOL>(panel)));
    EXPECT_FALSE((send<"allowsMultipleSelection", BOOL>(panel)));
    EXPECT_TRUE((send<"path", NSString>(send<"directoryURL", NSURL>(panel))) == NSString("/Applications"));
    const auto types = elements<UTType>(send<"allowedContentTypes", NSArray>(panel));
    ASSERT_EQ(types.size(), 1U);
    EXPECT_EQ(types[0].object(), UTTypeApplicationBundle);
    looked = true;
  });
  dismissAfter(1);
  send<"chooseAppExemption">(controller);
  EXPECT_TRUE(looked);
}

TEST_F(PortableTest, TheSettingsTakeTheirStateAlong) {
  std::weak_ptr<KeyRemapper> kept;
  {
    const AutoreleasePool inner;
    const auto remapper = KeyRemapper::make();
    kept = remapper;
    const auto controller = MappingsWindowController::make(remapper);
    send<"show">(controller);
    runFor(0.1);
    send<"close">(controller.window());
  }
  runFor(0.1);
  EXPECT_TRUE(kept.expired()) << "somebody keeps the window's controller";
}

TEST_F(PortableTest, AnAlertOfTheMainQueueHoldsBackTheBlocksBehindIt) {
  enum { notYet, open, answered } alert = notYet, whenBehind = notYet;
  // Ahead of the alert, which would else stay for ever if it came too soon.
  dismissAfter(1);
  asyncOnMain([&] {
    alert = open;
    AccessibilityPermissions::showAlert();
    alert = answered;
  });
  asyncOnMain([&] { whenBehind = alert; });
  EXPECT_EQ(alert, notYet) << "a block of the queue waits for the run loop";
  runFor(2);
  EXPECT_EQ(whenBehind, answered);
}

TEST_F(PortableTest, SomethingOpensTheAddressOfTheLoginItems) {
  if (isStandIn()) GTEST_SKIP() << "the stand-in opens any address, and nothing in it takes them";
  const auto address = NSURL::URLWithString(MappingsWindowController::loginItemsAddress);
  EXPECT_TRUE((send<"URLForApplicationToOpenURL:", NSURL>(NSWorkspace::sharedWorkspace(), address)));
}

} // namespace
} // namespace tarnwick
