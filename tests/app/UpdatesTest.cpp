#include "tests/support/TestDesktop.hpp"

namespace tarnwick {
namespace {

using namespace desktop;

enum class Framework { Missing, WithoutCode, Whole };

// That an updater starts before the Accessibility check, a session tells; what counts as configured, a transcript.

/// A launch and a choice of the menu entry, with these two values in the information dictionary; none are left out.
std::string launchWith(const std::optional<PropertyList>& feed, const std::optional<PropertyList>& key,
                       Framework framework = Framework::Whole) {
  TestDesktop desktop;
  PropertyList::Dictionary information;
  if (feed) information[u"SUFeedURL"] = *feed;
  if (key) information[u"SUPublicEDKey"] = *key;
  writeFile(desktop.bundle / "Contents" / "Info.plist", writeXml(information));
  const auto folder = desktop.bundle / "Contents" / "Frameworks" / "Sparkle.framework";
  if (framework != Framework::Missing) std::filesystem::create_directories(folder);
  if (framework == Framework::Whole) writeFile(folder / "Sparkle", "SPUStandardUpdaterController");
  desktop.machine.mainBundle->open(desktop.bundle);
  return desktop.play({"menu \"Check for Updates...\"", [&] {
                         // The delegate's own way to it, with no menu between.
                         perform<void>(desktop.machine.appKit.application->delegate,
                                       sel_registerName("checkForUpdates"));
                         const auto& item = *desktop.machine.appKit.statusMenu()->itemWithTitle("Check for Updates...");
                         desktop.entries.push_back({item.target->isa->name, selectorText(item.action)});
                       }});
}

const std::string updated = "status\timage\nupdater\tstarted\nupdater\tcheck\nupdater\tcheck\n"
                            "SPUStandardUpdaterController\tcheckForUpdates:\nterminate\n";
const std::string stayedOut = "status\timage\nlost\tmenu \"Check for Updates...\"\n"
                              "AppDelegate\tcheckForUpdates\nterminate\n";
const PropertyList feed = u"https://updates.example/feed.xml";
const PropertyList publicKey = u"c2lnbmVk";

TEST(Updates, StartWhenConfiguredAndElseStayOutSilently) {
  EXPECT_EQ(launchWith(feed, publicKey), updated);
  EXPECT_EQ(launchWith(feed, std::nullopt), stayedOut);
  EXPECT_EQ(launchWith(std::nullopt, publicKey), stayedOut);
  EXPECT_EQ(launchWith(feed, publicKey, Framework::Missing), stayedOut);
  EXPECT_EQ(launchWith(feed, publicKey, Framework::WithoutCode), stayedOut);
}

} // namespace
} // namespace tarnwick
