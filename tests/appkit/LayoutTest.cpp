#include "desktop/appkit/Layout.hpp"
#include "desktop/appkit/Constraints.hpp"

#include "platform/Control.hpp"
#include "platform/RuntimeClass.hpp"
#include "tests/support/TestDesktop.hpp"

#include <array>

namespace desktop {
namespace {

namespace mac = platform;

View& inside(const mac::NSView& view) {
  return *as<View>(view.object());
}
/// Left, top, width and height, from the top left corner of the outermost view.
std::array<double, 4> placeOf(const mac::NSView& view) {
  const CGRect place = frameFromTop(inside(view));
  return {place.origin.x, place.origin.y, place.size.width, place.size.height};
}

mac::NSView untranslated() {
  auto view = mac::NSView::make();
  view.setTranslatesAutoresizingMaskIntoConstraints(NO);
  return view;
}
void activate(const std::vector<mac::NSLayoutConstraint>& constraints) {
  mac::NSLayoutConstraint::activateConstraints(mac::NSArray::of(constraints));
}
void layOutAt(const mac::NSView& view, CGFloat width, CGFloat height) {
  view.setFrame({{0, 0}, {width, height}});
  view.layoutSubtreeIfNeeded();
}

// How rows, notes and scrolled documents lie is held by the settings window, its pictures and its measures.
struct Layout : testing::Test {
  TestDesktop desktop;
};

TEST_F(Layout, AForgottenMaskShows) {
  const auto container = mac::NSView::make();
  const auto view = mac::NSView::make();
  view.setFrame({{0, 0}, {30, 40}});
  container.addSubview(view);
  activate({view.leadingAnchor().constraintEqualToAnchor(container.leadingAnchor(), 5),
            view.trailingAnchor().constraintEqualToAnchor(container.trailingAnchor(), -5)});
  layOutAt(container, 100, 100);
  EXPECT_EQ(placeOf(view), (std::array{0., 60., 30., 40.})) << "it stays where its frame was set";
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
    layOutAt(container, 100, 100);
    EXPECT_EQ(placeOf(stays), (std::array{25., 100., 80., 0.}));
    leaves.removeFromSuperview();
  }
  layOutAt(container, 100, 100);
  EXPECT_EQ(placeOf(stays), (std::array{0., 100., 80., 0.}));
  {
    const mac::AutoreleasePool pool;
    const auto another = mac::NSView::make();
    another.addSubview(stays);
    activate({stays.topAnchor().constraintEqualToAnchor(another.topAnchor(), 10)});
  }
  container.addSubview(stays);
  stays.removeFromSuperview();
  EXPECT_EQ(inside(stays).superview, nullptr) << "nothing is left of a container that is gone";
}

/// How often constraints are asked for their views while views tied to each other and to their container leave one by
/// one.
long stepsToLeave(std::size_t count) {
  const auto container = mac::NSView::make();
  std::vector<mac::NSView> views;
  std::vector<mac::NSLayoutConstraint> constraints;
  for (std::size_t index = 0; index < count; ++index) {
    views.push_back(untranslated());
    container.addSubview(views.back());
    constraints.push_back(views.back().topAnchor().constraintEqualToAnchor(container.topAnchor()));
    constraints.push_back(views.back().leadingAnchor().constraintEqualToAnchor(views.front().leadingAnchor()));
    constraints.push_back(views.back().widthAnchor().constraintEqualToAnchor(views[index / 2].widthAnchor()));
  }
  activate(constraints);
  const long before = Constraint::timesAsked;
  for (std::size_t index = count; index-- > 0;)
    views[index].removeFromSuperview();
  EXPECT_TRUE(inside(container).constraints.empty());
  return Constraint::timesAsked - before;
}

TEST_F(Layout, AViewLeavesInAsManyStepsAsItHasTies) {
  const long steps = stepsToLeave(100);
  EXPECT_GT(steps, 0);
  EXPECT_LE(stepsToLeave(1000), 11 * steps);
}

TEST_F(Layout, RemovingAnArrangedViewTakesTwoSteps) {
  const auto list = mac::NSStackView::make();
  const mac::NSView views[] = {mac::NSView::make(), mac::NSView::make()};
  for (const mac::NSView& view : views)
    list.addArrangedSubview(view);
  list.removeArrangedSubview(views[0]);
  EXPECT_EQ(list.arrangedSubviews().count(), 1U);
  EXPECT_EQ(inside(views[0]).superview, &inside(list));
  for (const mac::NSView& view : views)
    view.removeFromSuperview();
  EXPECT_EQ(list.arrangedSubviews().count(), 0U) << "what is no subview is not arranged either";
}

TEST_F(Layout, FollowsWhateverChanges) {
  const auto column = mac::NSStackView::make();
  column.setOrientation(mac::NSUserInterfaceLayoutOrientationVertical);
  const auto row = mac::NSStackView::make();
  const auto label = mac::NSTextField::labelWithString("label");
  const auto button = mac::NSButton::buttonWithTitle("button", nullptr, nullptr);
  const auto box = untranslated();
  for (const mac::NSView& view : {mac::NSView(label), mac::NSView(button), mac::NSView(box)})
    row.addArrangedSubview(view);
  column.addArrangedSubview(row);
  const auto wanted = [&] {
    layOutAt(column, 500, 500);
    const CGSize size = column.fittingSize();
    return std::array{size.width,         size.height,        placeOf(button)[0],
                      placeOf(button)[1], placeOf(button)[2], placeOf(box)[0]};
  };
  const std::function<void()> changes[] = {
      [&] { label.setFont(mac::NSFont::boldSystemFontOfSize(20)); },
      [&] { button.setTitle("longer button"); },
      [&] { button.setBezelStyle(mac::NSBezelStyleInline); },
      [&] { row.setSpacing(30); },
      [&] { activate({box.widthAnchor().constraintEqualToConstant(50)}); },
      [&] { row.addArrangedSubview(mac::NSTextField::labelWithString("another")); },
      [&] { row.setOrientation(mac::NSUserInterfaceLayoutOrientationVertical); },
      [&] { row.setAlignment(mac::NSLayoutAttributeLeading); },
      [&] { label.removeFromSuperview(); },
  };
  for (auto before = wanted(); const auto& change : changes) {
    change();
    const auto after = wanted();
    EXPECT_NE(after, before) << "change " << &change - changes;
    before = after;
  }
  const auto before = wanted();
  button.setFrame({{1, 2}, {3, 4}});
  EXPECT_EQ(wanted(), before) << "a stack puts back what was moved";
}

long timesMeasured = 0;
mac::NSSize countedSize(id) {
  ++timesMeasured;
  return {10, 10};
}

TEST_F(Layout, MeasuresEachRowOnceHoweverManyThereAre) {
  mac::RuntimeClass<void, "TestCountedView", "NSView">().method<"intrinsicContentSize", &countedSize>().registered();
  constexpr long rows = 50000;
  const auto list = mac::NSStackView::make();
  list.setOrientation(mac::NSUserInterfaceLayoutOrientationVertical);
  for (long row = 0; row < rows; ++row)
    list.addArrangedSubview(mac::make<"TestCountedView", "init", mac::NSView>());
  for (const double width : {100, 200, 300})
    layOutAt(list, width, 100);
  EXPECT_EQ(list.fittingSize().width, 10);
  EXPECT_EQ(timesMeasured, 2 * rows) << "along each axis";
}

TEST(ConstraintSolver, TheContainerIsAsLongAsItsMostDemandingBoxNeeds) {
  std::vector<Relation> relations;
  for (const auto& [box, by] : {std::pair<std::size_t, double>{1, 20}, {2, 5}, {3, 0}}) {
    relations.push_back({box, Edge::Start, 0, Edge::Start, by});
    relations.push_back({0, Edge::End, box, Edge::End, by});
  }
  EXPECT_EQ(solve({std::nullopt, 30, 70, std::nullopt}, relations).least, 80);
  EXPECT_EQ(solve({std::nullopt, 50, 70, std::nullopt}, relations).least, 90);
  EXPECT_EQ(solve({std::nullopt, std::nullopt, std::nullopt, std::nullopt}, relations).least, std::nullopt);
}

TEST(ConstraintSolver, OfContradictionsTheFirstHoldsAndCirclesEnd) {
  const auto contradicting =
      solve({std::nullopt, 30}, {{1, Edge::Start, 0, Edge::Start, 5}, {1, Edge::Start, 0, Edge::Start, 9}});
  EXPECT_EQ(contradicting.spans[1].start.in(100), 5);
  const auto circle =
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

TEST(FontMetrics, ShorteningKeepsBothEndsAndWrappingWholeWords) {
  const Typeface face{10, false}; // an "a" takes 5.6, an emoji and the ellipsis 10
  EXPECT_EQ(shortenedInMiddle(u"aaaa", face, 22.4), u"aaaa");
  EXPECT_EQ(shortenedInMiddle(u"abcdefgh", face, 30), u"ab…h");
  EXPECT_EQ(shortenedInMiddle(u"\U0001F600\U0001F601\U0001F602", face, 29), u"\U0001F600…");
  EXPECT_EQ(shortenedInMiddle(u"aaaa", face, 3), u"…") << "the ellipsis stays, however narrow";

  // Wrapping breaks at spaces and leaves long words whole.
  EXPECT_EQ(wrapped(u"aa aa aaaaaaaa a", face, 26), (std::vector<std::u16string>{u"aa aa", u"aaaaaaaa", u"a"}));
  EXPECT_EQ(wrapped(u"", face, 26), std::vector<std::u16string>{u""});
}

} // namespace
} // namespace desktop
