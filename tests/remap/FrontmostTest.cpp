#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

// Whose keys are rewritten, and how often who is in front is asked, a session and a fuzz target's corpus hold. Here is
// what neither can do: identifiers that change while the program runs, its own among them.
TEST(Frontmost, IsComparedWithItsOwnIdentifierAnewAtEveryKey) {
  TestDesktop desktop;
  const auto changes = [&] {
    Ref<String>& identifier = desktop.machine.applications.frontmost->identifier;
    Ref<String>& own = desktop.machine.mainBundle->identifier;
    const auto rewrites = [&] { return desktop.press("ctrl+c") == "Cmd+C"; };
    EXPECT_TRUE(rewrites());
    identifier = own;
    EXPECT_FALSE(rewrites());
    own = string(u"com.example.other");
    EXPECT_TRUE(rewrites());
    own = nullptr;
    EXPECT_TRUE(rewrites());
    identifier = nullptr;
    EXPECT_TRUE(rewrites()) << "two that have none are not the same";
  };
  desktop.play({"launch", changes});
}

} // namespace
} // namespace desktop
