#include "tests/support/TestDesktop.hpp"

#include "platform/Application.hpp"
#include "platform/StatusBar.hpp"

namespace tarnwick {
namespace {

using namespace desktop;

TEST(Launch, MakesStatusItemAndAlertAsThePlatformWantsThem) {
  TestDesktop desktop;
  desktop.play({"trust no\n launch", [&] {
                  EXPECT_EQ(desktop.machine.appKit.frontAlert()->style, Alert().style) << "the platform's own";
                  const auto& items = desktop.machine.appKit.statusItems;
                  ASSERT_EQ(items.size(), 1U);
                  EXPECT_EQ(items.front()->length, platform::NSSquareStatusItemLength);
                  const StatusBarButton& button = *items.front()->button();
                  EXPECT_EQ(button.imagePosition, platform::NSImageOnly);
                  EXPECT_TRUE(button.title && textOf(button.title.get()).empty()) << "set, to nothing";
                  EXPECT_TRUE(button.image->isTemplate);
                  EXPECT_EQ(button.image->size.width, 18);
                  EXPECT_EQ(button.image->size.height, 18);
                }});
}

TEST(Program, IsOutOfTheDockBeforeItsMenuComesAndHasNoTapWhenItQuits) {
  for (const char* way : {"menu \"Quit Tarnwick\"", "quit", "# the end of the input"}) {
    TestDesktop desktop;
    NSInteger policy = -1;
    long tapsAtTheEnd = -1;
    desktop.machine.journal.reader = [&](const JournalEntry& entry) {
      if (entry.front() == "status") policy = desktop.machine.appKit.application->activationPolicy;
      if (entry.front() == "terminate") tapsAtTheEnd = liveObjects("CFMachPort") + liveObjects("CFRunLoopSource");
    };
    desktop.play({"launch", way});
    EXPECT_EQ(policy, platform::NSApplicationActivationPolicyAccessory);
    EXPECT_EQ(tapsAtTheEnd, 0) << way;
  }
}

} // namespace
} // namespace tarnwick
