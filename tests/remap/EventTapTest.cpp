#include "tests/support/RemapperTest.hpp"

namespace tarnwick {
namespace {

using desktop::liveObjects;

class EventTapTest : public RemapperTest {
protected:
  desktop::WindowServer& server = desktop.machine.server;

  desktop::EventTap& tap() { return *server.installed().at(0); }

  static desktop::Ref<desktop::Event> controlC() {
    auto event = desktop::create<desktop::Event>();
    event->code = kVK_ANSI_C;
    event->flags = kCGEventFlagMaskControl;
    return event;
  }
  /// What the callback does with Ctrl+C when the window server hands it over as an event of that type.
  bool handsBackUnchanged(CGEventType type, void* userInfo) {
    const auto event = controlC();
    const auto reference = reinterpret_cast<CGEventRef>(static_cast<id>(event.get()));
    return tap().callback(nullptr, type, reference, userInfo) == reference && event->code == kVK_ANSI_C &&
           event->flags == kCGEventFlagMaskControl;
  }
};

TEST_F(EventTapTest, StandsAtTheHeadOfTheSessionsKeyEvents) {
  remapper->stop();
  constexpr CGEventMask keys = CGEventMask{1} << kCGEventKeyDown | CGEventMask{1} << kCGEventKeyUp;
  const auto passive = [](CGEventTapProxy, CGEventType, CGEventRef event, void*) { return event; };
  const platform::CF<CFMachPortRef> other(
      platform::adopt,
      CGEventTapCreate(kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionDefault, keys, passive, nullptr));
  ASSERT_TRUE(remapper->start());
  ASSERT_EQ(server.installed().size(), 2U);
  EXPECT_EQ(tap().userInfo, remapper.get());
  EXPECT_EQ(tap().location, kCGSessionEventTap);
  EXPECT_EQ(tap().mask, keys) << "key-down and key-up, and nothing else";
}

TEST_F(EventTapTest, IsGoneAfterStop) {
  {
    const auto kept = desktop::shared(&tap());
    EXPECT_EQ(kept->asked, true);
    remapper->stop();
    EXPECT_EQ(kept->asked, false);
    EXPECT_FALSE(kept->scheduled);
  }
  remapper->stop();
  EXPECT_EQ(liveObjects("CFMachPort") + liveObjects("CFRunLoopSource"), 0);
  EXPECT_FALSE(rewrites());
  ASSERT_TRUE(remapper->start());
  EXPECT_TRUE(rewrites());
}

TEST_F(EventTapTest, HandsBackWhatIsNotItsBusinessAndStaysDisabled) {
  EXPECT_TRUE(handsBackUnchanged(kCGEventKeyDown, nullptr));
  EXPECT_TRUE(server.disableTaps(kCGEventTapDisabledByTimeout));
  constexpr std::uint32_t leftMouseDown = 1;
  constexpr std::uint32_t flagsChanged = 12;
  for (const std::uint32_t type :
       {0U, leftMouseDown, 9U, flagsChanged, 0x8000000aU, std::uint32_t{kCGEventTapDisabledByTimeout},
        std::uint32_t{kCGEventTapDisabledByUserInput}}) {
    EXPECT_TRUE(handsBackUnchanged(static_cast<CGEventType>(type), remapper.get())) << type;
  }
  EXPECT_EQ(desktop.machine.queries.frontmost, 0);
  EXPECT_FALSE(tap().enabled) << "nobody enables it again";
}

TEST_F(EventTapTest, DoesNotOwnTheRemapperAndAsksNothingForOneThatIsGone) {
  desktop.machine.applications.frontmost = desktop::shared(desktop.machine.applications.named("Finder"));
  EXPECT_EQ(desktop.press("forwarddelete"), "swallowed");
  const std::weak_ptr<KeyRemapper> watched = remapper;
  remapper.reset();
  EXPECT_TRUE(watched.expired());
  EXPECT_TRUE(tap().listens()) << "taking the tap down is left to stop()";
  server.forgetProgram();
  desktop.machine.runLoop.settle();
  EXPECT_EQ(desktop.trace(), "");
}

/// An application that lets go of the remapper when asked for its identifier, in the middle of a callback.
struct LastOwner : desktop::RunningApplication {
  std::shared_ptr<KeyRemapper>* remapper = nullptr;
  std::weak_ptr<KeyRemapper> watched;
  bool wasHeld = false;

  desktop::Ref<desktop::String> bundleIdentifier() {
    remapper->reset();
    wasHeld = !watched.expired();
    return desktop::string(u"com.example.last");
  }
  static desktop::Ref<LastOwner> make() {
    [[maybe_unused]] static const auto registered = desktop::NativeClass<LastOwner>("LastOwner", "NSRunningApplication")
                                                        .method<"bundleIdentifier", &LastOwner::bundleIdentifier>();
    return desktop::create<LastOwner>();
  }
};

TEST_F(EventTapTest, HoldsTheRemapperWhileItRuns) {
  const auto application = LastOwner::make();
  application->remapper = &remapper;
  application->watched = remapper;
  desktop.machine.applications.frontmost = application;
  const auto event = controlC();
  server.throughTaps(event.get());
  EXPECT_EQ(event->flags, kCGEventFlagMaskCommand);
  EXPECT_TRUE(application->wasHeld);
  EXPECT_TRUE(application->watched.expired());
  server.forgetProgram();
}

} // namespace
} // namespace tarnwick
