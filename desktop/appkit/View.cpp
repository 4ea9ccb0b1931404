#include "desktop/appkit/View.hpp"

#include "desktop/appkit/AppKit.hpp"
#include "desktop/appkit/Constraints.hpp"
#include "desktop/appkit/Layout.hpp"

#include <algorithm>

namespace desktop {

View::View() = default;

View::~View() {
  for (const auto& constraint : constraints)
    constraint->holder = nullptr;
  for (const auto& subview : subviews) {
    subview->superview = nullptr;
    subview->ties.clear();
  }
}

View* View::initWithFrame(CGRect value) {
  frame = value;
  return this;
}

void View::changed() {
  // Nothing is known of a view unless it is of all views inside.
  const auto isKnown = [](const Measure& measure) { return measure.isKnown; };
  for (View* view = this; view != nullptr && std::any_of(view->measures, view->measures + 2, isKnown);
       view = view->superview)
    view->measures[0] = view->measures[1] = {};
}

void View::setTranslatesMask(BOOL value) {
  translatesMask = value;
  changed();
}

void View::setFrame(CGRect value) {
  frame = value;
  if (superview != nullptr) superview->changed();
}

CGSize View::fittingSize() {
  return {fittingLength(*this, Axis::Horizontal).value_or(0), fittingLength(*this, Axis::Vertical).value_or(0)};
}

void View::layoutSubtreeIfNeeded() {
  layOut(*this);
}

void View::addSubview(View* view) {
  if (view == nullptr) stop("nothing (nil) was added to a " + isa->name);
  const auto kept = shared(view);
  view->removeFromSuperview();
  view->superview = this;
  view->isArranged = false;
  view->place = subviews.insert(subviews.end(), kept);
  changed();
}

void View::removeFromSuperview() {
  if (superview == nullptr) return;
  View& container = *std::exchange(superview, nullptr);
  while (!ties.empty())
    ties.front()->deactivate();
  container.changed();
  // The superview's reference may be the last one.
  container.subviews.erase(place);
}

Axis axisOf(NSInteger orientation) {
  if (orientation == platform::NSUserInterfaceLayoutOrientationHorizontal) return Axis::Horizontal;
  if (orientation == platform::NSUserInterfaceLayoutOrientationVertical) return Axis::Vertical;
  stop("a view has two axes, 0 and 1, not " + std::to_string(orientation));
}

void View::setCompressionResistance(float priority, NSInteger orientation) {
  compressionResistance[static_cast<int>(axisOf(orientation))] = priority;
  changed();
}

Ref<Array> View::copyOfSubviews() const {
  auto array = create<Array>();
  array->elements.assign(subviews.begin(), subviews.end());
  return array;
}

void View::setWantsLayer(BOOL value) {
  if (value && !itsLayer) itsLayer = create<Layer>();
}

void StackView::setOrientation(NSInteger value) {
  orientation = axisOf(value);
  changed();
}

void StackView::setAlignment(NSInteger value) {
  alignment = value;
  changed();
}

void StackView::setSpacing(CGFloat value) {
  spacing = value;
  changed();
}

void StackView::addArrangedSubview(View* view) {
  addSubview(view);
  view->translatesMask = false;
  view->isArranged = true;
}

void StackView::removeArrangedSubview(View* view) {
  if (view->superview != this || !std::exchange(view->isArranged, false)) return;
  changed();
}

Ref<Array> StackView::arrangedSubviews() const {
  auto array = create<Array>();
  for (const auto& view : subviews) {
    if (view->isArranged) array->elements.push_back(view);
  }
  return array;
}

BOOL ClipView::isFlipped() const {
  return !subviews.empty() && desktop::isFlipped(*subviews.front());
}

ScrollView* ScrollView::init() {
  const auto made = create<ClipView>();
  clip = made.get();
  addSubview(clip);
  return this;
}

void ScrollView::setDocumentView(View* view) {
  if (document != nullptr) document->removeFromSuperview();
  document = view;
  if (document != nullptr) clip->addSubview(document);
}

void ScrollView::setScrollerStyle(NSInteger style) {
  constexpr NSInteger overlay = 1;
  if (style != overlay) stop("only scrollers over the content (style 1) are known here");
}

CGSize ScrollView::contentSize() const {
  return clip->frame.size;
}

void Box::setBoxType(NSUInteger value) {
  type = value;
  changed();
}

CGSize Box::intrinsicContentSize() const {
  constexpr CGFloat separatorHeight = 5;
  return {-1, type == platform::NSBoxSeparator ? separatorHeight : -1};
}

void forEachView(View& view, const std::function<void(View&)>& visit) {
  visit(view);
  for (const auto& subview : view.subviews)
    forEachView(*subview, visit);
}

void registerViewClasses() {
  constexpr auto across = Axis::Horizontal;
  constexpr auto down = Axis::Vertical;
  NativeClass<View>("NSView", "NSObject")
      .method<"initWithFrame:", &View::initWithFrame>()
      .method<"initWithCoder:", &View::initWithCoder>()
      .method<"isFlipped", &View::isFlipped>()
      .method<"intrinsicContentSize", &View::intrinsicContentSize>()
      .method<"setTranslatesAutoresizingMaskIntoConstraints:", &View::setTranslatesMask>()
      .method<"setAutoresizingMask:", &View::setAutoresizingMask>()
      .method<"setFrame:", &View::setFrame>()
      .method<"frame", &View::itsFrame>()
      .method<"subviews", &View::copyOfSubviews>()
      .method<"fittingSize", &View::fittingSize>()
      .method<"layoutSubtreeIfNeeded", &View::layoutSubtreeIfNeeded>()
      .method<"addSubview:", &View::addSubview>()
      .method<"removeFromSuperview", &View::removeFromSuperview>()
      .method<"setWantsLayer:", &View::setWantsLayer>()
      .fallibleMethod<"layer", &View::layer>()
      .method<"setIdentifier:", &View::setIdentifier>()
      .fallibleMethod<"identifier", &View::identifier>()
      .method<"setContentCompressionResistancePriority:forOrientation:", &View::setCompressionResistance>()
      .method<"leadingAnchor", &View::anchor<XAxisAnchor, across, Edge::Start>>()
      .method<"trailingAnchor", &View::anchor<XAxisAnchor, across, Edge::End>>()
      .method<"centerXAnchor", &View::anchor<XAxisAnchor, across, Edge::Centre>>()
      .method<"topAnchor", &View::anchor<YAxisAnchor, down, Edge::Start>>()
      .method<"bottomAnchor", &View::anchor<YAxisAnchor, down, Edge::End>>()
      .method<"widthAnchor", &View::anchor<Dimension, across, Edge::Length>>()
      .method<"heightAnchor", &View::anchor<Dimension, down, Edge::Length>>();
  NativeClass<StackView>("NSStackView", "NSView")
      .method<"setOrientation:", &StackView::setOrientation>()
      .method<"setAlignment:", &StackView::setAlignment>()
      .method<"setSpacing:", &StackView::setSpacing>()
      .method<"addArrangedSubview:", &StackView::addArrangedSubview>()
      .method<"removeArrangedSubview:", &StackView::removeArrangedSubview>()
      .method<"arrangedSubviews", &StackView::arrangedSubviews>();
  NativeClass<ClipView>("NSClipView", "NSView").method<"isFlipped", &ClipView::isFlipped>();
  NativeClass<ScrollView>("NSScrollView", "NSView")
      .method<"init", &ScrollView::init>()
      .method<"setHasVerticalScroller:", &ScrollView::setHasVerticalScroller>()
      .method<"setHasHorizontalScroller:", &ScrollView::setHasHorizontalScroller>()
      .method<"setAutohidesScrollers:", &ScrollView::setAutohidesScrollers>()
      .method<"setDrawsBackground:", &ScrollView::setDrawsBackground>()
      .method<"setDocumentView:", &ScrollView::setDocumentView>()
      .method<"documentView", &ScrollView::documentView>()
      .method<"setScrollerStyle:", &ScrollView::setScrollerStyle>()
      .method<"contentSize", &ScrollView::contentSize>();
  NativeClass<Box>("NSBox", "NSView")
      .method<"setBoxType:", &Box::setBoxType>()
      .method<"intrinsicContentSize", &Box::intrinsicContentSize>();
}

} // namespace desktop
