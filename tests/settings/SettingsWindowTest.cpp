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

} // namespace
} // namespace tarnwick
