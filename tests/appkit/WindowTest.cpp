#include "platform/Window.hpp"

#include "platform/OpenPanel.hpp"
#include "platform/RuntimeClass.hpp"
#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

namespace mac = platform;

/// A delegate that counts what it hears.
class Listener {
public:
  static mac::NSObject make() {
    static const Class registered = mac::RuntimeClass<Listener, "WindowTestListener", "NSObject">()
                                        .conformsTo("NSWindowDelegate")
                                        .method<"init", &mac::initialise<Listener, "NSObject">>()
                                        .method<"windowDidResize:", &Listener::windowDidResize>()
                                        .registered();
    static_cast<void>(registered);
    return mac::make<"WindowTestListener", "init">();
  }
  static Listener& of(const mac::NSObject& listener) { return mac::InstanceState<Listener>::of(listener.object()); }

  explicit Listener(id /*instance*/) {}
  void windowDidResize(id /*notification*/) { ++resized; }

  int resized = 0;
};

struct WindowTest : testing::Test {
  TestDesktop desktop;
  mac::NSObject listener = Listener::make();
  mac::NSWindow window = make(11);

  mac::NSWindow make(mac::NSUInteger style) const {
    auto made = mac::NSWindow::make({{0, 0}, {540, 780}}, style, mac::NSBackingStoreBuffered, NO);
    made.setTitle(mac::NSString::utf8("Settings"));
    made.setReleasedWhenClosed(NO);
    made.setMinSize({460, 500});
    made.setDelegate(listener.object());
    return made;
  }
  static Window& inside(const mac::NSWindow& of) { return *as<Window>(of.object()); }
  CGSize contentSize() const { return inside(window).contentSize(); }
  CGSize contentViewSize() const { return as<View>(window.contentView().object())->frame.size; }
};

TEST_F(WindowTest, TheDelegateHearsOfEveryChangeOfSizeAndOfNothingElse) {
  window.setContentSize({540, 780});
  EXPECT_EQ(Listener::of(listener).resized, 0);
  window.setContentSize({600, 400});
  EXPECT_EQ(Listener::of(listener).resized, 1);
  EXPECT_EQ(contentViewSize().width, 600);
  EXPECT_EQ(contentViewSize().height, 400);
  EXPECT_TRUE(inside(window).resize({700, 700}));
  EXPECT_EQ(Listener::of(listener).resized, 2);
}

TEST_F(WindowTest, TheMinimumHoldsForTheUserAndCountsTheTitleBar) {
  EXPECT_TRUE(inside(window).resize({10, 10}));
  EXPECT_EQ(contentSize().width, 460);
  EXPECT_EQ(contentSize().height, 500 - 28);
  EXPECT_FALSE(inside(make(3)).resize({700, 700})) << "a window without the style for it";
}

TEST_F(WindowTest, ClosingHidesAndOrderingFrontShowsTheSameWindowAgain) {
  EXPECT_FALSE(window.screen()) << "not on the screen yet";
  window.makeKeyAndOrderFront();
  const auto other = make(11);
  other.makeKeyAndOrderFront();
  EXPECT_EQ(desktop.machine.appKit->frontWindow(), &inside(other));
  window.makeKeyAndOrderFront();
  EXPECT_EQ(desktop.machine.appKit->frontWindow(), &inside(window));
  EXPECT_TRUE(window.screen());
  inside(window).close();
  EXPECT_FALSE(inside(window).isVisible());
  EXPECT_EQ(desktop.machine.appKit->frontWindow(), &inside(other));
  EXPECT_EQ(desktop.trace(), "window\tSettings\t540\t780\nwindow\tSettings\t540\t780\nwindow\tSettings\t540\t780\n");
}

TEST_F(WindowTest, AWindowLeavesTheScreenWithItsLastReference) {
  window.makeKeyAndOrderFront();
  window = {};
  EXPECT_EQ(desktop.machine.appKit->frontWindow(), nullptr);
}

TEST_F(WindowTest, LeftToItselfAWindowIsReleasedWhenClosed) {
  const long before = liveObjects("NSWindow");
  const id raw = make(11).detach();
  mac::send<"setReleasedWhenClosed:">(raw, YES);
  as<Window>(raw)->close();
  EXPECT_EQ(liveObjects("NSWindow"), before);
}

TEST_F(WindowTest, CentringNeedsAScreen) {
  desktop.machine.screen = CGSize{1000, 1108};
  window.center();
  EXPECT_EQ(inside(window).frame.origin.x, 230);
  EXPECT_EQ(inside(window).frame.origin.y, 200) << "of the 300 left over, two thirds are below";
  desktop.machine.screen.reset();
  window.makeKeyAndOrderFront();
  window.setContentSize({600, 780});
  window.center();
  EXPECT_EQ(inside(window).frame.origin.x, 230);
  EXPECT_FALSE(window.screen());
  EXPECT_FALSE(mac::NSScreen::mainScreen());
}

/// What a panel answers when the user does one thing about it.
struct Outcome {
  mac::NSInteger response;
  std::string path;
};

Outcome run(const mac::NSOpenPanel& panel, Desktop& machine, const std::function<void(OpenPanel&)>& act) {
  bool acted = false;
  machine.nextCommand = [&] {
    if (!acted && act) act(*machine.appKit->frontPanel());
    return act && !std::exchange(acted, true);
  };
  const auto response = panel.runModal();
  const mac::NSURL url = panel.URL();
  return {response, url ? as<URL>(url.object())->path : "none"};
}

TEST_F(WindowTest, APanelAnswersWithWhatTheUserChose) {
  const auto panel = mac::NSOpenPanel::openPanel();
  panel.setTitle(mac::NSString::utf8("Choose"));
  const Outcome chosen = run(panel, desktop.machine, [](OpenPanel& shown) { shown.choose("/A b.app"); });
  EXPECT_EQ(chosen.response, 1);
  EXPECT_EQ(chosen.path, "/A b.app");
  const Outcome cancelled = run(panel, desktop.machine, [](OpenPanel& shown) { shown.cancel(); });
  EXPECT_EQ(cancelled.response, 0);
  EXPECT_EQ(cancelled.path, "none");
  const Outcome ended = run(panel, desktop.machine, {});
  EXPECT_EQ(ended.response, -1001);
  EXPECT_EQ(ended.path, "none");
  EXPECT_EQ(desktop.machine.appKit->frontModal(), nullptr);
  EXPECT_EQ(desktop.trace(), "panel\tChoose\nanswer\t/A b.app\npanel\tChoose\nanswer\t-\npanel\tChoose\n");
}

} // namespace
} // namespace desktop
