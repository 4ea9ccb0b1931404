#include "settings/MappingsWindowController.hpp"

#include "desktop/appkit/Window.hpp"
#include "tests/support/RemapperTest.hpp"

namespace tarnwick {
namespace {

/// The window on its own, without the application around it.
class MappingsWindowControllerTest : public RemapperTest {};

TEST_F(MappingsWindowControllerTest, GivesItsWindowTheDefaultSizeAtFirstAndNoLessThanThatLater) {
  desktop.machine.appKit.screen.reset();
  desktop.machine.applications.tarnwick = desktop::shared(&desktop.machine.start("Tarnwick", ""));
  const platform::AutoreleasePool pool;
  const auto controller = MappingsWindowController::make(remapper);
  const auto& window = *desktop::as<desktop::Window>(controller.window().object());
  const auto expectDefaultSize = [&] {
    EXPECT_EQ(window.contentSize().width, 540);
    EXPECT_EQ(window.contentSize().height, 780);
  };
  expectDefaultSize();
  desktop::StackView* settings = nullptr;
  desktop::forEachView(*window.contentView(), [&](desktop::View& view) {
    if (auto* const stack = desktop::ifIs<desktop::StackView>(&view); settings == nullptr) settings = stack;
  });
  ASSERT_NE(settings, nullptr);
  EXPECT_GT(settings->superview->frame.size.height, 780) << "the content is there and measured";
  while (!settings->subviews.empty())
    settings->subviews.front()->removeFromSuperview();
  platform::send<"show">(controller);
  expectDefaultSize();
}

} // namespace
} // namespace tarnwick
