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
