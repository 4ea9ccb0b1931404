#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

using Identifier = std::optional<std::u16string>;

/// The program with a stored list of exempt applications, and what it makes of the one in front.
class FrontmostTest : public testing::Test {
protected:
  TestDesktop desktop;
  Desktop& machine = desktop.machine;

  void running(const PropertyList& exempt, const std::function<void()>& look) {
    desktop.store(u"exemptBundleIDs", exempt);
    desktop.play({"launch", look, "menu \"Disable Tarnwick\"", [&] {
                    machine.queries.reset();
                    EXPECT_EQ(desktop.press("ctrl+c"), "Ctrl+C");
                    EXPECT_EQ(machine.queries.frontmost + machine.queries.ownIdentifier, 0) << "not even asked";
                  }});
    EXPECT_EQ(*machine.defaults->file->value(u"exemptBundleIDs"), exempt) << "reading must not write";
  }
  /// Whether shortcuts are rewritten with an application of that identifier in front, or of none.
  bool rewrites(const Identifier& identifier) {
    auto& application = machine.start("Application", "");
    if (identifier) application.identifier = string(*identifier);
    machine.applications.frontmost = shared(&application);
    return rewrites();
  }
  bool rewrites() { return desktop.press("ctrl+c") == "Cmd+C"; }
};

TEST_F(FrontmostTest, DecidesWhetherKeysAreRewritten) {
  running(PropertyList::Array{u"com.example.exempt", u"com.apple.finder"}, [&] {
    for (const char16_t* exempt : {u"com.example.exempt", u"com.apple.finder", u"app.tarnwick.Tarnwick"}) {
      machine.queries.reset();
      EXPECT_FALSE(rewrites(exempt));
      const Queries& asked = machine.queries;
      EXPECT_EQ(asked.frontmost, 2) << "once for the key and once for its release";
      EXPECT_EQ(asked.ownIdentifier, 2);
      EXPECT_EQ(asked.focusedElement, 0);
    }
    for (const Identifier& other :
         {Identifier(u"com.example.other"), Identifier(u"com.example.Exempt"), Identifier(u"com.example.exempt "),
          Identifier(u"com.example.exempt.more"), Identifier(u"app.tarnwick.tarnwick"), Identifier(u""), Identifier()})
      EXPECT_TRUE(rewrites(other)) << testing::PrintToString(other);
    machine.applications.frontmost = nullptr;
    EXPECT_TRUE(rewrites());
  });
}

TEST_F(FrontmostTest, IsNotRememberedFromKeyToKey) {
  running(PropertyList::Array{u"com.example.exempt"}, [&] {
    EXPECT_TRUE(rewrites(u"com.example.other"));
    machine.applications.frontmost->identifier = string(u"com.example.exempt");
    EXPECT_FALSE(rewrites());
    machine.applications.frontmost->identifier = string(u"com.example.other");
    machine.mainBundle->identifier = string(u"com.example.other");
    EXPECT_FALSE(rewrites());
    machine.mainBundle->identifier = nullptr;
    EXPECT_TRUE(rewrites());
    EXPECT_TRUE(rewrites(std::nullopt)) << "two that have none are not the same";
  });
}

TEST_F(FrontmostTest, IsComparedWithTheStoredListAsItIs) {
  running(PropertyList::Array{u"com.b", u"com.a", u"com.b", u"", u" com.a\n"}, [&] {
    for (const char16_t* exempt : {u"com.a", u"com.b", u"", u" com.a\n"})
      EXPECT_FALSE(rewrites(exempt));
    EXPECT_TRUE(rewrites(u"com.c"));
  });
}

TEST(StoredExemptions, CountForNothingUnlessTheyAreAnArrayOfStrings) {
  const PropertyList useless[] = {
      u"com.example.editor",
      PropertyList::Dictionary{{u"com.example.editor", u"com.example.editor"}},
      PropertyList::Data(3),
      PropertyList::Array{u"com.example.editor", 5},
      PropertyList::Array{false, u"com.example.editor"},
      PropertyList::Array{PropertyList(PropertyList::Array{u"com.example.editor"})},
  };
  for (const PropertyList& stored : useless) {
    TestDesktop desktop;
    desktop.store(u"exemptBundleIDs", stored);
    desktop.play({"launch", [&] { EXPECT_EQ(desktop.press("ctrl+c"), "Cmd+C"); }});
    EXPECT_EQ(*desktop.machine.defaults->file->value(u"exemptBundleIDs"), stored) << "reading must not write";
  }
}

} // namespace
} // namespace desktop
