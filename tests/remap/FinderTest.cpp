#include "tests/support/RemapperTest.hpp"

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

} // namespace
} // namespace tarnwick
