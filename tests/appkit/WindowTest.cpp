#include "platform/Window.hpp"

#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

namespace mac = platform;

constexpr mac::NSUInteger fixed = mac::NSWindowStyleMaskTitled | mac::NSWindowStyleMaskClosable;

// What the program's own window does not show of windows.
struct WindowTest : testing::Test {
  TestDesktop desktop;

  static mac::NSWindow make(mac::NSUInteger style) {
    auto made = mac::NSWindow::make({{0, 0}, {540, 780}}, style, mac::NSBackingStoreBuffered, NO);
    made.setReleasedWhenClosed(NO);
    made.setMinSize({460, 500});
    return made;
  }
  static Window& inside(const mac::NSWindow& of) { return *as<Window>(of.object()); }
};

TEST_F(WindowTest, TheMinimumHoldsForTheUserAndCountsTheTitleBar) {
  const auto window = make(fixed | mac::NSWindowStyleMaskResizable);
  EXPECT_TRUE(inside(window).resize({10, 10}));
  EXPECT_EQ(inside(window).contentSize().width, 460);
  EXPECT_EQ(inside(window).contentSize().height, 500 - 28);
  EXPECT_FALSE(inside(make(fixed)).resize({700, 700})) << "a window without the style for it";
}

TEST_F(WindowTest, LeavesTheScreenWithItsLastReference) {
  auto window = make(fixed);
  EXPECT_FALSE(window.screen()) << "not on the screen yet";
  window.makeKeyAndOrderFront();
  EXPECT_TRUE(window.screen());
  window = {};
  EXPECT_EQ(desktop.machine.appKit.frontWindow(), nullptr);
}

TEST_F(WindowTest, LeftToItselfIsReleasedWhenClosed) {
  const long before = liveObjects("NSWindow");
  const id raw = make(fixed).detach();
  mac::send<"setReleasedWhenClosed:">(raw, YES);
  as<Window>(raw)->close();
  EXPECT_EQ(liveObjects("NSWindow"), before);
}

} // namespace
} // namespace desktop
