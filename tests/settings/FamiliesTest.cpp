#include "desktop/session/WindowCommands.hpp"
#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

/// The families of shortcuts as the settings window shows them: whichever they are, each has a checkbox that switches
/// it. The keys are releases, for which no rule asks the user anything.
class FamiliesTest : public testing::Test {
protected:
  TestDesktop desktop;
  Desktop& machine = desktop.machine;

  std::vector<std::string> checkboxes() const {
    std::vector<std::string> titles;
    forEachView(*machine.appKit.frontWindow()->contentView(), [&](View& view) {
      const auto* button = ifIs<Button>(&view);
      if (button != nullptr && button->isCheckbox()) titles.push_back(textOf(button->title.get()));
    });
    return titles;
  }

  /// What the Editor and the Finder receive of every key with every choice of modifiers.
  std::vector<JournalEntry> received() {
    desktop.entries.clear();
    for (const char* application : {"Editor", "Finder"}) {
      machine.applications.frontmost = shared(machine.applications.named(application));
      for (CGEventFlags modifiers = 0; modifiers < 16; ++modifiers) {
        for (std::uint16_t code = 0; code < 128; ++code)
          machine.server.type(kCGEventKeyUp, code, modifiers * kCGEventFlagMaskShift);
      }
    }
    return std::exchange(desktop.entries, {});
  }
};

TEST_F(FamiliesTest, HaveACheckboxEach) {
  std::vector<JournalEntry> allOff;
  const auto clickEach = [&] {
    const auto rewritten = received();
    for (const std::string& title : checkboxes()) {
      clickInWindow(machine, title, 1);
      EXPECT_NE(received(), rewritten) << "the checkbox \"" << title << "\" switches no key";
      clickInWindow(machine, title, 1);
      EXPECT_EQ(received(), rewritten) << title;
    }
  };
  const auto clickAll = [&] {
    for (const std::string& title : checkboxes())
      clickInWindow(machine, title, 1);
    allOff = received();
  };
  const auto compare = [&] {
    const auto typed = received();
    for (std::size_t each = 0; each < typed.size(); ++each)
      EXPECT_EQ(allOff[each], typed[each]) << "no checkbox switches this key off";
  };
  desktop.play({"menu Settings…", clickEach, clickAll, "menu \"Disable Tarnwick\"", compare});
}

} // namespace
} // namespace desktop
