#include "platform/Window.hpp"

#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

namespace mac = platform;

// What the program's own window does not show of windows.
struct WindowTest : testing::Test {
  TestDesktop desktop;

  static mac::NSWindow make() {
    auto made =
        mac::NSWindow::make({{0, 0}, {540, 780}}, mac::NSWindowStyleMaskTitled, mac::NSBackingStoreBuffered, NO);
    made.setReleasedWhenClosed(NO);
    return made;
  }
};

TEST_F(WindowTest, LeavesTheScreenWithItsLastReference) {
  auto window = make();
  EXPECT_FALSE(window.screen()) << "not on the screen yet";
  window.makeKeyAndOrderFront();
  EXPECT_TRUE(window.screen());
  EXPECT_FALSE(as<Window>(window.object())->resize({700, 700})) << "it has not the style for it";
  window = {};
  EXPECT_EQ(desktop.machine.appKit.frontWindow(), nullptr);
}

TEST_F(WindowTest, LeftToItselfIsReleasedWhenClosed) {
  const long before = liveObjects("NSWindow");
  const id raw = make().detach();
  mac::send<"setReleasedWhenClosed:">(raw, YES);
  as<Window>(raw)->close();
  EXPECT_EQ(liveObjects("NSWindow"), before);
}

} // namespace
} // namespace desktop
