#include "tests/support/TestDesktop.hpp"

#include "platform/Application.hpp"
#include "platform/StatusBar.hpp"

namespace tarnwick {
namespace {

using namespace desktop;
namespace fs = std::filesystem;

const std::string terminate = "terminate\n";
const std::string copied = keyLine("key\tEditor\tdown", "cmd+c");

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

TEST(Launch, PutsUpWithADamagedBundle) {
  for (const auto& [what, damage] : damages) {
    for (const char* file : {"Resources/MenuBarTemplate.png", "Info.plist"}) {
      TestDesktop desktop;
      damage(desktop.bundle / "Contents" / file);
      desktop.machine.mainBundle->open(desktop.bundle);
      const bool isKnown = file[0] == 'R'; // by its identifier, so that keys in its own windows stay as typed
      const std::string trace = desktop.play({"down ctrl+c\n front Tarnwick\n down ctrl+c"});
      EXPECT_TRUE(trace.ends_with(copied + keyLine("key\tTarnwick\tdown", isKnown ? "ctrl+c" : "cmd+c") + terminate))
          << file << ": " << what << '\n'
          << trace;
      EXPECT_TRUE(!isKnown || trace.starts_with("status\tTarnwick\n")) << what << '\n' << trace;
    }
  }
}

TEST(Launch, MakesStatusItemAndAlertAsThePlatformWantsThem) {
  TestDesktop desktop;
  desktop.play({"trust no\n launch", [&] {
                  EXPECT_EQ(desktop.machine.appKit.frontAlert()->style, Alert().style) << "the platform's own";
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
