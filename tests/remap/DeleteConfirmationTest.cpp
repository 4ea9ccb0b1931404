#include "desktop/appkit/AppKit.hpp"
#include "platform/Alert.hpp"
#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

// The question before the Finder's selection goes to the Bin, told as sessions.

const std::string swallowedDown = keyLine("swallowed\tdown", "forwarddelete");
const std::string swallowedUp = keyLine("swallowed\tup", "forwarddelete");
const std::string swallowed = swallowedDown + swallowedUp;
const std::string alert = "alert\tMove selected item to Bin?\tThis will move the selected Finder item to Bin.\tMove to "
                          "Bin\tCancel\n";
const std::string consent = "answer\tMove to Bin\n";
const std::string refusal = "answer\tCancel\n";
const std::string forward = "front\tFinder\n";
const std::string posted = keyLine("post\tdown", "cmd+delete") + keyLine("post\tup", "cmd+delete");
const std::string deleted =
    posted + keyLine("key\tFinder\tdown", "cmd+delete") + keyLine("key\tFinder\tup", "cmd+delete");

/// The trace from the launch on, with the Finder in front, without the status item and the end.
std::string play(TestDesktop& desktop, const std::vector<Step>& steps) {
  std::vector<Step> all{"front Finder"};
  all.insert(all.end(), steps.begin(), steps.end());
  const std::string trace = desktop.play(all);
  const std::string begin = "status\timage\n";
  const std::string end = "terminate\n";
  EXPECT_TRUE(trace.starts_with(begin) && trace.ends_with(end)) << trace;
  return trace.substr(begin.size(), trace.size() - begin.size() - end.size());
}

TEST(Confirmation, WarnsAndBringsTheFirstOfTwoFindersForward) {
  TestDesktop desktop;
  EXPECT_EQ(play(desktop, {"app Second com.apple.finder\n front Second\n press forwarddelete",
                           [&] {
                             ASSERT_NE(desktop.machine.appKit.frontAlert(), nullptr);
                             EXPECT_EQ(desktop.machine.appKit.frontAlert()->style, platform::NSAlertStyleWarning);
                           },
                           "click \"Move to Bin\"\n wait 1"}),
            swallowed + alert + consent + forward + deleted);
}

TEST(Confirmation, CountsTheMomentFromTheFindersComingForwardAndIsPendingUntilThen) {
  TestDesktop desktop;
  // The Finder takes its time to come forward, and the user types on.
  desktop.machine.journal.reader = [&](const JournalEntry& entry) {
    desktop.entries.push_back(entry);
    if (entry.front() != "front") return;
    desktop.machine.queue.now += 1'000'000'000;
    desktop.press("forwarddelete");
  };
  EXPECT_EQ(play(desktop, {"press forwarddelete\n click \"Move to Bin\"\n wait 0.0499999",
                           [&] { desktop.entries.push_back({"--"}); }, "wait 0.0000001"}),
            swallowed + alert + consent + forward + "--\n" + deleted);
}

TEST(Confirmation, EndsAsTheUserAndTheDesktopWill) {
  const struct {
    const char* what;
    const char* session;
    std::string trace;
  } cases[] = {
      {"nothing is looked at any more after consent",
       "press forwarddelete\n click \"Move to Bin\"\n menu \"Disable Tarnwick\"\n front Editor\n wait 0.05",
       swallowed + alert + consent + forward + posted + keyLine("key\tEditor\tdown", "cmd+delete") +
           keyLine("key\tEditor\tup", "cmd+delete")},
      {"refused, then asked again", "press forwarddelete\n click Cancel\n wait 1\n press forwarddelete\n click Cancel",
       swallowed + alert + refusal + swallowed + alert + refusal},
      {"asked once, also before the alert is up", "press forwarddelete 3\n click Cancel\n wait 1",
       swallowed + swallowed + swallowed + alert + refusal},
      {"asked once while the alert is up, and not by the release",
       "down forwarddelete\n press forwarddelete\n click Cancel\n up forwarddelete\n wait 1",
       swallowedDown + alert + swallowed + refusal + swallowedUp},
      {"the tap is served meanwhile",
       "press forwarddelete\n down ctrl+c\n front Editor\n down ctrl+c\n click \"Move to Bin\"\n wait 1",
       swallowed + alert + keyLine("key\tFinder\tdown", "cmd+c") + keyLine("key\tEditor\tdown", "cmd+c") + consent +
           forward + deleted},
      {"modifiers that are still held are not carried over",
       "press forwarddelete\n down shift+option+caps+a\n click \"Move to Bin\"\n wait 1",
       swallowed + alert + keyLine("key\tFinder\tdown", "shift+option+caps+a") + consent + forward + deleted},
      {"no Finder, and nothing stays pending",
       "press forwarddelete\n end Finder\n click \"Move to Bin\"\n wait 1\n app Finder com.apple.finder\n "
       "front Finder\n press forwarddelete\n click Cancel",
       swallowed + alert + consent + swallowed + alert + refusal},
      {"asked for again before the key press, which waits behind the second alert",
       "press forwarddelete\n click \"Move to Bin\"\n press forwarddelete\n wait 1\n click \"Move to Bin\"\n wait 1",
       swallowed + alert + consent + forward + swallowed + alert + consent + forward + deleted + deleted},
      {"the end of the input", "press forwarddelete", swallowed + alert},
      {"what was scheduled goes with the process", "press forwarddelete\nquit\nclick \"Move to Bin\"\nquit",
       swallowed + alert + "lost\tquit\n" + consent + forward},
  };
  for (const auto& [what, session, trace] : cases) {
    TestDesktop desktop;
    EXPECT_EQ(play(desktop, {session}), trace) << what;
  }
}

TEST(Confirmation, NeverPostsHalfAKeyPress) {
  for (const long nth : {1, 2}) {
    TestDesktop own;
    own.machine.faults.fail("CGEventCreateKeyboardEvent", nth);
    EXPECT_EQ(play(own, {"press forwarddelete\n click \"Move to Bin\"\n wait 1"}),
              swallowed + alert + consent + forward);
  }
}

} // namespace
} // namespace desktop
