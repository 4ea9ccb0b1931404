#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

// Whose keys are rewritten, a session tells. Here is what no session can do, and what is not seen from outside.

TEST(Frontmost, IsAskedForAtEveryKeyAndNotWhileDisabled) {
  TestDesktop desktop;
  Desktop& machine = desktop.machine;
  const PropertyList exempt = PropertyList::Array{u"com.example.exempt", u""};
  desktop.store(u"exemptBundleIDs", exempt);
  const auto rewrites = [&] { return desktop.press("ctrl+c") == "Cmd+C"; };
  const auto changes = [&] {
    EXPECT_TRUE(rewrites());
    Ref<String>& identifier = machine.applications.frontmost->identifier;
    for (const char16_t* listed : {u"com.example.exempt", u"", u"app.tarnwick.Tarnwick"}) {
      identifier = string(listed);
      machine.queries.reset();
      EXPECT_FALSE(rewrites());
      EXPECT_EQ(machine.queries.frontmost, 2) << "once for the key and once for its release";
      EXPECT_EQ(machine.queries.ownIdentifier, 2);
      EXPECT_EQ(machine.queries.focusedElement, 0);
    }
    machine.mainBundle->identifier = string(u"com.example.other");
    EXPECT_TRUE(rewrites());
    identifier = string(u"com.example.other");
    EXPECT_FALSE(rewrites());
    machine.mainBundle->identifier = nullptr;
    EXPECT_TRUE(rewrites());
    identifier = nullptr;
    EXPECT_TRUE(rewrites()) << "two that have none are not the same";
  };
  const auto isNotAskedFor = [&] {
    machine.queries.reset();
    EXPECT_EQ(desktop.press("ctrl+c"), "Ctrl+C");
    EXPECT_EQ(machine.queries.frontmost + machine.queries.ownIdentifier, 0);
  };
  desktop.play({"launch", changes, "menu \"Disable Tarnwick\"", isNotAskedFor});
}

} // namespace
} // namespace desktop
