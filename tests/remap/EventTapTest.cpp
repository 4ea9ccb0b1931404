#include "tests/support/RemapperTest.hpp"

namespace tarnwick {
namespace {

using desktop::liveObjects;

class EventTapTest : public RemapperTest {
protected:
  desktop::WindowServer& server = desktop.machine.server;

  /// What the callback answers when the window server hands it this.
  bool handsBackUnchanged(CGEventType type, void* userInfo) {
    const auto event = desktop::create<desktop::Event>();
    event->code = ctrlC.code;
    event->flags = ctrlC.flags;
    const auto reference = reinterpret_cast<CGEventRef>(static_cast<id>(event.get()));
    return tap().callback(nullptr, type, reference, userInfo) == reference && event->code == ctrlC.code &&
           event->flags == ctrlC.flags;
  }
};

TEST_F(EventTapTest, StandsAtTheHeadOfTheSessionsKeyEvents) {
  remapper->stop();
  const auto passive = [](CGEventTapProxy, CGEventType, CGEventRef event, void*) { return event; };
  const platform::CF<CFMachPortRef> other(
      platform::adopt,
      CGEventTapCreate(kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionDefault, 0xc00, passive, nullptr));
  ASSERT_TRUE(remapper->start());
  ASSERT_EQ(server.installed().size(), 2U);
  EXPECT_EQ(tap().userInfo, remapper.get());
  EXPECT_EQ(tap().location, kCGSessionEventTap);
  EXPECT_EQ(tap().mask, 0xc00U) << "key-down and key-up, and nothing else";
}

TEST_F(EventTapTest, IsGoneAfterStop) {
  {
    const auto kept = desktop::shared(&tap());
    EXPECT_EQ(kept->asked, true);
    remapper->stop();
    EXPECT_EQ(kept->asked, false);
    EXPECT_FALSE(kept->scheduled);
  }
  for (int times = 0; times < 2; ++times) {
    remapper->stop();
    EXPECT_EQ(liveObjects("CFMachPort") + liveObjects("CFRunLoopSource"), 0);
    EXPECT_EQ(press(ctrlC), ctrlC);
  }
  ASSERT_TRUE(remapper->start());
  EXPECT_EQ(press(ctrlC), cmdC);
}

TEST_F(EventTapTest, MayBeRefused) {
  remapper->stop();
  server.grant = desktop::TapGrant::Refuse;
  EXPECT_FALSE(remapper->start());
  server.grant = desktop::TapGrant::Auto;
  desktop.machine.trusted = false;
  EXPECT_FALSE(remapper->start());
  EXPECT_EQ(liveObjects("CFMachPort"), 0);
  remapper->stop();
  EXPECT_EQ(press(ctrlC), ctrlC);

  desktop.machine.trusted = true;
  EXPECT_TRUE(remapper->start());
  desktop.machine.trusted = false;
  EXPECT_EQ(press(ctrlC), cmdC) << "a live tap outlasts the trust";
}

TEST_F(EventTapTest, SeesNothingWithoutARunLoopSource) {
  remapper->stop();
  desktop.machine.faults.runLoopSource = true;
  EXPECT_TRUE(remapper->start());
  EXPECT_FALSE(tap().scheduled);
  EXPECT_EQ(tap().asked, std::nullopt) << "what is on no run loop is not enabled either";
  EXPECT_EQ(press(ctrlC), ctrlC);
  remapper->stop();
  EXPECT_EQ(liveObjects("CFMachPort"), 0);
}

TEST_F(EventTapTest, StaysDisabledOnceTheSystemHasDisabledIt) {
  for (const CGEventType notification : {kCGEventTapDisabledByTimeout, kCGEventTapDisabledByUserInput}) {
    EXPECT_TRUE(handsBackUnchanged(notification, remapper.get()));
    EXPECT_TRUE(server.disableTaps(notification));
    EXPECT_FALSE(tap().enabled);
    EXPECT_EQ(press(ctrlC), ctrlC);
    relaunch();
    EXPECT_EQ(press(ctrlC), cmdC);
  }
}

TEST_F(EventTapTest, HandsBackWhatIsNotItsBusiness) {
  EXPECT_TRUE(handsBackUnchanged(kCGEventKeyDown, nullptr));
  constexpr std::uint32_t leftMouseDown = 1;
  constexpr std::uint32_t flagsChanged = 12;
  for (const std::uint32_t type : {0U, leftMouseDown, 9U, flagsChanged, 0x8000000aU}) {
    EXPECT_TRUE(handsBackUnchanged(static_cast<CGEventType>(type), remapper.get())) << type;
  }
  EXPECT_EQ(desktop.machine.queries.frontmost, 0);
}

TEST_F(EventTapTest, DoesNotOwnTheRemapper) {
  const std::weak_ptr<KeyRemapper> watched = remapper;
  remapper.reset();
  EXPECT_TRUE(watched.expired());
  EXPECT_TRUE(tap().listens()) << "taking the tap down is left to stop()";
  server.forgetProgram();
}

/// An application that lets go of the remapper when asked for its identifier: in the middle of a callback.
struct LastOwner : desktop::RunningApplication {
  std::shared_ptr<KeyRemapper>* remapper = nullptr;
  std::weak_ptr<KeyRemapper> watched;
  bool wasHeld = false;

  desktop::String* bundleIdentifier() {
    remapper->reset();
    wasHeld = !watched.expired();
    return identifier.get();
  }
  static desktop::Ref<LastOwner> make() {
    [[maybe_unused]] static const auto registered = desktop::NativeClass<LastOwner>("LastOwner", "NSRunningApplication")
                                                        .method<"bundleIdentifier", &LastOwner::bundleIdentifier>();
    return desktop::create<LastOwner>();
  }
};

TEST_F(EventTapTest, HoldsTheRemapperWhileItRuns) {
  const auto application = LastOwner::make();
  application->identifier = desktop::string(u"com.example.last");
  application->remapper = &remapper;
  application->watched = remapper;
  desktop.machine.frontmost = application;
  EXPECT_EQ(send(kCGEventKeyDown, ctrlC).key, cmdC);
  EXPECT_TRUE(application->wasHeld);
  EXPECT_TRUE(application->watched.expired());
  server.forgetProgram();
}

} // namespace
} // namespace tarnwick
