#include "settings/MappingsWindowController.hpp"

#include "desktop/session/WindowCommands.hpp"
#include "tests/support/RemapperTest.hpp"

namespace tarnwick {
namespace {

using namespace std::string_literals;
using desktop::PropertyList;

/// The window on its own, without the application around it.
class SettingsWindowTest : public RemapperTest {
protected:
  desktop::Desktop& machine = desktop.machine;
  platform::AutoreleasePool pool;
  platform::NSWindowController controller;

  void SetUp() override {
    RemapperTest::SetUp();
    machine.tarnwick = desktop::shared(&machine.start("Tarnwick", ""));
  }
  void open() {
    if (!controller) controller = MappingsWindowController::make(remapper);
    platform::send<"show">(controller);
  }
  /// What the window shows, from top to bottom.
  std::string shown() {
    desktop.facts.clear();
    EXPECT_TRUE(desktop::showWindow(machine));
    return desktop.trace();
  }
  desktop::Window& window() { return *desktop::as<desktop::Window>(controller.window().object()); }
  /// The window's first view of that class; there must be one.
  template <class Kind> Kind& first() {
    Kind* found = nullptr;
    desktop::forEachView(*window().contentView(), [&](desktop::View& view) {
      if (found == nullptr) found = desktop::ifIs<Kind>(&view);
    });
    return *found;
  }
  bool click(const char* title, std::uint64_t row = 1) { return desktop::clickInWindow(machine, title, row); }

  std::vector<bool> flags() const {
    std::vector<bool> values;
    for (const Switch& each : switches)
      values.push_back(remapper.get()->*each.flag);
    return values;
  }
};

TEST_F(SettingsWindowTest, EachCheckboxSwitchesItsOwnFamilyAndNoOther) {
  open();
  for (std::size_t each = 0; each < std::size(switches); ++each) {
    std::vector<bool> expected(std::size(switches), true);
    EXPECT_EQ(flags(), expected);
    ASSERT_TRUE(click(switches[each].title));
    expected[each] = false;
    EXPECT_EQ(flags(), expected) << switches[each].title;
    ASSERT_TRUE(click(switches[each].title));
  }
  EXPECT_TRUE(remapper->enabled) << "the master switch has no checkbox";
}

TEST_F(SettingsWindowTest, ShowsEachSwitchAsItStandsWhenItIsShown) {
  for (const Switch& off : switches) {
    remapper.get()->*off.flag = false;
    open();
    const std::string trace = shown();
    for (const Switch& each : switches) {
      const std::string line = "checkbox\t"s + each.title + (each.flag == off.flag ? "\toff\n" : "\ton\n");
      EXPECT_NE(trace.find(line), std::string::npos) << line << trace;
    }
    remapper.get()->*off.flag = true;
  }
}

TEST_F(SettingsWindowTest, IgnoresAStrangeSenderHoweverAlike) {
  open();
  remapper->mapSave = false; // behind the checkbox's back
  const auto stranger = platform::NSButton::checkboxWithTitle(platform::NSString::utf8("Save (Ctrl+S)"), nullptr,
                                                              platform::selectorNamed<"toggleMapping:">());
  platform::send<"toggleMapping:">(controller, stranger);
  platform::send<"toggleMapping:">(controller, nullptr);
  platform::send<"removeExemption:">(controller, stranger);
  EXPECT_EQ(machine.defaults->file->value(u"exemptBundleIDs"), nullptr) << "nothing was saved";
  EXPECT_FALSE(remapper->mapSave);
  EXPECT_TRUE(click("Save (Ctrl+S)"));
  EXPECT_FALSE(remapper->mapSave) << "the checkbox says off";
  remapper->mapSave = true;
  EXPECT_EQ(flags(), std::vector<bool>(std::size(switches), true));
}

TEST_F(SettingsWindowTest, OpensAddressesFromItsLinks) {
  open();
  desktop.facts.clear();
  EXPECT_TRUE(click("About Tarnwick") && click("Open Login Items"));
  EXPECT_EQ(desktop.trace(), "open\thttps://tarnwick.example/about\n"
                             "open\tx-apple.systempreferences:com.apple.LoginItems-Settings.extension\n");
}

TEST_F(SettingsWindowTest, ListsExemptionsInOrderAndKeepsUpWithThem) {
  const auto exempt = [&](const char* bundleID) { remapper->addExemptBundleID(platform::NSString::utf8(bundleID)); };
  const auto rows = [&] {
    const std::string trace = shown();
    const auto begin = trace.find("button\tChoose App…\n");
    return trace.substr(begin, trace.find("separator", begin) - begin);
  };
  const std::string choose = "button\tChoose App…\n";
  open();
  EXPECT_EQ(rows(), choose + "label\tNo exempt apps yet.\n");
  for (const char* bundleID : {"org.b", "com.Z", "com.a"})
    exempt(bundleID);
  open();
  EXPECT_EQ(rows(), choose + "label\tcom.Z\nbutton\tRemove\nlabel\tcom.a\nbutton\tRemove\nlabel\torg.b\nbutton\t"
                             "Remove\n");
  EXPECT_TRUE(click("Remove", 2));
  EXPECT_EQ(rows(), choose + "label\tcom.Z\nbutton\tRemove\nlabel\torg.b\nbutton\tRemove\n");
  EXPECT_TRUE(click("Remove") && click("Remove"));
  EXPECT_EQ(rows(), choose + "label\tNo exempt apps yet.\n");
}

TEST_F(SettingsWindowTest, TellsTheVersionOnlyWhereItIsAText) {
  const struct {
    std::optional<PropertyList> version;
    std::string label;
  } cases[] = {{u"2.1", "Version 2.1"}, {u"", "Version "}, {7, "Version Unknown"}, {std::nullopt, "Version Unknown"}};
  for (const auto& [version, label] : cases) {
    PropertyList::Dictionary information;
    if (version) information[u"CFBundleShortVersionString"] = *version;
    desktop::writeFile(desktop.bundle / "Contents" / "Info.plist", writeXml(information));
    machine.mainBundle->open(desktop.bundle);
    controller = {};
    open();
    EXPECT_TRUE(shown().ends_with("label\t" + label + "\n")) << label;
  }
}

TEST_F(SettingsWindowTest, OpensWithoutItsIconAndWithABrokenOne) {
  const auto icon = desktop.bundle / "Contents" / "Resources" / "AppIcon.icns";
  desktop::writeFile(icon, "no image");
  open();
  EXPECT_FALSE(first<desktop::ImageView>().image) << "a broken one";
  std::filesystem::remove(icon);
  controller = {};
  open();
  EXPECT_TRUE(first<desktop::ImageView>().image) << "the platform's own instead";
}

TEST_F(SettingsWindowTest, HasItsDefaultSizeAndContentBeforeItIsShown) {
  controller = MappingsWindowController::make(remapper);
  EXPECT_EQ(window().contentSize().width, 540);
  EXPECT_EQ(window().contentSize().height, 780);
  EXPECT_GT(first<desktop::ScrollView>().document->frame.size.height, 780);
}

TEST_F(SettingsWindowTest, IsCentredEachTimeBeforeItIsShown) {
  std::vector<double> shownAt;
  machine.journal = [&](const desktop::Fact& fact) {
    if (fact.front() == "window") shownAt.push_back(window().frame.origin.x);
  };
  open();
  const double centred = (machine.screen->width - window().frame.size.width) / 2;
  window().frame.origin = {0, 0};
  open();
  EXPECT_EQ(shownAt, (std::vector{centred, centred}));
}

TEST_F(SettingsWindowTest, MeasuresItsDocumentWheneverTheListOrTheWindowChanges) {
  for (const char* each : {"org.a", "org.b"})
    remapper->addExemptBundleID(platform::NSString::utf8(each));
  open();
  const auto height = [&] { return first<desktop::ScrollView>().document->frame.size.height; };
  const double two = height();
  EXPECT_TRUE(click("Remove"));
  const double one = height();
  EXPECT_EQ(one, two - 26);
  EXPECT_TRUE(click("Remove"));
  EXPECT_EQ(height(), one) << "an emptied list waits for the next time the window is shown";
  open();
  const double wide = height();
  EXPECT_LT(wide, one);
  EXPECT_TRUE(window().resize({460, 560}));
  EXPECT_EQ(height(), wide + 16) << "a note takes another line";
  EXPECT_TRUE(window().resize({460, 2000}));
  EXPECT_EQ(height(), 2000) << "as high as the window";
  EXPECT_TRUE(window().resize({612, 560}));
  EXPECT_EQ(height(), wide);
}

TEST_F(SettingsWindowTest, ScrollsOnlyUpAndDown) {
  open();
  const auto& scroll = first<desktop::ScrollView>();
  EXPECT_TRUE(scroll.hasVerticalScroller && scroll.autohidesScrollers);
  EXPECT_FALSE(scroll.hasHorizontalScroller || scroll.drawsBackground);
  EXPECT_EQ(scroll.document->autoresizingMask, platform::NSViewWidthSizable);
  EXPECT_FALSE(scroll.document->translatesMask);
  EXPECT_EQ(first<desktop::ImageView>().scaling, platform::NSImageScaleProportionallyUpOrDown);
  EXPECT_TRUE(first<desktop::Button>().tint) << "the link to the program's page is quieter than its label";
  const desktop::View& settings = *scroll.document->subviews.back();
  const double below = scroll.document->frame.size.height - settings.frame.origin.y - settings.frame.size.height;
  EXPECT_EQ(settings.frame.origin.y, 136);
  EXPECT_EQ(below, 20);
}

TEST_F(SettingsWindowTest, CannotBeHadFromAnArchive) {
  open();
  const auto archive = platform::make<"NSObject", "init">();
  EXPECT_FALSE((platform::make<"MappingsWindowController", "initWithCoder:">(archive)));
}

/// A bundle of that identifier; none is left out.
std::filesystem::path makeBundle(const desktop::TemporaryFolder& folder,
                                 const std::optional<PropertyList>& identifier) {
  auto bundle = folder.path / "Chosen.app";
  std::filesystem::create_directories(bundle / "Contents");
  PropertyList::Dictionary information{{u"CFBundleName", u"Chosen"}};
  if (identifier) information[u"CFBundleIdentifier"] = *identifier;
  desktop::writeFile(bundle / "Contents" / "Info.plist", writeXml(information));
  return bundle;
}

/// A choice in the open panel, each time from a running program.
std::string choose(const std::filesystem::path& chosen) {
  desktop::TestDesktop desktop;
  desktop.store(u"exemptBundleIDs", PropertyList::Array{u"org.listed"});
  const std::string trace = desktop.play(
      {"menu Settings…\nclick \"Choose App…\"\nchoose \"" + chosen.string() + "\"\nshow defaults\nshow window"});
  std::string stored = trace.substr(trace.find("default\t"), trace.find("button\tAbout") - trace.find("default\t"));
  const bool isListed = trace.find("label\tcom.example.chosen\n") != std::string::npos;
  EXPECT_EQ(isListed, stored.find("com.example.chosen") != std::string::npos) << "list and store differ";
  return stored;
}

TEST(ExemptionsPanel, TakesTheIdentifierOfTheBundleThatIsChosen) {
  const desktop::TemporaryFolder folder;
  const std::string before = "default\texemptBundleIDs\torg.listed\n";
  const std::string after = "default\texemptBundleIDs\tcom.example.chosen\torg.listed\n";
  EXPECT_EQ(choose(makeBundle(folder, u" com.example.chosen\n")), after);
  for (const std::optional<PropertyList>& useless :
       {std::optional<PropertyList>(u"org.listed"), std::optional<PropertyList>(u"  "), std::optional<PropertyList>(7),
        std::optional<PropertyList>()})
    EXPECT_EQ(choose(makeBundle(folder, useless)), before);
  EXPECT_EQ(choose(folder.path / "none"), before) << "no bundle at all";
}

TEST(ExemptionsPanel, TakesNothingWhenItIsCancelled) {
  const desktop::TemporaryFolder folder;
  const auto app = makeBundle(folder, u"com.example.chosen");
  desktop::TestDesktop desktop;
  // Selected in the panel, but never confirmed.
  desktop.play({"menu Settings…\nclick \"Choose App…\"",
                [&] { desktop.machine.appKit->frontPanel()->chosen = desktop::fileURL(app.string()); }, "cancel"});
  EXPECT_EQ(desktop.machine.defaults->file->value(u"exemptBundleIDs"), nullptr);
}

TEST(ExemptionsPanel, AsksForOneApplication) {
  desktop::TestDesktop desktop;
  desktop.play({"menu Settings…\nclick \"Choose App…\"", [&] {
                  const desktop::OpenPanel* const panel = desktop.machine.appKit->frontPanel();
                  ASSERT_NE(panel, nullptr);
                  EXPECT_EQ(textOf(panel->title.get()), "Choose Application to Exempt");
                  EXPECT_EQ(textOf(panel->message.get()), "Select an application bundle (.app)");
                  EXPECT_EQ(textOf(panel->prompt.get()), "Add Exemption");
                  EXPECT_EQ(panel->directory->path, "/Applications");
                  EXPECT_TRUE(panel->canChooseFiles);
                  EXPECT_FALSE(panel->canChooseDirectories || panel->allowsMultipleSelection);
                  ASSERT_EQ(panel->allowedContentTypes->count(), 1U);
                  const auto* type = desktop::as<desktop::ContentType>(panel->allowedContentTypes->objectAtIndex(0));
                  EXPECT_EQ(textOf(type->identifier.get()), "com.apple.application-bundle");
                }});
}

TEST(SettingsMenuEntry, ShowsTheSameWindowAgain) {
  desktop::TestDesktop desktop;
  long controllers = 0;
  desktop.play({"menu Settings…\nresize 700 650\nclose\nmenu Settings…\nmenu Settings…",
                [&] { controllers = desktop::liveObjects("MappingsWindowController"); }});
  EXPECT_EQ(controllers, 1);
  EXPECT_TRUE(desktop.trace().ends_with("window\tTarnwick Settings\t700\t650\nfront\tTarnwick\nterminate\n"))
      << desktop.trace();
}

TEST(SettingsMenuEntry, SwitchesAreBackOnAndExemptionsKeptInTheNextRun) {
  const desktop::TemporaryFolder folder;
  const auto run = [&](const std::string& session) {
    desktop::TestDesktop desktop;
    desktop.machine.defaults->file = std::make_unique<desktop::PropertyListFile>(folder.path / "defaults.plist");
    return desktop.play({session});
  };
  const auto app = makeBundle(folder, u"com.example.editor");
  const std::string first = run("menu Settings…\nclick \"Bold (Ctrl+B)\"\nfront Editor\ndown ctrl+b\ndown ctrl+c\n"
                                "click \"Choose App…\"\nchoose \"" +
                                app.string() + "\"\nfront Editor\ndown ctrl+c\nmenu \"Disable Tarnwick\"");
  EXPECT_NE(first.find("key\tEditor\tdown\t0x0b\t0x40000\nkey\tEditor\tdown\t0x08\t0x100000\n"), std::string::npos);
  EXPECT_NE(first.find("key\tEditor\tdown\t0x08\t0x40000\nterminate\n"), std::string::npos) << first;
  const std::string second =
      run("show menu\ndown ctrl+b\napp Other\nfront Other\ndown ctrl+b\nmenu Settings…\nclick Remove\n"
          "front Editor\ndown ctrl+c");
  EXPECT_NE(second.find("item\tDisable Tarnwick\t"), std::string::npos) << second;
  EXPECT_NE(second.find("key\tEditor\tdown\t0x0b\t0x40000\nkey\tOther\tdown\t0x0b\t0x100000\n"), std::string::npos);
  EXPECT_NE(second.find("key\tEditor\tdown\t0x08\t0x100000\nterminate\n"), std::string::npos) << second;
}

} // namespace
} // namespace tarnwick
