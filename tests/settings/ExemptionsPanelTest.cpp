#include "tests/support/TestDesktop.hpp"

namespace tarnwick {
namespace {

// What becomes of a choice, sessions tell, and what of it at the next run, the transcript of defaults.

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

} // namespace
} // namespace tarnwick
