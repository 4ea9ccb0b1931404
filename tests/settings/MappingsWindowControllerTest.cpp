#include "settings/MappingsWindowController.hpp"

#include "desktop/appkit/Window.hpp"
#include "tests/support/RemapperTest.hpp"

namespace tarnwick {
namespace {

/// The window on its own, without the application around it.
class MappingsWindowControllerTest : public RemapperTest {};

TEST_F(MappingsWindowControllerTest, GivesItsWindowTheDefaultSizeAtFirstAndNoLessThanThatLater) {
  desktop.machine.applications.tarnwick = desktop::shared(&desktop.machine.start("Tarnwick", ""));
  const platform::AutoreleasePool pool;
  desktop.machine.faults.fail("NSWindow contentView"); // so that there is nothing to measure
  const auto controller = MappingsWindowController::make(remapper);
  const auto& window = *desktop::as<desktop::Window>(controller.window().object());
  const auto expectDefaultSize = [&] {
    EXPECT_EQ(window.contentSize().width, 540);
    EXPECT_EQ(window.contentSize().height, 780);
  };
  expectDefaultSize();
  desktop.machine.appKit.screen.reset();
  platform::send<"show">(controller);
  expectDefaultSize();
}

} // namespace
} // namespace tarnwick
