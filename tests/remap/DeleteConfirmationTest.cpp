#include "platform/Alert.hpp"
#include "tests/support/TestDesktop.hpp"

#include <regex>

namespace tarnwick {
namespace {

const std::string swallowed = "swallowed\tdown\t0x75\t0x800000\nswallowed\tup\t0x75\t0x800000\n";
const std::string alert = "alert\tMove selected item to Bin?\tThis will move the selected Finder item to Bin.\tMove to "
                          "Bin\tCancel\n";
const std::string consent = "answer\tMove to Bin\n";
const std::string refusal = "answer\tCancel\n";
const std::string forward = "front\tFinder\n";
const std::string deleted = "post\tdown\t0x33\t0x100000\npost\tup\t0x33\t0x100000\n"
                            "key\tFinder\tdown\t0x33\t0x100000\nkey\tFinder\tup\t0x33\t0x100000\n";

/// The trace from the launch on, with the Finder in front, without the status item and the end.
std::string play(desktop::TestDesktop& desktop, const std::vector<desktop::Step>& steps) {
  std::vector<desktop::Step> all{"front Finder"};
  all.insert(all.end(), steps.begin(), steps.end());
  const std::string trace = desktop.play(all);
  const std::string begin = "status\timage\n";
  const std::string end = "terminate\n";
  EXPECT_TRUE(trace.starts_with(begin) && trace.ends_with(end)) << trace;
  return trace.substr(begin.size(), trace.size() - begin.size() - end.size());
}

TEST(Confirmation, TypesTheFindersShortcutAMomentAfterConsent) {
  desktop::TestDesktop desktop;
  EXPECT_EQ(play(desktop, {"press forwarddelete\n click \"Move to Bin\"\n wait 0.049",
                           [&] { desktop.facts.push_back({"--"}); }, "wait 0.001"}),
            swallowed + alert + consent + forward + "--\n" + deleted);
}

TEST(Confirmation, WarnsAndBringsTheFirstOfTwoFindersForward) {
  desktop::TestDesktop desktop;
  EXPECT_EQ(play(desktop, {"app Second com.apple.finder\n front Second\n press forwarddelete",
                           [&] {
                             ASSERT_NE(desktop.machine.appKit->frontAlert(), nullptr);
                             EXPECT_EQ(desktop.machine.appKit->frontAlert()->style, platform::NSAlertStyleWarning);
                           },
                           "click \"Move to Bin\"\n wait 1"}),
            swallowed + alert + consent + forward + deleted);
}

TEST(Confirmation, EndsAsTheUserAndTheDesktopWill) {
  const std::string down = "swallowed\tdown\t0x75\t0x800000\n";
  const std::string up = "swallowed\tup\t0x75\t0x800000\n";
  const struct {
    const char* what;
    const char* session;
    std::string trace;
  } cases[] = {
      {"nothing is looked at any more after consent",
       "press forwarddelete\n click \"Move to Bin\"\n menu \"Disable Tarnwick\"\n front Editor\n wait 0.05",
       swallowed + alert + consent + forward + std::regex_replace(deleted, std::regex("Finder"), "Editor")},
      {"refused, then asked again", "press forwarddelete\n click Cancel\n wait 1\n press forwarddelete\n click Cancel",
       swallowed + alert + refusal + swallowed + alert + refusal},
      {"asked once, also before the alert is up", "press forwarddelete 3\n click Cancel\n wait 1",
       swallowed + swallowed + swallowed + alert + refusal},
      {"asked once while the alert is up, and not by the release",
       "down forwarddelete\n press forwarddelete\n click Cancel\n up forwarddelete\n wait 1",
       down + alert + swallowed + refusal + up},
      {"the tap is served meanwhile",
       "press forwarddelete\n down ctrl+c\n front Editor\n down ctrl+c\n click \"Move to Bin\"\n wait 1",
       swallowed + alert + "key\tFinder\tdown\t0x08\t0x100000\nkey\tEditor\tdown\t0x08\t0x100000\n" + consent +
           forward + deleted},
      {"modifiers that are still held are not carried over",
       "press forwarddelete\n raw down 0x00 0x20102\n click \"Move to Bin\"\n wait 1",
       swallowed + alert + "key\tFinder\tdown\t0x00\t0x20102\n" + consent + forward + deleted},
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
    desktop::TestDesktop desktop;
    EXPECT_EQ(play(desktop, {session}), trace) << what;
  }
}

TEST(Confirmation, NeverPostsHalfAKeyPress) {
  for (bool desktop::Faults::*fault : {&desktop::Faults::keyDownEvent, &desktop::Faults::keyUpEvent}) {
    desktop::TestDesktop own;
    own.machine.faults.*fault = true;
    EXPECT_EQ(play(own, {"press forwarddelete\n click \"Move to Bin\"\n wait 1"}),
              swallowed + alert + consent + forward);
  }
}

} // namespace
} // namespace tarnwick
