#include "tests/support/TestDesktop.hpp"

namespace tarnwick {
namespace {

using namespace desktop;

enum class Framework { Missing, WithoutCode, Whole };

/// A launch and a choice of the menu entry, with these two values in the information dictionary; none are left out.
std::string launchWith(const std::optional<PropertyList>& feed, const std::optional<PropertyList>& key,
                       Framework framework = Framework::Whole) {
  TestDesktop desktop;
  PropertyList::Dictionary information{{u"CFBundleIdentifier", u"app.tarnwick.Tarnwick"}};
  if (feed) information[u"SUFeedURL"] = *feed;
  if (key) information[u"SUPublicEDKey"] = *key;
  writeFile(desktop.bundle / "Contents" / "Info.plist", writeXml(information));
  const auto folder = desktop.bundle / "Contents" / "Frameworks" / "Sparkle.framework";
  if (framework != Framework::Missing) std::filesystem::create_directories(folder);
  if (framework == Framework::Whole) writeFile(folder / "Sparkle", "SPUStandardUpdaterController");
  desktop.machine.mainBundle->open(desktop.bundle);
  return desktop.play(
      {"trust no\n taps allow\n launch\n click OK\n menu \"Check for Updates...\"", [&] {
         // The delegate's own way to it, with no menu between.
         perform<void>(desktop.machine.appKit.application->delegate, sel_registerName("checkForUpdates"));
         const MenuItem* const item = desktop.machine.appKit.statusMenu()->itemWithTitle("Check for Updates...");
         desktop.entries.push_back({item->target->isa->name, selectorText(item->action)});
       }});
}

const std::string status = "status\timage\n";
const std::string started = "updater\tstarted\n";
const std::string checked = "updater\tcheck\nupdater\tcheck\nSPUStandardUpdaterController\tcheckForUpdates:\n";
const std::string lost = "lost\t menu \"Check for Updates...\"\nAppDelegate\tcheckForUpdates\n";
const std::string launched = "prompt\nalert\tAccessibility Permission Required\tEnable Tarnwick in System Settings > "
                             "Privacy & Security > Accessibility.\tOK\nanswer\tOK\n";
const std::string terminate = "terminate\n";

const PropertyList feed = u"https://updates.example/feed.xml";
const PropertyList publicKey = u"c2lnbmVk";

TEST(Updates, StartBeforeTheAccessibilityCheckWhenConfigured) {
  const std::string expected = status + started + launched + checked + terminate;
  EXPECT_EQ(launchWith(feed, publicKey), expected);
  EXPECT_EQ(launchWith(u" ", u"replace_with"), expected) << "taken as they are";
  EXPECT_EQ(launchWith(u"not an address", u"REPLACE WITH"), expected) << "the framework judges them";
}

TEST(Updates, StayOutSilentlyWhenNotConfigured) {
  const std::string expected = status + launched + lost + terminate;
  const std::optional<PropertyList> none;
  const std::optional<PropertyList> useless[] = {none,
                                                 u"",
                                                 u"REPLACE_WITH",
                                                 u"REPLACE_WITH_KEY",
                                                 u"https://REPLACE_WITH.example/",
                                                 u"a REPLACE_WITH",
                                                 u"REPLACE_WITH\u0301",
                                                 PropertyList::Data{},
                                                 PropertyList(7),
                                                 true,
                                                 PropertyList::Array{},
                                                 PropertyList::Dictionary{}};
  for (const auto& value : useless) {
    EXPECT_EQ(launchWith(value, publicKey), expected);
    EXPECT_EQ(launchWith(feed, value), expected);
  }
}

TEST(Updates, StayOutSilentlyWithoutAFrameworkThatCanBeLoaded) {
  const std::string expected = status + launched + lost + terminate;
  EXPECT_EQ(launchWith(feed, publicKey, Framework::Missing), expected);
  EXPECT_EQ(launchWith(feed, publicKey, Framework::WithoutCode), expected);
}

} // namespace
} // namespace tarnwick
