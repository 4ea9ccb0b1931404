/// What becomes of the program when the platform refuses or has nothing to give.
#include "tests/support/TestDesktop.hpp"

#include <algorithm>
#include <cstdio>
#include <map>

namespace desktop {
namespace {

/// A bundle with an update framework beside what every test's bundle has, so that all there is can fail.
void addUpdater(TestDesktop& desktop) {
  const auto contents = desktop.bundle / "Contents";
  writeFile(contents / "Info.plist", writeXml(PropertyList::Dictionary{
                                         {u"CFBundleIdentifier", u"app.tarnwick.Tarnwick"},
                                         {u"CFBundleShortVersionString", u"1.0.0"},
                                         {u"SUFeedURL", u"https://updates.example/feed.xml"},
                                         {u"SUPublicEDKey", u"c2lnbmVk"},
                                     }));
  std::filesystem::create_directories(contents / "Frameworks/Sparkle.framework");
  writeFile(contents / "Frameworks/Sparkle.framework/Sparkle", "SPUStandardUpdaterController");
  desktop.machine.mainBundle->open(desktop.bundle);
}

/// Everything that the program does, in one session; the application to exempt is the program's own bundle.
std::vector<Step> everything(const TestDesktop& desktop) {
  return {"launch\n click OK\n press ctrl+c\n show menu\n menu \"Check for Updates...\"\n menu Developer",
          "menu \"Settings…\"\n show window\n click \"Clipboard (Ctrl+C/V/X/A/Z)\"\n click \"About Tarnwick\"",
          "click \"Open Login Items\"\n click \"Choose App…\"\n choose \"" + desktop.bundle.string() +
              "\"\n click Remove 2\n resize 800 600\n close\n menu \"Settings…\"",
          "front Finder\n press f2\n press escape\n press forwarddelete\n click \"Move to Bin\"\n wait 1",
          "menu \"Disable Tarnwick\"\n menu \"Quit Tarnwick\"\n press ctrl+c"};
}

const std::string status = "status\timage\n";
const std::string named = "status\tTarnwick\n";
const std::string started = "updater\tstarted\n";
const std::string copied = keyLine("key\tEditor\tdown", "cmd+c");
const std::string untouched = keyLine("key\tEditor\tdown", "ctrl+c");
const std::string front = "front\tTarnwick\n";
const std::string terminate = "terminate\n";
const std::string posted = keyLine("post\tdown", "cmd+delete") + keyLine("post\tup", "cmd+delete");

struct Fault {
  const char* call;
  const char* session;
  std::string trace;
};

void PrintTo(const Fault& fault, std::ostream* stream) {
  *stream << fault.call;
}

class Faulty : public testing::TestWithParam<Fault> {};

TEST_P(Faulty, PlatformIsPutUpWith) {
  TestDesktop desktop;
  addUpdater(desktop);
  desktop.machine.faults.fail(GetParam().call);
  EXPECT_EQ(desktop.play({GetParam().session}), GetParam().trace);
}

const std::string launch = status + started;
const std::string noUpdates = status + "lost\tmenu \"Check for Updates...\"\n" + terminate;
const std::string shown = "window\tTarnwick Settings\t612\t695\n" + front;
const std::string swallowed = keyLine("swallowed\tdown", "forwarddelete");
const std::string asked = "alert\tMove selected item to Bin?\tThis will move the selected Finder item to Bin.\t"
                          "Move to Bin\tCancel\n";
const std::string noWindow = launch + front + "lost\tclose\n" + keyLine("key\tTarnwick\tdown", "ctrl+c") + terminate;
constexpr const char* update = "menu \"Check for Updates...\"";
constexpr const char* openAndClose = "menu \"Settings…\"\nclose\ndown ctrl+c";

INSTANTIATE_TEST_SUITE_P(
    Calls, Faulty,
    testing::Values(
        Fault{"CGEventTapCreate", "launch\nclick OK\ndown ctrl+c",
              launch +
                  "alert\tAccessibility Permission Required\tEnable Tarnwick in System Settings > Privacy & Security > "
                  "Accessibility.\tOK\nanswer\tOK\n" +
                  terminate + untouched},
        Fault{"CFMachPortCreateRunLoopSource", "down ctrl+c", launch + untouched + terminate},
        Fault{"NSApplication setActivationPolicy:", "down ctrl+c", launch + copied + terminate},
        Fault{"NSStatusBar statusItemWithLength:", "down ctrl+c\nmenu Settings…",
              started + copied + "lost\tmenu Settings…\n" + terminate},
        Fault{"NSStatusItem button", "down ctrl+c", "status\t-\n" + started + copied + terminate},
        Fault{"NSBundle URLForResource:withExtension:", "menu Settings…", named + started + shown + terminate},
        Fault{"NSImage initWithContentsOfURL:", "menu Settings…", named + started + shown + terminate},
        Fault{"NSBundle objectForInfoDictionaryKey:", update, noUpdates},
        Fault{"NSBundle privateFrameworksURL", update, noUpdates},
        Fault{"NSURL URLByAppendingPathComponent:", update, noUpdates},
        Fault{"NSBundle initWithURL:", update, noUpdates}, Fault{"NSBundle load", update, noUpdates},
        Fault{"SPUStandardUpdaterController initWithStartingUpdater:updaterDelegate:userDriverDelegate:", update,
              noUpdates},
        Fault{"SPUStandardUpdaterController checkForUpdates:", update, launch + terminate},
        Fault{"NSURL URLWithString:", "menu Developer", launch + terminate},
        Fault{"NSWorkspace openURL:", "menu Developer", launch + terminate},
        Fault{"NSWindow initWithContentRect:styleMask:backing:defer:", openAndClose, noWindow},
        Fault{"NSWindowController initWithWindow:", openAndClose, launch + "lost\tclose\n" + copied + terminate},
        Fault{"NSWindowController window", openAndClose, noWindow},
        Fault{"NSWindow contentView", "menu Settings…",
              launch + "window\tTarnwick Settings\t540\t695\n" + front + terminate},
        Fault{"NSWindow screen", "menu Settings…", launch + shown + terminate},
        Fault{"NSView layer", "menu Settings…", launch + shown + terminate},
        Fault{"NSSavePanel URL", "menu Settings…\nclick \"Choose App…\"\nchoose /\nshow defaults",
              launch + shown + "panel\tChoose Application to Exempt\nanswer\t/\ndefault\texemptBundleIDs\t-\n" +
                  terminate},
        Fault{"NSUserDefaults arrayForKey:", "down ctrl+c", launch + copied + terminate},
        Fault{"AXUIElementCreateSystemWide", "front Finder\ndown forwarddelete",
              launch + swallowed + asked + terminate},
        // Nobody looks whether the Finder came: the keys go to whoever is in front.
        Fault{"NSRunningApplication activateWithOptions:",
              "front Finder\ndown forwarddelete\nfront Editor\nclick \"Move to Bin\"\nwait 1",
              launch + swallowed + asked + "answer\tMove to Bin\n" + posted +
                  keyLine("key\tEditor\tdown", "cmd+delete") + keyLine("key\tEditor\tup", "cmd+delete") + terminate}));

/// The exempt applications that the session begins with and does not touch.
const PropertyList kept = PropertyList::Array{u"a.kept"};

void expectSurvived(TestDesktop& desktop, const std::string& trace) {
  EXPECT_EQ(std::ranges::count(desktop.entries, JournalEntry{"terminate"}), 1);
  EXPECT_EQ(trace.find("post") == std::string::npos, trace.find(posted) == std::string::npos) << "half a key press";
  const PropertyList* stored = desktop.machine.defaults->file->value(u"exemptBundleIDs");
  const auto* list = stored != nullptr ? stored->as<PropertyList::Array>() : nullptr;
  const bool isUnread = desktop.machine.faults.failed() == "NSUserDefaults arrayForKey:";
  EXPECT_TRUE(isUnread || (list != nullptr && std::ranges::count(*list, PropertyList(u"a.kept")) == 1)) << "lost";
}

TEST(Faults, AreSurvivedWhicheverCallFails) {
  std::map<std::string, long> failed;
  for (long nth = 1;; ++nth) {
    TestDesktop desktop;
    addUpdater(desktop);
    desktop.store(u"exemptBundleIDs", kept);
    desktop.machine.faults.failAny(nth);
    const std::string trace = desktop.play(everything(desktop));
    SCOPED_TRACE("call " + std::to_string(nth) + ", " + desktop.machine.faults.failed() + '\n' + trace);
    expectSurvived(desktop, trace);
    if (desktop.machine.faults.failed().empty()) break;
    ++failed[desktop.machine.faults.failed()];
  }
  long all = 0;
  for (const auto& [call, times] : failed)
    all += times;
  std::printf("%ld calls of %zu functions and messages failed in turn\n", all, failed.size());
  EXPECT_GT(failed.size(), 30U) << "calls no longer ask whether they are to fail";
}

} // namespace
} // namespace desktop
