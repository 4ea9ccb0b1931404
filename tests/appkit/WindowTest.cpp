#include "platform/Window.hpp"

#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

TEST(Window, LeftToItselfIsReleasedWhenClosed) {
  TestDesktop desktop;
  const platform::AutoreleasePool pool;
  const id raw = platform::NSWindow::make({{0, 0}, {540, 780}}, 3, platform::NSBackingStoreBuffered, NO).detach();
  as<Window>(raw)->close();
  EXPECT_EQ(liveObjects("NSWindow"), 0);
}

} // namespace
} // namespace desktop
