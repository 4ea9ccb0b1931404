#include "tests/support/TestDesktop.hpp"

#include "app/main.hpp"
#include "platform/Application.hpp"

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
const std::string typedC = "key\tEditor\tdown\t0x08\t0x40000\n";
const std::string copied = "key\tEditor\tdown\t0x08\t0x100000\n";

/// What `show menu` answers with this title at the top.
std::string menuFacts(const std::string& toggle) {
  return "item\t" + toggle +
         "\tenabled\t-\n"
         "item\t-\n"
         "item\tSettings…\tenabled\t-\n"
         "item\t-\n"
         "item\tCheck for Updates...\tdisabled\t-\n"
         "item\t-\n"
         "item\tDeveloper\tenabled\t-\n"
         "item\t-\n"
         "item\tQuit Tarnwick\tenabled\tq\n";
}

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
    EXPECT_EQ(desktop.machine.appKit->application->activationPolicy, 1) << "no Dock icon";
  }
}

TEST(Launch, GoesOnWhenAccessIsGrantedUnderTheAlert) {
  TestDesktop desktop;
  EXPECT_EQ(desktop.play({"trust no", "launch", "down ctrl+c", "trust yes", "click OK", "down ctrl+c"}),
            status + prompt + permissionAlert + typedC + ok + copied + terminate);
}

TEST(Launch, EndsWithTheInputUnderAnOpenAlert) {
  TestDesktop desktop;
  EXPECT_EQ(desktop.play({"trust no", "launch"}), status + prompt + permissionAlert + permissionAlert + terminate);
}

TEST(Launch, ShowsTheNameWhereTheImageCannotBeHad) {
  const struct {
    const char* what;
    void (*damage)(const fs::path& image);
  } damages[] = {
      {"no image", [](const fs::path& image) { fs::remove(image); }},
      {"no resources", [](const fs::path& image) { fs::remove_all(image.parent_path()); }},
      {"no bundle", [](const fs::path& image) { fs::remove_all(image.parent_path().parent_path()); }},
      {"empty", [](const fs::path& image) { writeFile(image, ""); }},
      {"text", [](const fs::path& image) { writeFile(image, "no"); }},
      {"a folder", [](const fs::path& image) { fs::remove(image), fs::create_directory(image); }},
  };
  for (const auto& [what, damage] : damages) {
    TestDesktop desktop;
    damage(desktop.bundle / "Contents/Resources/MenuBarTemplate.png");
    desktop.machine.mainBundle->open(desktop.bundle);
    EXPECT_EQ(desktop.play({"show menu", "down ctrl+c"}),
              "status\tTarnwick\n" + menuFacts("Disable Tarnwick") + copied + terminate)
        << what;
  }
}

TEST(Launch, NeedsNoInformationDictionary) {
  const struct {
    const char* what;
    void (*damage)(const fs::path& file);
  } damages[] = {
      {"none", [](const fs::path& file) { fs::remove(file); }},
      {"empty", [](const fs::path& file) { writeFile(file, ""); }},
      {"no property list", [](const fs::path& file) { writeFile(file, "no"); }},
      {"no dictionary", [](const fs::path& file) { writeFile(file, "<plist><array/></plist>"); }},
      {"an identifier of another type",
       [](const fs::path& file) {
         writeFile(file, writeXml(PropertyList::Dictionary{{u"CFBundleIdentifier", 5}}));
       }},
      {"a folder", [](const fs::path& file) { fs::remove(file), fs::create_directory(file); }},
  };
  for (const auto& [what, damage] : damages) {
    TestDesktop desktop;
    damage(desktop.bundle / "Contents/Info.plist");
    desktop.machine.mainBundle->open(desktop.bundle);
    EXPECT_EQ(desktop.play({"down ctrl+c", "front Tarnwick", "down ctrl+c"}),
              status + copied + "key\tTarnwick\tdown\t0x08\t0x100000\n" + terminate)
        << what;
  }
}

TEST(Launch, MakesTheStatusItemAsThePlatformWantsIt) {
  TestDesktop desktop;
  desktop.play({"launch", [&] {
                  const auto& items = desktop.machine.appKit->statusItems;
                  ASSERT_EQ(items.size(), 1U);
                  EXPECT_EQ(items.front()->length, -2) << "square";
                  const StatusBarButton& button = *items.front()->button();
                  EXPECT_EQ(button.imagePosition, 1U) << "the image only";
                  EXPECT_EQ(textOf(button.title.get()), "");
                  EXPECT_TRUE(button.image->isTemplate);
                  EXPECT_EQ(button.image->size.width, 18);
                  EXPECT_EQ(button.image->size.height, 18);
                }});
}

TEST(Menu, SwitchesRemappingOffAndOn) {
  TestDesktop desktop;
  std::vector<Step> steps{"show menu"};
  std::string expected = status + menuFacts("Disable Tarnwick");
  for (int round = 0; round < 3; ++round) {
    steps.insert(steps.end(), {"menu \"Disable Tarnwick\"", "menu \"Disable Tarnwick\"", "down ctrl+c", "show menu",
                               [&] { EXPECT_TRUE(desktop.machine.server.installed().at(0)->listens()); },
                               "menu \"Enable Tarnwick\"", "down ctrl+c", "show menu"});
    expected += "lost\tmenu \"Disable Tarnwick\"\n" + typedC + menuFacts("Enable Tarnwick") + copied +
                menuFacts("Disable Tarnwick");
  }
  EXPECT_EQ(desktop.play(steps), expected + terminate);
}

TEST(Menu, IsWiredToTheDelegate) {
  constexpr const char* actions[] = {"toggleRemap", nullptr,         "openMappings", nullptr,  "checkForUpdates",
                                     nullptr,       "openDeveloper", nullptr,        "quitApp"};
  TestDesktop desktop;
  desktop.play({"launch", [&] {
                  const auto& items = desktop.machine.appKit->statusMenu()->items;
                  ASSERT_EQ(items.size(), std::size(actions));
                  for (std::size_t each = 0; each < items.size(); ++each) {
                    ASSERT_EQ(items[each]->isSeparator, actions[each] == nullptr) << each;
                    if (items[each]->isSeparator) continue;
                    EXPECT_EQ(items[each]->target, delegate) << each;
                    EXPECT_STREQ(selectorText(items[each]->action), actions[each]);
                    EXPECT_TRUE(respondsTo(delegate, actions[each])) << actions[each];
                  }
                }});
}

TEST(Menu, ComesOnceTheProgramIsOutOfTheDock) {
  TestDesktop desktop;
  constexpr NSInteger unasked = -1;
  NSInteger policy = unasked;
  desktop.machine.journal = [&](const Fact& fact) {
    if (fact.front() == "status") policy = desktop.machine.appKit->application->activationPolicy;
  };
  desktop.play({"launch"});
  EXPECT_EQ(policy, platform::NSApplicationActivationPolicyAccessory);
}

TEST(Menu, OpensTheDevelopersWebsite) {
  TestDesktop desktop;
  desktop.play({"menu Developer"});
  ASSERT_EQ(desktop.facts.at(1).at(0), "open");
  const std::string& address = desktop.facts[1][1];
  EXPECT_EQ(address.rfind("https://", 0), 0U) << address;
  EXPECT_EQ(address.find_first_of("/?#", 8), std::string::npos) << address << " is not the root of its site";
}

TEST(Quitting, TakesTheTapDownFirst) {
  for (const char* way : {"menu \"Quit Tarnwick\"", "quit", "# the end of the input"}) {
    TestDesktop desktop;
    long tapsAtTheEnd = -1;
    desktop.machine.journal = [&](const Fact& fact) {
      if (fact.front() == "terminate") tapsAtTheEnd = liveObjects("CFMachPort") + liveObjects("CFRunLoopSource");
      desktop.facts.push_back(fact);
    };
    desktop.play({"launch", way});
    EXPECT_EQ(tapsAtTheEnd, 0) << way;
    EXPECT_EQ(desktop.trace(), status + terminate) << way;
  }
}

TEST(Quitting, LeavesKeysAsTypedAndNothingToAskFor) {
  TestDesktop desktop;
  EXPECT_EQ(desktop.play({"quit", "down ctrl+c", "menu Developer", "show menu", "quit", "tap timeout"}),
            status + terminate + typedC + "lost\tmenu Developer\nlost\tshow menu\nlost\tquit\nlost\ttap timeout\n");
}

} // namespace
} // namespace tarnwick
