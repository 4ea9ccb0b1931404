#include "tests/support/TestDesktop.hpp"

#include "platform/Application.hpp"
#include "platform/StatusBar.hpp"

namespace tarnwick {
namespace {

using namespace desktop;
namespace fs = std::filesystem;

const std::string status = "status\timage\n";
const std::string prompt = "prompt\n";
const std::string permissionAlert = "alert\tAccessibility Permission Required\tEnable Tarnwick in System Settings > "
                                    "Privacy & Security > Accessibility.\tOK\n";
const std::string ok = "answer\tOK\n";
const std::string terminate = "terminate\n";
const std::string typedC = keyLine("key\tEditor\tdown", "ctrl+c");
const std::string copied = keyLine("key\tEditor\tdown", "cmd+c");

TEST(Launch, DependsOnTrustAndOnTheTap) {
  const struct {
    const char* setting;
    std::string launched;
    std::string received;
  } cases[] = {
      {"trust yes\n taps allow", status, copied + terminate},
      {"trust yes\n taps refuse", status + permissionAlert + ok + terminate, typedC},
      {"trust no\n taps allow", status + prompt + permissionAlert + ok, copied + terminate},
      {"trust no\n taps refuse", status + prompt + permissionAlert + ok + permissionAlert + ok + terminate, typedC},
  };
  const std::string clicksNeeded[] = {"", "click OK", "click OK", "click OK\n click OK"};
  for (std::size_t each = 0; each < std::size(cases); ++each) {
    const auto& [setting, launched, received] = cases[each];
    TestDesktop desktop;
    EXPECT_EQ(desktop.play({setting, "launch", clicksNeeded[each], "down ctrl+c"}), launched + received) << setting;
  }
}

TEST(Launch, TriesForTheTapOnceWhenTheFirstAlertIsAnswered) {
  const std::pair<const char*, std::string> cases[] = {
      {"trust yes\n click OK\n down ctrl+c", typedC + ok + copied + terminate},
      {"click OK\n trust yes\n click OK\n down ctrl+c", typedC + ok + permissionAlert + ok + terminate + typedC},
  };
  for (const auto& [granted, trace] : cases) {
    TestDesktop desktop;
    EXPECT_EQ(desktop.play({"trust no\n launch\n down ctrl+c", granted}), status + prompt + permissionAlert + trace);
  }
}

TEST(Launch, IsTheOnlyTimeThatTrustIsAskedFor) {
  TestDesktop desktop;
  EXPECT_EQ(desktop.play({"launch\n trust no\n menu \"Disable Tarnwick\"\n menu \"Enable Tarnwick\"\n down ctrl+c"}),
            status + copied + terminate);
}

TEST(Launch, ShowsAPlainAlertOverACompleteMenu) {
  TestDesktop desktop;
  desktop.play({"trust no\n launch", [&] {
                  const auto& appKit = desktop.machine.appKit;
                  EXPECT_EQ(appKit.frontAlert()->style, Alert().style) << "the platform's own";
                  EXPECT_TRUE(appKit.statusMenu()->itemWithTitle("Disable Tarnwick")->enabled);
                }});
}

TEST(Launch, EndsWithTheInputUnderAnOpenAlert) {
  TestDesktop desktop;
  EXPECT_EQ(desktop.play({"trust no", "launch"}), status + prompt + permissionAlert + permissionAlert + terminate);
}

/// Ways in which a file of the bundle may be of no use.
const std::pair<const char*, void (*)(const fs::path&)> damages[] = {
    {"none", [](const fs::path& file) { fs::remove(file); }},
    {"no folder", [](const fs::path& file) { fs::remove_all(file.parent_path()); }},
    {"empty", [](const fs::path& file) { writeFile(file, ""); }},
    {"text", [](const fs::path& file) { writeFile(file, "no"); }},
    {"another property list", [](const fs::path& file) { writeFile(file, "<plist><array/></plist>"); }},
    {"an identifier of another type",
     [](const fs::path& file) {
       writeFile(file, writeXml(PropertyList::Dictionary{{u"CFBundleIdentifier", 5}}));
     }},
    {"a folder", [](const fs::path& file) { fs::remove(file), fs::create_directory(file); }},
};

TEST(Launch, ShowsTheNameWhereTheImageCannotBeHad) {
  for (const auto& [what, damage] : damages) {
    TestDesktop desktop;
    damage(desktop.bundle / "Contents/Resources/MenuBarTemplate.png");
    EXPECT_EQ(desktop.play({"down ctrl+c"}), "status\tTarnwick\n" + copied + terminate) << what;
  }
}

TEST(Launch, NeedsNoInformationDictionary) {
  for (const auto& [what, damage] : damages) {
    TestDesktop desktop;
    damage(desktop.bundle / "Contents/Info.plist");
    desktop.machine.mainBundle->open(desktop.bundle);
    const std::string trace = desktop.play({"down ctrl+c", "front Tarnwick", "down ctrl+c"});
    EXPECT_TRUE(trace.ends_with(copied + keyLine("key\tTarnwick\tdown", "cmd+c") + terminate)) << what << trace;
  }
}

TEST(Launch, MakesTheStatusItemAsThePlatformWantsIt) {
  TestDesktop desktop;
  desktop.play({"launch", [&] {
                  const auto& items = desktop.machine.appKit.statusItems;
                  ASSERT_EQ(items.size(), 1U);
                  EXPECT_EQ(items.front()->length, platform::NSSquareStatusItemLength);
                  const StatusBarButton& button = *items.front()->button();
                  EXPECT_EQ(button.imagePosition, platform::NSImageOnly);
                  EXPECT_TRUE(button.title && textOf(button.title.get()).empty()) << "set, to nothing";
                  EXPECT_TRUE(button.image->isTemplate);
                  EXPECT_EQ(button.image->size.width, 18);
                  EXPECT_EQ(button.image->size.height, 18);
                }});
}

TEST(Program, IsOutOfTheDockBeforeItsMenuComesAndHasNoTapWhenItQuits) {
  for (const char* way : {"menu \"Quit Tarnwick\"", "quit", "# the end of the input"}) {
    TestDesktop desktop;
    NSInteger policy = -1;
    long tapsAtTheEnd = -1;
    desktop.machine.journal.reader = [&](const JournalEntry& entry) {
      if (entry.front() == "status") policy = desktop.machine.appKit.application->activationPolicy;
      if (entry.front() == "terminate") tapsAtTheEnd = liveObjects("CFMachPort") + liveObjects("CFRunLoopSource");
    };
    desktop.play({"launch", way});
    EXPECT_EQ(policy, platform::NSApplicationActivationPolicyAccessory);
    EXPECT_EQ(tapsAtTheEnd, 0) << way;
  }
}

} // namespace
} // namespace tarnwick
