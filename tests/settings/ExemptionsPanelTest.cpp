#include "tests/support/TestDesktop.hpp"

namespace tarnwick {
namespace {

// What becomes of a choice, sessions tell.

/// An application of the Editor's identifier.
const std::string app = TARNWICK_SOURCE_DIR "/tests/sessions/Chosen.app";

TEST(ExemptionsPanel, TakesNothingUnlessItIsConfirmed) {
  for (const char* end : {"cancel", "# the end of the input"}) {
    desktop::TestDesktop desktop;
    desktop.play({"menu Settings…\nclick \"Choose App…\"",
                  [&] { desktop.machine.appKit.frontPanel()->chosen = desktop::fileURL(app); }, end});
    EXPECT_EQ(desktop.machine.defaults->file->value(u"exemptBundleIDs"), nullptr) << end;
  }
}

TEST(ExemptionsPanel, AsksForOneApplication) {
  desktop::TestDesktop desktop;
  desktop.play({"menu Settings…\nclick \"Choose App…\"", [&] {
                  const desktop::OpenPanel* const panel = desktop.machine.appKit.frontPanel();
                  ASSERT_NE(panel, nullptr);
                  EXPECT_EQ(textOf(panel->title.get()), "Choose Application to Exempt");
                  EXPECT_EQ(textOf(panel->message.get()), "Select an application bundle (.app)");
                  EXPECT_EQ(textOf(panel->prompt.get()), "Add Exemption");
                  EXPECT_EQ(panel->directory->path, "/Applications");
                  EXPECT_TRUE(panel->canChooseFiles);
                  EXPECT_FALSE(panel->canChooseDirectories || panel->allowsMultipleSelection);
                  ASSERT_EQ(panel->allowedContentTypes->count(), 1U);
                  const auto* type = desktop::as<desktop::ContentType>(panel->allowedContentTypes->objectAtIndex(0));
                  EXPECT_EQ(textOf(type->identifier.get()), "com.apple.application-bundle");
                }});
}

TEST(NextRun, HasAllSwitchesOnAgainAndTheExemptionsKept) {
  const desktop::TemporaryFolder folder;
  const auto run = [&](const std::string& session) {
    desktop::TestDesktop desktop;
    desktop.machine.defaults->file = std::make_unique<desktop::PropertyListFile>(folder.path / "defaults.plist");
    return desktop.play({session});
  };
  run("menu Settings…\nclick \"Bold (Ctrl+B)\"\nclick \"Choose App…\"\nchoose \"" + app +
      "\"\nmenu \"Disable Tarnwick\"");
  const auto received = [](const char* keys) { return desktop::keyLine("key\tEditor\tdown", keys); };
  const std::string next = run("down ctrl+b\nmenu Settings…\nclick Remove\nfront Editor\ndown ctrl+b");
  EXPECT_TRUE(next.starts_with("status\timage\n" + received("ctrl+b"))) << next;
  EXPECT_TRUE(next.ends_with(received("cmd+b") + "terminate\n")) << next;
}

} // namespace
} // namespace tarnwick
