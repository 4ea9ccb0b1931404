#include "desktop/session/WindowCommands.hpp"
#include "platform/Control.hpp"
#include "platform/RuntimeClass.hpp"
#include "platform/Window.hpp"
#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

// What it shows and does, sessions tell.

/// The window of the running program, once "Settings…" has been chosen.
class SettingsWindowTest : public testing::Test {
protected:
  TestDesktop desktop;
  Desktop& machine = desktop.machine;

  void open(const std::function<void()>& look) { desktop.play({"menu Settings…", look}); }
  Window& window() { return *machine.appKit.frontWindow(); }
  /// The window's views of that class, each before those inside it.
  template <class Kind> std::vector<Kind*> all() {
    std::vector<Kind*> found;
    forEachView(*window().contentView(), [&](View& view) {
      if (auto* const kind = ifIs<Kind>(&view)) found.push_back(kind);
    });
    return found;
  }
  double documentHeight() { return all<ScrollView>().front()->document->frame.size.height; }
  /// What the window shows, from top to bottom.
  std::string shown() {
    desktop.entries.clear();
    EXPECT_TRUE(showWindow(machine));
    return desktop.trace();
  }
  bool click(const char* title, std::uint64_t row = 1) { return clickInWindow(machine, title, row); }
};

/// How a stack places what it arranges.
using Arrangement = std::tuple<Axis, NSInteger, CGFloat>;
constexpr Arrangement row{Axis::Horizontal, platform::NSLayoutAttributeCenterY, 8};

TEST_F(SettingsWindowTest, LooksAsDesigned) {
  desktop.store(u"exemptBundleIDs", PropertyList::Array{u"com.example"});
  open([&] {
    EXPECT_EQ(window().styleMask, platform::NSWindowStyleMaskTitled | platform::NSWindowStyleMaskClosable |
                                      platform::NSWindowStyleMaskResizable);
    EXPECT_EQ(window().backingStore, platform::NSBackingStoreBuffered);
    EXPECT_FALSE(window().isDeferred);
    EXPECT_EQ(window().minSize().width, 460);
    EXPECT_EQ(window().minSize().height, 500);

    const ImageView& icon = *all<ImageView>().front();
    EXPECT_EQ(icon.scaling, platform::NSImageScaleProportionallyUpOrDown);
    EXPECT_EQ(icon.layer()->cornerRadius, 16);
    EXPECT_TRUE(icon.layer()->masksToBounds);
    EXPECT_EQ(icon.frame.size.width, 92);
    EXPECT_EQ(icon.frame.size.height, 92);
    const View& iconFrame = *icon.superview;
    EXPECT_EQ(iconFrame.frame.origin.y, 24);
    EXPECT_EQ(iconFrame.frame.origin.x, (window().frame.size.width - 92) / 2);
    const Layer& shadow = *iconFrame.layer();
    EXPECT_EQ(shadow.shadowColor->ink, Color::Ink::Black);
    EXPECT_EQ(shadow.shadowOpacity, 0.18F);
    EXPECT_EQ(shadow.shadowRadius, 10);
    EXPECT_EQ(shadow.shadowOffset.width, 0);
    EXPECT_EQ(shadow.shadowOffset.height, -2);

    const ScrollView& scroll = *all<ScrollView>().front();
    EXPECT_TRUE(scroll.hasVerticalScroller && scroll.autohidesScrollers);
    EXPECT_FALSE(scroll.hasHorizontalScroller || scroll.drawsBackground);
    EXPECT_EQ(scroll.document->autoresizingMask, platform::NSViewWidthSizable);
    EXPECT_FALSE(scroll.document->translatesMask);

    std::vector<Arrangement> arrangements;
    for (const StackView* stack : all<StackView>())
      arrangements.emplace_back(stack->orientation, stack->alignment, stack->spacing);
    EXPECT_EQ(arrangements, (std::vector<Arrangement>{{Axis::Vertical, platform::NSLayoutAttributeLeading, 10},
                                                      row,
                                                      {Axis::Vertical, platform::NSLayoutAttributeLeading, 6},
                                                      row,
                                                      {Axis::Vertical, platform::NSLayoutAttributeCenterX, 6},
                                                      row}))
        << "the settings, the button above the list, the list, its row, the footer and its row";
    const CGRect settings = all<StackView>().front()->frame;
    EXPECT_EQ(settings.origin.x, 20);
    EXPECT_EQ(settings.origin.y, 136);
    EXPECT_EQ(settings.size.width, scroll.document->frame.size.width - 40);
    EXPECT_EQ(settings.size.height, scroll.document->frame.size.height - 156);

    std::string headings;
    for (const TextField* label : all<TextField>()) {
      const std::string text = textOf(label->text.get());
      if (label->font) {
        headings += text + '\n';
        EXPECT_TRUE(label->face().bold);
        EXPECT_EQ(label->face().size, 12);
      }
      const bool isNote = text.ends_with('.');
      EXPECT_EQ(label->maximumNumberOfLines, isNote ? 0 : 1) << text;
      EXPECT_EQ(label->lineBreakMode == platform::NSLineBreakByWordWrapping, isNote) << text;
      const bool isExemption = text == "com.example";
      EXPECT_EQ(label->lineBreakMode == platform::NSLineBreakByTruncatingMiddle, isExemption) << text;
      EXPECT_EQ(label->compressionResistance[0],
                isExemption ? platform::NSLayoutPriorityDefaultLow : NSLayoutPriorityDefaultHigh)
          << text;
      const bool isQuiet = text == "Version 1.0.0";
      EXPECT_EQ(label->textColor != nullptr && label->textColor->ink == Color::Ink::SecondaryLabel, isQuiet) << text;
    }
    EXPECT_EQ(headings, "General Shortcuts\nText Editing\nSystem\nFinder\nApp Exemptions\n");

    const auto isAsHighAsItsRow = [](const View& view) {
      return view.frame.size.height == view.superview->frame.size.height;
    };
    EXPECT_TRUE(isAsHighAsItsRow(*all<StackView>()[4])) << "the footer";
    for (const Button* button : all<Button>()) {
      const bool isLink = textOf(button->title.get()) == "About Tarnwick";
      EXPECT_EQ(button->bezelStyle == platform::NSBezelStyleInline, isLink);
      EXPECT_EQ(button->tint != nullptr && button->tint->ink == Color::Ink::Label, isLink);
      EXPECT_TRUE(!isLink || isAsHighAsItsRow(*button));
    }
    for (const Box* box : all<Box>())
      EXPECT_EQ(box->type, platform::NSBoxSeparator);
  });
}

TEST_F(SettingsWindowTest, IgnoresAStrangeSenderHoweverAlike) {
  open([&] {
    const platform::NSString title = platform::NSString("Save (Ctrl+S)");
    const auto stranger =
        platform::NSButton::checkboxWithTitle(title, nullptr, platform::selectorNamed<"toggleMapping:">());
    const id controller = window().delegate;
    platform::send<"toggleMapping:">(controller, stranger);
    platform::send<"toggleMapping:">(controller, nullptr);
    platform::send<"removeExemption:">(controller, stranger);
    machine.applications.frontmost = shared(machine.applications.named("Editor"));
    EXPECT_EQ(desktop.press("ctrl+s"), "Cmd+S");
    EXPECT_EQ(machine.defaults->file->value(u"exemptBundleIDs"), nullptr) << "nothing was saved";
    EXPECT_FALSE((platform::make<"MappingsWindowController", "initWithCoder:">(stranger))) << "not from an archive";
  });
}

TEST_F(SettingsWindowTest, OpensWithThePlatformsIconInsteadOfItsOwn) {
  std::filesystem::remove(desktop.bundle / "Contents" / "Resources" / "AppIcon.icns");
  open([&] {
    ASSERT_TRUE(all<ImageView>().front()->image);
    EXPECT_EQ(all<ImageView>().front()->image->bytes, Image::applicationIcon()->bytes);
  });
}

TEST_F(SettingsWindowTest, OpensWithoutAnyIcon) {
  std::filesystem::remove(desktop.bundle / "Contents" / "Resources" / "AppIcon.icns");
  machine.faults.fail("NSImage imageNamed:");
  open([&] { EXPECT_FALSE(all<ImageView>().front()->image); });
}

TEST_F(SettingsWindowTest, IsAsHighAsItsContentWhereNoScreenLimitsItAndCentredEachTimeBeforeItShows) {
  PropertyList::Array exempt;
  for (const char16_t letter : std::u16string(u"abcdefghijklmnopqrst"))
    exempt.emplace_back(std::u16string(1, letter));
  desktop.store(u"exemptBundleIDs", exempt);
  std::vector<double> shownAt;
  machine.journal.reader = [&](const JournalEntry& entry) {
    if (entry.front() == "window") shownAt.push_back(window().frame.origin.x);
  };
  desktop.play({"screen none\n menu Settings…",
                [&] {
                  EXPECT_EQ(window().contentSize().height, documentHeight()) << "with its list in it";
                  EXPECT_GT(documentHeight(), 780);
                },
                "screen 1000 700\n menu Settings…",
                [&] {
                  EXPECT_EQ(window().contentSize().height, documentHeight()) << "measured once";
                  EXPECT_EQ(shownAt.back(), (1000 - window().frame.size.width) / 2);
                }});
}

TEST_F(SettingsWindowTest, FitsTheScreenThatItIsOnRatherThanTheMainOne) {
  machine.appKit.otherScreen = CGSize{1000, 700};
  open([&] { EXPECT_EQ(window().contentSize().height, 580); });
}

TEST_F(SettingsWindowTest, MeasuresItsDocumentWheneverTheListOrTheWindowChanges) {
  desktop.store(u"exemptBundleIDs", PropertyList::Array{u"org.a", u"org.b"});
  double one = 0;
  double none = 0;
  desktop.play({"menu Settings…",
                [&] {
                  const double two = documentHeight();
                  EXPECT_TRUE(click("Remove"));
                  one = documentHeight();
                  EXPECT_EQ(one, two - 26);
                  EXPECT_TRUE(click("Remove"));
                  EXPECT_EQ(documentHeight(), one) << "an emptied list waits for the next time the window is shown";
                },
                "menu Settings…",
                [&] {
                  none = documentHeight();
                  EXPECT_LT(none, one);
                },
                "resize 460 560", [&] { EXPECT_EQ(documentHeight(), none + 16) << "a note takes another line"; },
                "resize 460 2000", [&] { EXPECT_EQ(documentHeight(), 2000) << "as high as the window"; },
                "resize 612 560", [&] { EXPECT_EQ(documentHeight(), none); }});
}

} // namespace
} // namespace desktop
