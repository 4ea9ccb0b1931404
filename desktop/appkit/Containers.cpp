#include "desktop/appkit/Layout.hpp"

#include <algorithm>

namespace desktop {

void StackView::addArrangedSubview(View* view) {
  addSubview(view);
  view->translatesMask = false;
  view->isArranged = true;
  arranged.push_back(view);
}

void StackView::removeArrangedSubview(View* view) {
  if (view->superview != this || !std::exchange(view->isArranged, false)) return;
  arranged.erase(std::find(arranged.begin(), arranged.end(), view));
}

Ref<Array> StackView::arrangedSubviews() const {
  auto array = create<Array>();
  for (View* view : arranged)
    array->elements.emplace_back(platform::share, view);
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

CGSize ScrollView::contentSize() const {
  return clip->frame.size;
}

CGSize Box::intrinsicContentSize() const {
  constexpr CGFloat separatorHeight = 5;
  return {-1, type == separator ? separatorHeight : -1};
}

void registerContainerClasses() {
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
      .method<"contentSize", &ScrollView::contentSize>();
  NativeClass<Box>("NSBox", "NSView")
      .method<"setBoxType:", &Box::setBoxType>()
      .method<"intrinsicContentSize", &Box::intrinsicContentSize>();
}

} // namespace desktop
