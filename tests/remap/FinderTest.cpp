#include "platform/Alert.hpp"
#include "tests/support/RemapperTest.hpp"

#include <regex>

namespace tarnwick {
namespace {

using desktop::AccessibilityAnswer;

constexpr CGEventFlags fn = kCGEventFlagMaskSecondaryFn;
constexpr CGEventFlags caps = capsLock;
constexpr CGEventFlags pad = numericPad;

constexpr Key forwardDelete{0x75, fn};
constexpr Key f2{0x78, fn};
constexpr Key cmdDelete{0x33, command};
constexpr Key returnKey{0x24, 0};
constexpr Key letter{0x00, 0};

class FinderTest : public RemapperTest {
protected:
  desktop::Desktop& machine = desktop.machine;
  desktop::RunningApplication& finder = *machine.named("Finder");

  void SetUp() override {
    RemapperTest::SetUp();
    machine.frontmost = desktop::shared(&finder);
    finder.reaction = nullptr; // the focus stays where the test puts it
    remapper->mapFinderDeleteConfirm = false;
  }
};

TEST_F(FinderTest, GetsItsOwnShortcutsForForwardDeleteAndF2) {
  const struct {
    Key typed;
    Key received;
  } keys[] = {
      {forwardDelete, cmdDelete},
      {{0x75, 0}, cmdDelete},
      {{0x75, fn | caps | 0x100}, {0x33, command | caps | 0x100}},
      {f2, returnKey},
      {{0x78, fn | caps | pad | 0x100}, {0x24, caps | pad | 0x100}},
      {{0x78, 0}, returnKey},
  };
  for (const auto& [typed, received] : keys)
    EXPECT_EQ(press(typed), received);
  for (const CGEventFlags held : {shift, control, option, command}) {
    for (const Key key : {forwardDelete, f2}) {
      const Key withModifier{key.code, key.flags | held};
      EXPECT_EQ(press(withModifier), withModifier) << "with modifiers they are other shortcuts";
    }
  }
}

TEST_F(FinderTest, KeepsItsKeysWhenTheSwitchesAreOff) {
  remapper->mapFinderDeleteConfirm = true;
  remapper->mapFinderDeleteToBin = false;
  EXPECT_EQ(press(forwardDelete), forwardDelete) << "the question belongs to the delete rule";
  EXPECT_EQ(press(f2), returnKey);
  remapper->mapFinderDeleteToBin = true;
  remapper->mapFinderDeleteConfirm = remapper->mapFinderRename = false;
  EXPECT_EQ(press(forwardDelete), cmdDelete);
  EXPECT_EQ(press(f2), f2);
  remapper->enabled = false;
  EXPECT_EQ(press(forwardDelete), forwardDelete);
}

TEST_F(FinderTest, IsTheOnlyApplicationWithTheseShortcuts) {
  for (const auto& identifier : {std::optional<std::u16string>(u"com.example.editor"),
                                 std::optional<std::u16string>(u"com.apple.Finder"), std::optional<std::u16string>()}) {
    front(identifier);
    EXPECT_EQ(press(forwardDelete), forwardDelete);
    EXPECT_EQ(press(f2), f2);
  }
  machine.frontmost = nullptr;
  EXPECT_EQ(press(f2), f2);
}

TEST_F(FinderTest, DeletesNothingWhileTextIsEdited) {
  for (const char* role : {"AXTextField", "AXTextArea", "AXComboBox"}) {
    finder.role = role;
    EXPECT_EQ(press(forwardDelete), forwardDelete) << role;
    EXPECT_EQ(press(f2), returnKey) << "renaming does not ask for the focus";
  }
  for (const char* role : {"AXList", "AXGroup", "AXWebArea", "AXtextField", "AXTextField2", ""}) {
    finder.role = role;
    EXPECT_EQ(press(forwardDelete), cmdDelete) << role;
  }
}

TEST_F(FinderTest, TakesEveryFailureToFindTheFocusForNotEditing) {
  finder.role = "AXTextField";
  for (const AccessibilityAnswer failure : {AccessibilityAnswer::NotAtAll, AccessibilityAnswer::Error,
                                            AccessibilityAnswer::Nothing, AccessibilityAnswer::WrongType}) {
    machine.focusAnswer = failure;
    EXPECT_EQ(press(forwardDelete), cmdDelete);
    machine.focusAnswer = AccessibilityAnswer::Proper;
    machine.roleAnswer = failure;
    EXPECT_EQ(press(forwardDelete), cmdDelete);
    machine.roleAnswer = AccessibilityAnswer::Proper;
  }
  EXPECT_EQ(press(forwardDelete), forwardDelete) << "an answer counts again";
  finder.role = std::nullopt;
  EXPECT_EQ(press(forwardDelete), cmdDelete) << "nothing focused";
  finder.role = "AXTextField";
  machine.trusted = false;
  EXPECT_EQ(press(forwardDelete), cmdDelete) << "trust taken away while the tap lives";
}

TEST_F(FinderTest, AsksInAFixedOrderAndNoOftener) {
  const auto queries = [&](Key key) {
    machine.queries = {};
    send(kCGEventKeyDown, key);
    const auto& asked = machine.queries;
    return std::array{asked.frontmost, asked.focusedElement, asked.role};
  };
  using Counts = std::array<long, 3>;
  EXPECT_EQ(queries(letter), (Counts{3, 1, 1})) << "both rules ask before they look at the key";
  EXPECT_EQ(queries(forwardDelete), (Counts{2, 1, 1})) << "the first rule decided";
  EXPECT_EQ(queries(f2), (Counts{3, 1, 1}));
  EXPECT_EQ(queries({0x25, command}), (Counts{1, 0, 0})) << "the lock screen comes first";
  remapper->mapLockScreen = false;
  EXPECT_EQ(queries({0x25, command}), (Counts{1, 0, 0})) << "also when its switch is off";
  remapper->addExemptBundleID(platform::NSString::utf8("com.apple.finder"));
  EXPECT_EQ(queries(forwardDelete), (Counts{1, 0, 0})) << "no rule runs for an exempt application";
  remapper->removeExemptBundleID(platform::NSString::utf8("com.apple.finder"));
  remapper->mapFinderDeleteToBin = false;
  EXPECT_EQ(queries(letter), (Counts{2, 0, 0}));
  remapper->mapFinderRename = false;
  EXPECT_EQ(queries(letter), (Counts{1, 0, 0}));
  remapper->mapFinderDeleteToBin = remapper->mapFinderRename = true;
  front(u"com.example.editor");
  EXPECT_EQ(queries(forwardDelete), (Counts{3, 0, 0})) << "no accessibility question outside the Finder";
  machine.focusAnswer = AccessibilityAnswer::Nothing;
  machine.frontmost = desktop::shared(&finder);
  EXPECT_EQ(queries(letter), (Counts{3, 1, 0})) << "no element, no role";
}

TEST_F(FinderTest, IsNotAskedAboutByARemapperThatIsGone) {
  remapper->mapFinderDeleteConfirm = true;
  EXPECT_EQ(send(kCGEventKeyDown, forwardDelete).by, "swallowed");
  remapper->stop();
  remapper.reset();
  desktop.facts.clear();
  machine.settle();
  EXPECT_EQ(desktop.trace(), "");
}

// The question before the move, told as sessions.

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
