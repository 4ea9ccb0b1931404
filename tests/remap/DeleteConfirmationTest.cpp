#include "desktop/appkit/AppKit.hpp"
#include "platform/Alert.hpp"
#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

// The question before the Finder's selection goes to the Bin: what sessions, which tell the rest, do not show.

const std::string asked = "status\timage\n" + keyLine("swallowed\tdown", "forwarddelete") +
                          keyLine("swallowed\tup", "forwarddelete") +
                          "alert\tMove selected item to Bin?\tThis will move the selected Finder item to Bin.\t"
                          "Move to Bin\tCancel\nanswer\tMove to Bin\nfront\tFinder\n";
const std::string deleted = keyLine("post\tdown", "cmd+delete") + keyLine("post\tup", "cmd+delete") +
                            keyLine("key\tFinder\tdown", "cmd+delete") + keyLine("key\tFinder\tup", "cmd+delete");

TEST(Confirmation, CountsTheMomentFromTheFindersComingForwardAndIsPendingUntilThen) {
  TestDesktop desktop;
  // The Finder takes its time to come forward, and the user types on.
  desktop.machine.journal.reader = [&](const JournalEntry& entry) {
    desktop.entries.push_back(entry);
    if (entry.front() != "front") return;
    desktop.machine.queue.now += 1'000'000'000;
    desktop.press("forwarddelete");
  };
  const auto isAWarning = [&] {
    ASSERT_NE(desktop.machine.appKit.frontAlert(), nullptr);
    EXPECT_EQ(desktop.machine.appKit.frontAlert()->style, platform::NSAlertStyleWarning);
  };
  EXPECT_EQ(desktop.play({"front Finder\n press forwarddelete", isAWarning, "click \"Move to Bin\"\n wait 0.0499999",
                          [&] { desktop.entries.push_back({"--"}); }, "wait 0.0000001"}),
            asked + "--\n" + deleted + "terminate\n");
}

TEST(Confirmation, NeverPostsHalfAKeyPress) {
  for (const long nth : {1, 2}) {
    TestDesktop own;
    own.machine.faults.fail("CGEventCreateKeyboardEvent", nth);
    EXPECT_EQ(own.play({"front Finder\n press forwarddelete\n click \"Move to Bin\"\n wait 1"}), asked + "terminate\n");
  }
}

} // namespace
} // namespace desktop
