#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

// Which roles are text, and who is the Finder, a session tells.
TEST(FinderShortcuts, TakeEveryFailureToFindTheFocusForNotEditing) {
  TestDesktop desktop;
  Accessibility& accessibility = desktop.machine.accessibility;
  const auto look = [&] {
    for (const AccessibilityAnswer failure : {AccessibilityAnswer::NotAtAll, AccessibilityAnswer::Error,
                                              AccessibilityAnswer::Nothing, AccessibilityAnswer::WrongType}) {
      accessibility.focusAnswer = failure;
      desktop.machine.queries.reset();
      EXPECT_EQ(desktop.press("forwarddelete"), "Cmd+Delete");
      EXPECT_EQ(desktop.machine.queries.role, 0) << "no element, no role";
      accessibility.focusAnswer = AccessibilityAnswer::Proper;
      accessibility.roleAnswer = failure;
      EXPECT_EQ(desktop.press("forwarddelete"), "Cmd+Delete");
      accessibility.roleAnswer = AccessibilityAnswer::Proper;
    }
    EXPECT_EQ(desktop.press("forwarddelete"), "ForwardDelete") << "an answer counts again";
  };
  desktop.play(
      {"menu Settings…\n click \"Confirm before moving to Bin\"\n front Finder\n focus AXTextField\n wait 0", look});
}

} // namespace
} // namespace desktop
