/// What becomes of the program when the platform refuses or has nothing to give.
#include "tests/support/TestDesktop.hpp"

#include <algorithm>
#include <cstdio>
#include <map>
#include <sstream>

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

struct Fault {
  std::string call;
  std::string session;
  std::string trace;
};

/// The rows of faults.txt.
std::vector<Fault> faults() {
  std::istringstream rows(contentsOf(TARNWICK_SOURCE_DIR "/tests/faults.txt"));
  std::vector<Fault> found;
  bool isNew = true;
  for (std::string line; std::getline(rows, line);) {
    if (line.starts_with('#')) continue;
    if (isNew && !line.empty()) {
      found.push_back({line, "", ""});
    } else if (!line.empty()) {
      const bool isTyped = line.starts_with("  ");
      (isTyped ? found.back().session : found.back().trace) += line.substr(isTyped ? 2 : 0) + '\n';
    }
    isNew = line.empty();
  }
  return found;
}

TEST(Faults, ArePutUpWith) {
  for (const Fault& fault : faults()) {
    TestDesktop desktop;
    addUpdater(desktop);
    desktop.machine.faults.fail(fault.call);
    EXPECT_EQ(desktop.play({fault.session}), fault.trace) << fault.call;
  }
}

const std::string posted = keyLine("post\tdown", "cmd+delete") + keyLine("post\tup", "cmd+delete");

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
