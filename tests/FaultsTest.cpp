/// What becomes of the program when the platform refuses or has nothing to give.
#include "tests/support/TestDesktop.hpp"

#include <algorithm>
#include <cstdio>
#include <map>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

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

/// Everything that the program does but quitting, in one session; the application to exempt is its own bundle.
std::vector<Step> everything(const TestDesktop& desktop) {
  return {
      "launch\n click OK\n front none\n press forwarddelete\n front Editor\n press ctrl+c\n show menu",
      "menu \"Check for Updates...\"\n menu Developer",
      "menu \"Settings…\"\n show window\n click \"Clipboard (Ctrl+C/V/X/A/Z)\"\n click \"About Tarnwick\"",
      "click \"Open Login Items\"\n click \"Choose App…\"\n choose \"" + desktop.bundle.string() +
          "\"\n click Remove 2\n resize 800 600\n close\n menu \"Settings…\"",
      "front Finder\n press f2\n press escape\n press forwarddelete\n click \"Move to Bin\"\n click Cancel\n wait 1",
      "menu \"Disable Tarnwick\"\n press ctrl+c\n menu \"Enable Tarnwick\""};
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

const char* const afterwards = "front Finder\n press forwarddelete\n press f2\n click Cancel\n front Editor\n"
                               "press ctrl+b";

/// What comes of it while the program has the keyboard, and while it has not.
const std::string remapped = keyLine("swallowed\tdown", "forwarddelete") + keyLine("swallowed\tup", "forwarddelete") +
                             "alert\tMove selected item to Bin?\tThis will move the selected Finder item to Bin.\t"
                             "Move to Bin\tCancel\n" +
                             keyLine("key\tFinder\tdown", "return") + keyLine("key\tFinder\tup", "return") +
                             "answer\tCancel\n" + keyLine("key\tEditor\tdown", "cmd+b") +
                             keyLine("key\tEditor\tup", "cmd+b") + "terminate\n";
const std::string asTyped = keyLine("key\tFinder\tdown", "forwarddelete") +
                            keyLine("key\tFinder\tup", "forwarddelete") + keyLine("key\tFinder\tdown", "f2") +
                            keyLine("key\tFinder\tup", "f2") + "lost\t click Cancel\n" +
                            keyLine("key\tEditor\tdown", "ctrl+b") + keyLine("key\tEditor\tup", "ctrl+b");

/// What is to come of it after one failure of that call, in a session with that trace.
std::string expectedAfter(const std::string& failed, const std::string& before) {
  if (failed == "CGEventTapCreate") return asTyped; // and the program has quit
  if (failed == "AppDelegate alloc" || failed == "CFMachPortCreateRunLoopSource") return asTyped + "terminate\n";
  const auto has = [&](const char* line) { return before.find(line) != std::string::npos; };
  // The entry's title got lost when it was disabled.
  const bool cannotBeEnabled = has("lost\t menu \"Enable Tarnwick\"") && !has("lost\tmenu \"Disable Tarnwick\"");
  return cannotBeEnabled ? asTyped + "terminate\n" : remapped;
}

/// Plays everything while the `nth` fallible call fails; the name of that call, empty when there were not so many.
std::string survive(long nth, Start start) {
  TestDesktop desktop(start);
  addUpdater(desktop);
  desktop.store(u"exemptBundleIDs", kept);
  Faults& faults = desktop.machine.faults;
  faults.failAny(nth);
  std::string failed;
  std::string before;
  auto steps = everything(desktop);
  steps.emplace_back([&] {
    failed = faults.failed();
    faults.failAny(-1);
    before = desktop.trace();
  });
  steps.emplace_back(afterwards);
  const std::string trace = desktop.play(steps);

  SCOPED_TRACE("call " + std::to_string(nth) + ", " + failed + '\n' + trace);
  EXPECT_EQ(trace.substr(before.size()), expectedAfter(failed, before));
  EXPECT_NE(trace.find(keyLine("key\t-\tdown", "forwarddelete")), std::string::npos)
      << "nobody in front is not the Finder";
  EXPECT_EQ(std::ranges::count(desktop.entries, JournalEntry{"terminate"}), 1);
  EXPECT_EQ(trace.find("post") == std::string::npos, trace.find(posted) == std::string::npos) << "half a key press";
  const PropertyList* stored = desktop.machine.defaults->file->value(u"exemptBundleIDs");
  const auto* list = stored != nullptr ? stored->as<PropertyList::Array>() : nullptr;
  const bool isUnread = failed == "NSUserDefaults arrayForKey:";
  EXPECT_TRUE(isUnread || (list != nullptr && std::ranges::count(*list, PropertyList(u"a.kept")) == 1)) << "lost";
  return failed;
}

TEST(Faults, AreSurvivedWhicheverCallFails) {
  std::map<std::string, long> failed;
  long nth = 1;
  for (std::string name; !(name = survive(nth, Start::Warm)).empty(); ++nth)
    ++failed[name];
  std::printf("%ld calls of %zu functions and messages failed in turn\n", nth - 1, failed.size());
  EXPECT_GT(failed.size(), 30U) << "calls no longer ask whether they are to fail";
}

/// Each in a process of its own, in which nothing was made yet that is made once.
void surviveInNewProcesses() {
  for (long nth = 1;; ++nth) {
    const pid_t child = ::fork();
    if (child == 0) {
      const bool isOver = survive(nth, Start::Cold).empty();
      const auto& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
      for (int part = 0; part < result.total_part_count(); ++part)
        std::fputs(result.GetTestPartResult(part).message(), stderr);
      ::_exit(isOver ? 2 : result.Failed());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 2) std::exit(0);
    if (status != 0) std::exit(1);
  }
}

TEST(FaultsDeathTest, AreSurvivedWhenSomethingIsMadeForTheFirstTime) {
  GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process that starts with this test
  EXPECT_EXIT(surviveInNewProcesses(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace desktop
