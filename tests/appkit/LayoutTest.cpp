#include "desktop/appkit/Layout.hpp"

#include "platform/Control.hpp"
#include "platform/RuntimeClass.hpp"
#include "tests/support/TestDesktop.hpp"

inline std::ostream& operator<<(std::ostream& stream, const CGRect& rect) {
  return stream << rect.origin.x << ' ' << rect.origin.y << ' ' << rect.size.width << ' ' << rect.size.height;
}
inline std::ostream& operator<<(std::ostream& stream, const CGSize& size) {
  return stream << size.width << ' ' << size.height;
}
inline bool operator==(const CGSize& one, const CGSize& other) {
  return one.width == other.width && one.height == other.height;
}
inline bool operator==(const CGRect& one, const CGRect& other) {
  return one.origin.x == other.origin.x && one.origin.y == other.origin.y && one.size == other.size;
}

namespace desktop {
namespace {

namespace mac = platform;

constexpr mac::NSInteger leading = mac::NSLayoutAttributeLeading;
constexpr mac::NSInteger centreX = mac::NSLayoutAttributeCenterX;
constexpr mac::NSInteger centreY = mac::NSLayoutAttributeCenterY;

View& inside(const mac::NSView& view) {
  return *as<View>(view.object());
}
/// From the top left corner of the outermost view.
CGRect placeOf(const mac::NSView& view) {
  return frameFromTop(inside(view));
}

mac::NSStackView stack(mac::NSInteger orientation, mac::NSInteger alignment, CGFloat spacing,
                       std::initializer_list<mac::NSView> views) {
  auto made = mac::NSStackView::make();
  made.setOrientation(orientation);
  made.setAlignment(alignment);
  made.setSpacing(spacing);
  for (const mac::NSView& view : views)
    made.addArrangedSubview(view);
  return made;
}
mac::NSStackView column(mac::NSInteger alignment, CGFloat spacing, std::initializer_list<mac::NSView> views) {
  return stack(mac::NSUserInterfaceLayoutOrientationVertical, alignment, spacing, views);
}
mac::NSStackView row(CGFloat spacing, std::initializer_list<mac::NSView> views) {
  return stack(mac::NSUserInterfaceLayoutOrientationHorizontal, centreY, spacing, views);
}

mac::NSTextField label(std::string_view text) {
  return mac::NSTextField::labelWithString(mac::NSString::utf8(text));
}
mac::NSButton button(std::string_view title) {
  return mac::NSButton::buttonWithTitle(mac::NSString::utf8(title), nullptr, nullptr);
}
mac::NSView untranslated() {
  auto view = mac::NSView::make();
  view.setTranslatesAutoresizingMaskIntoConstraints(NO);
  return view;
}
mac::NSView sized(CGFloat width, CGFloat height) {
  auto view = mac::NSView::make();
  view.setFrame({{0, 0}, {width, height}});
  return view;
}
void activate(const std::vector<mac::NSLayoutConstraint>& constraints) {
  mac::NSLayoutConstraint::activateConstraints(mac::NSArray::of(constraints));
}

void layOutAt(const mac::NSView& view, CGFloat width, CGFloat height) {
  view.setFrame({{0, 0}, {width, height}});
  view.layoutSubtreeIfNeeded();
}

class FlippedView {
public:
  static mac::NSView make() {
    static const Class registered = mac::RuntimeClass<void, "LayoutTestFlippedView", "NSView">()
                                        .method<"isFlipped", &FlippedView::isFlipped>()
                                        .registered();
    static_cast<void>(registered);
    return mac::make<"LayoutTestFlippedView", "init", mac::NSView>();
  }

private:
  static BOOL isFlipped(id /*self*/) { return YES; }
};

/// Widths at 13 points: "aaaa" 4 × 0.56 × 13 = 29.12, that is 30; "OK" 18.72, so a button of 19 + 28.
struct Layout : testing::Test {
  TestDesktop desktop;
};

TEST_F(Layout, AColumnPacksFromTheTopAndFillsItsWidthWithWhatHasNone) {
  const auto text = label("aaaa");
  const auto press = button("OK");
  const auto line = mac::NSBox::make();
  line.setBoxType(mac::NSBoxSeparator);
  const auto views = column(leading, 10, {text, press, line});
  EXPECT_EQ(views.fittingSize(), (CGSize{47, 16 + 10 + 20 + 10 + 5}));

  layOutAt(views, 200, 100);
  EXPECT_EQ(placeOf(text), (CGRect{{0, 0}, {30, 16}}));
  EXPECT_EQ(placeOf(press), (CGRect{{0, 26}, {47, 20}}));
  EXPECT_EQ(placeOf(line), (CGRect{{0, 56}, {200, 5}}));
  EXPECT_EQ(inside(text).frame.origin.y, 84) << "a stack view's y axis runs upwards";

  views.setAlignment(centreX);
  views.layoutSubtreeIfNeeded();
  EXPECT_EQ(placeOf(text), (CGRect{{85, 0}, {30, 16}}));
}

TEST_F(Layout, StacksNest) {
  const auto text = label("aaaa");
  const auto press = button("OK");
  const auto inner = row(8, {text, press});
  const auto outer = column(leading, 6, {label("a"), inner});
  EXPECT_EQ(outer.fittingSize(), (CGSize{30 + 8 + 47, 16 + 6 + 20}));

  layOutAt(outer, 300, 42);
  EXPECT_EQ(placeOf(inner), (CGRect{{0, 22}, {85, 20}}));
  EXPECT_EQ(placeOf(text), (CGRect{{0, 24}, {30, 16}})) << "centred in the height of the row";
  EXPECT_EQ(placeOf(press), (CGRect{{38, 22}, {47, 20}}));
}

TEST_F(Layout, WhatHoldsItsContentLeastGivesWay) {
  const auto text = label("aaaaaaaaaaaaaaaaaaaa"); // 20 × 7.28, that is 146
  text.setLineBreakMode(mac::NSLineBreakByTruncatingMiddle);
  const auto remove = button("OK");
  const auto entry = row(8, {text, remove});
  const auto list = column(leading, 6, {entry});

  text.setContentCompressionResistancePriority(mac::NSLayoutPriorityDefaultLow,
                                               mac::NSLayoutConstraintOrientationHorizontal);
  EXPECT_EQ(entry.fittingSize().width, 146 + 8 + 47) << "a fitting size leaves nothing out";
  layOutAt(list, 105, 20);
  EXPECT_EQ(placeOf(text), (CGRect{{0, 2}, {50, 16}}));
  EXPECT_EQ(placeOf(remove), (CGRect{{58, 0}, {47, 20}}));
  // 50 less the ellipsis of 13 has room for five letters of 7.28.
  EXPECT_EQ(as<TextField>(text.object())->shownLines(), std::vector<std::u16string>{u"aaa…aa"});

  text.setContentCompressionResistancePriority(750, mac::NSLayoutConstraintOrientationHorizontal);
  list.layoutSubtreeIfNeeded();
  EXPECT_EQ(placeOf(text).size.width, 146) << "at the platform's default nothing is shortened";
}

TEST_F(Layout, ANoteWrapsAndIsAsHighAsItsLines) {
  const auto note = label("aaaa aaaa aaaa"); // 3 × 29.12 + 2 × 3.51, that is 95
  note.setLineBreakMode(mac::NSLineBreakByWordWrapping);
  note.setMaximumNumberOfLines(0);
  const auto below = label("a");
  const auto views = column(leading, 10, {note, below});
  EXPECT_EQ(views.fittingSize(), (CGSize{95, 42}));

  layOutAt(views, 70, 100);
  EXPECT_EQ(placeOf(note), (CGRect{{0, 0}, {70, 32}}));
  EXPECT_EQ(placeOf(below).origin.y, 42);
  EXPECT_EQ(views.fittingSize(), (CGSize{95, 58})) << "as wide as one line would be, as high as it was laid out";
  layOutAt(views, 95, 100);
  EXPECT_EQ(placeOf(note), (CGRect{{0, 0}, {95, 16}}));
}

TEST_F(Layout, ConstraintsPlaceViewsInFlippedAndUnflippedContainers) {
  for (const auto& container : {mac::NSView::make(), FlippedView::make()}) {
    const auto icon = untranslated();
    const auto picture = untranslated();
    const auto form = column(leading, 10, {label("aaaa"), label("aaaa")});
    form.setTranslatesAutoresizingMaskIntoConstraints(NO);
    icon.addSubview(picture);
    container.addSubview(icon);
    container.addSubview(form);
    activate({
        icon.topAnchor().constraintEqualToAnchor(container.topAnchor(), 24),
        icon.centerXAnchor().constraintEqualToAnchor(container.centerXAnchor()),
        icon.widthAnchor().constraintEqualToConstant(92),
        icon.heightAnchor().constraintEqualToConstant(92),
        picture.leadingAnchor().constraintEqualToAnchor(icon.leadingAnchor()),
        picture.trailingAnchor().constraintEqualToAnchor(icon.trailingAnchor()),
        picture.topAnchor().constraintEqualToAnchor(icon.topAnchor()),
        picture.bottomAnchor().constraintEqualToAnchor(icon.bottomAnchor()),
        form.leadingAnchor().constraintEqualToAnchor(container.leadingAnchor(), 20),
        form.trailingAnchor().constraintEqualToAnchor(container.trailingAnchor(), -20),
        form.topAnchor().constraintEqualToAnchor(icon.bottomAnchor(), 20),
        form.bottomAnchor().constraintEqualToAnchor(container.bottomAnchor(), -20),
    });
    EXPECT_EQ(container.fittingSize(), (CGSize{70, 24 + 92 + 20 + 42 + 20}));

    layOutAt(container, 500, 400);
    EXPECT_EQ(placeOf(icon), (CGRect{{204, 24}, {92, 92}}));
    EXPECT_EQ(placeOf(picture), placeOf(icon));
    EXPECT_EQ(placeOf(form), (CGRect{{20, 136}, {460, 244}}));
    EXPECT_EQ(inside(icon).frame.origin.y, isFlipped(inside(container)) ? 24 : 284);

    layOutAt(container, 400, 10); // too low for its content
    EXPECT_EQ(placeOf(form).origin.y, 136);
    EXPECT_EQ(form.fittingSize(), (CGSize{30, 42}));
  }
}

TEST_F(Layout, ARowHeldOnlyByItsCentreIsAsHighAsItsButtonAndAsWideAsItsColumn) {
  const auto about = button("OK");
  about.setBezelStyle(mac::NSBezelStyleInline); // 19 + 16 by 18
  about.setTranslatesAutoresizingMaskIntoConstraints(NO);
  const auto header = untranslated();
  header.addSubview(about);
  activate({about.centerXAnchor().constraintEqualToAnchor(header.centerXAnchor()),
            about.topAnchor().constraintEqualToAnchor(header.topAnchor()),
            about.bottomAnchor().constraintEqualToAnchor(header.bottomAnchor())});
  EXPECT_EQ(header.fittingSize(), (CGSize{0, 18}));

  const auto views = column(leading, 10, {header, label("aaaa")});
  layOutAt(views, 135, 100);
  EXPECT_EQ(placeOf(about), (CGRect{{50, 0}, {35, 18}}));
}

TEST_F(Layout, AForgottenMaskShows) {
  const auto container = mac::NSView::make();
  const auto view = sized(30, 40);
  container.addSubview(view);
  activate({view.leadingAnchor().constraintEqualToAnchor(container.leadingAnchor(), 5),
            view.trailingAnchor().constraintEqualToAnchor(container.trailingAnchor(), -5)});
  layOutAt(container, 100, 100);
  EXPECT_EQ(placeOf(view), (CGRect{{0, 60}, {30, 40}})) << "it stays where its frame was set";
}

TEST_F(Layout, AViewThatLeavesTakesItsConstraintsAlong) {
  const auto container = mac::NSView::make();
  const auto stays = untranslated();
  {
    const auto leaves = untranslated();
    container.addSubview(leaves);
    container.addSubview(stays);
    activate({leaves.widthAnchor().constraintEqualToConstant(10),
              leaves.leadingAnchor().constraintEqualToAnchor(container.leadingAnchor(), 10),
              stays.leadingAnchor().constraintEqualToAnchor(leaves.trailingAnchor(), 5),
              stays.widthAnchor().constraintEqualToAnchor(container.widthAnchor(), -20)});
    leaves.removeFromSuperview();
  }
  layOutAt(container, 100, 100);
  EXPECT_EQ(placeOf(stays), (CGRect{{0, 100}, {80, 0}}));
}

TEST_F(Layout, AScrollViewShowsItsDocumentFromTheTopAndLeavesItsFrameAlone) {
  const auto content = mac::NSView::make();
  const auto scroll = mac::NSScrollView::make();
  scroll.setTranslatesAutoresizingMaskIntoConstraints(NO);
  const auto document = FlippedView::make();
  const auto low = sized(10, 10);
  low.setFrame({{0, 900}, {10, 10}});
  document.addSubview(low);
  document.setFrame({{0, 0}, {400, 1000}});
  scroll.setDocumentView(document);
  content.addSubview(scroll);
  activate({scroll.leadingAnchor().constraintEqualToAnchor(content.leadingAnchor()),
            scroll.trailingAnchor().constraintEqualToAnchor(content.trailingAnchor()),
            scroll.topAnchor().constraintEqualToAnchor(content.topAnchor()),
            scroll.bottomAnchor().constraintEqualToAnchor(content.bottomAnchor())});
  EXPECT_EQ(scroll.contentSize(), (CGSize{0, 0})) << "not laid out yet";

  layOutAt(content, 500, 300);
  EXPECT_EQ(scroll.contentSize(), (CGSize{500, 300}));
  EXPECT_EQ(placeOf(document), (CGRect{{0, 0}, {400, 1000}}));
  EXPECT_EQ(placeOf(low).origin.y, 900) << "below what the clip view shows";

  scroll.setDocumentView({});
  EXPECT_EQ(inside(document).superview, nullptr);
}

TEST_F(Layout, RemovingAnArrangedViewTakesTwoSteps) {
  const auto first = label("first");
  const auto second = label("second");
  const auto list = column(leading, 6, {first, second});
  list.removeArrangedSubview(first);
  EXPECT_EQ(list.arrangedSubviews().count(), 1u);
  EXPECT_EQ(inside(first).superview, &inside(list));
  first.removeFromSuperview();
  second.removeFromSuperview();
  EXPECT_EQ(list.arrangedSubviews().count(), 0u) << "what is no subview is not arranged either";
  EXPECT_EQ(list.fittingSize(), (CGSize{0, 0}));
}

TEST_F(Layout, AVeryLongListIsLaidOutAndTakenApart) {
  constexpr int rows = 40'000;
  const auto list = column(leading, 6, {});
  for (int count = 0; count < rows; ++count) {
    const mac::AutoreleasePool pool;
    list.addArrangedSubview(row(8, {label("com.example.editor"), button("Remove")}));
  }
  layOutAt(list, 300, list.fittingSize().height);
  EXPECT_EQ(inside(list).frame.size.height, rows * 26 - 6);
  const auto arranged = list.arrangedSubviews();
  for (mac::NSUInteger index = 0; index < arranged.count(); ++index) {
    const auto each = arranged.objectAtIndex<mac::NSView>(index);
    list.removeArrangedSubview(each);
    each.removeFromSuperview();
  }
  EXPECT_EQ(list.arrangedSubviews().count(), 0U);
}

TEST(ConstraintSolver, TheContainerIsAsLongAsItsMostDemandingBoxNeeds) {
  const auto inset = [](std::size_t box, double by) {
    return std::vector<Relation>{{box, Edge::Start, 0, Edge::Start, by}, {0, Edge::End, box, Edge::End, by}};
  };
  std::vector<Relation> relations;
  for (const auto& each : {inset(1, 20), inset(2, 5), inset(3, 0)})
    relations.insert(relations.end(), each.begin(), each.end());
  EXPECT_EQ(solve({std::nullopt, 30, 70, std::nullopt}, relations).least, 80);
  EXPECT_EQ(solve({std::nullopt, 50, 70, std::nullopt}, relations).least, 90);
  EXPECT_EQ(solve({std::nullopt, std::nullopt, std::nullopt, std::nullopt}, relations).least, std::nullopt);
}

TEST(ConstraintSolver, OfContradictionsTheFirstHoldsAndCirclesEnd) {
  const Solution contradicting =
      solve({std::nullopt, 30}, {{1, Edge::Start, 0, Edge::Start, 5}, {1, Edge::Start, 0, Edge::Start, 9}});
  EXPECT_EQ(contradicting.spans[1].start.in(100), 5);
  const Solution circle =
      solve({std::nullopt, 30, 40}, {{1, Edge::Start, 2, Edge::End, 1}, {2, Edge::Start, 1, Edge::End, 1}});
  EXPECT_EQ(circle.spans[1].length.in(100), 30);
  EXPECT_EQ(circle.spans[2].start.in(100), circle.spans[1].start.in(100) + 31);
}

TEST(LayoutDeathTest, MistakesStopWithASentence) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const Desktop machine;
  const mac::AutoreleasePool pool;
  const auto one = untranslated();
  const auto other = untranslated();
  EXPECT_DEATH(activate({one.topAnchor().constraintEqualToAnchor(other.topAnchor())}),
               "a constraint was activated between a NSView and a NSView that are neither side by side");
  EXPECT_DEATH((mac::send<"constraintEqualToAnchor:", mac::NSObject>(one.topAnchor(), other.leadingAnchor())),
               "anchors of different kinds");
}

TEST(FontMetrics, ShorteningKeepsBothEndsAndWholeCharacters) {
  const Typeface face{10, false}; // an "a" takes 5.6, an emoji and the ellipsis 10
  EXPECT_EQ(shortenedInMiddle(u"aaaa", face, 22.4), u"aaaa");
  EXPECT_EQ(shortenedInMiddle(u"abcdefgh", face, 30), u"ab…h");
  EXPECT_EQ(shortenedInMiddle(u"\U0001F600\U0001F601\U0001F602", face, 29), u"\U0001F600…");
  EXPECT_EQ(shortenedInMiddle(u"aaaa", face, 3), u"…") << "the ellipsis stays, however narrow";
}

TEST(FontMetrics, WrappingBreaksAtSpacesAndLeavesLongWordsWhole) {
  const Typeface face{10, false};
  EXPECT_EQ(wrapped(u"aa aa aaaaaaaa a", face, 26), (std::vector<std::u16string>{u"aa aa", u"aaaaaaaa", u"a"}));
  EXPECT_EQ(wrapped(u"", face, 26), std::vector<std::u16string>{u""});
}

} // namespace
} // namespace desktop
