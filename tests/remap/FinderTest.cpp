#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

/// The Finder in front of the running program, which does not ask before it deletes.
class FinderTest : public testing::Test {
protected:
  TestDesktop desktop;
  Desktop& machine = desktop.machine;
  RunningApplication& finder = *machine.applications.named("Finder");

  void inFinder(const std::function<void()>& look) {
    desktop.play({"menu Settings…\n click \"Confirm before moving to Bin\"\n front Finder", look});
  }
  std::string press(const char* keys) { return desktop.press(keys); }
};

TEST_F(FinderTest, DeletesNothingWhileTextIsEdited) {
  inFinder([&] {
    for (const char* role : {"AXTextField", "AXTextArea", "AXComboBox"}) {
      finder.role = role;
      EXPECT_EQ(press("forwarddelete"), "ForwardDelete") << role;
    }
    for (const char* role : {"AXList", "AXGroup", "AXButton", "AXStaticText", "AXWebArea", "AXSearchField",
                             "AXSecureTextField", "AXtextField", "AXTextField2", "AXTextFiel", ""}) {
      finder.role = role;
      EXPECT_EQ(press("forwarddelete"), "Cmd+Delete") << role;
    }
  });
}

TEST_F(FinderTest, TakesEveryFailureToFindTheFocusForNotEditing) {
  inFinder([&] {
    finder.role = "AXTextField";
    for (const AccessibilityAnswer failure : {AccessibilityAnswer::NotAtAll, AccessibilityAnswer::Error,
                                              AccessibilityAnswer::Nothing, AccessibilityAnswer::WrongType}) {
      machine.accessibility.focusAnswer = failure;
      machine.queries.reset();
      EXPECT_EQ(press("forwarddelete"), "Cmd+Delete");
      EXPECT_EQ(machine.queries.role, 0) << "no element, no role";
      machine.accessibility.focusAnswer = AccessibilityAnswer::Proper;
      machine.accessibility.roleAnswer = failure;
      EXPECT_EQ(press("forwarddelete"), "Cmd+Delete");
      machine.accessibility.roleAnswer = AccessibilityAnswer::Proper;
    }
    EXPECT_EQ(press("forwarddelete"), "ForwardDelete") << "an answer counts again";
    finder.role = std::nullopt;
    EXPECT_EQ(press("forwarddelete"), "Cmd+Delete") << "nothing focused";
    finder.role = "AXTextField";
    machine.accessibility.trusted = false;
    EXPECT_EQ(press("forwarddelete"), "Cmd+Delete") << "trust taken away while the tap lives";
  });
}

TEST_F(FinderTest, IsKnownByItsIdentifierAlone) {
  inFinder([&] {
    finder.name = "Another";
    EXPECT_EQ(press("f2"), "Return");
    finder.identifier = string(u"com.apple.Finder");
    EXPECT_EQ(press("f2"), "F2");
    finder.identifier = nullptr;
    EXPECT_EQ(press("f2"), "F2");
    machine.applications.frontmost = nullptr;
    EXPECT_EQ(press("f2"), "F2");
  });
}

} // namespace
} // namespace desktop
