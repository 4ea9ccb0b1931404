#include "settings/MappingsWindowController.hpp"
#include "settings/Views.hpp"
#include "settings/WindowSizing.hpp"

#include "platform/RuntimeClass.hpp"

namespace tarnwick {

using namespace platform;

namespace {

NSScrollView makeScrollView() {
  auto scrollView = NSScrollView::make();
  scrollView.setTranslatesAutoresizingMaskIntoConstraints(NO);
  scrollView.setHasVerticalScroller(YES);
  scrollView.setHasHorizontalScroller(NO);
  scrollView.setAutohidesScrollers(YES);
  scrollView.setDrawsBackground(NO);
  return scrollView;
}

/// The frame casts the icon's shadow: the icon itself is clipped to its rounded corners.
NSView makeIconFrame() {
  auto frame = NSView::make();
  frame.setTranslatesAutoresizingMaskIntoConstraints(NO);
  frame.setWantsLayer(YES);
  const CALayer layer = frame.layer();
  layer.setShadowColor(NSColor::blackColor().CGColor());
  layer.setShadowOpacity(0.18F);
  layer.setShadowRadius(10);
  layer.setShadowOffset({0, -2});
  return frame;
}

/// Empty when the bundle's icon cannot be read as an image.
NSImage applicationIcon() {
  const NSURL file = NSBundle::mainBundle().URLForResource("AppIcon", "icns");
  if (file) return NSImage::withContentsOfURL(file);
  return NSImage::imageNamed({share, NSImageNameApplicationIcon});
}

NSImageView makeIconView() {
  auto view = NSImageView::make();
  view.setTranslatesAutoresizingMaskIntoConstraints(NO);
  view.setImage(applicationIcon());
  view.setImageScaling(NSImageScaleProportionallyUpOrDown);
  view.setWantsLayer(YES);
  const CALayer layer = view.layer();
  layer.setCornerRadius(16);
  layer.setMasksToBounds(YES);
  return view;
}

/// The view covers the other one, from edge to edge.
void pinEdges(const NSView& view, const NSView& other, std::vector<NSLayoutConstraint>& constraints) {
  constraints.push_back(view.leadingAnchor().constraintEqualToAnchor(other.leadingAnchor()));
  constraints.push_back(view.trailingAnchor().constraintEqualToAnchor(other.trailingAnchor()));
  constraints.push_back(view.topAnchor().constraintEqualToAnchor(other.topAnchor()));
  constraints.push_back(view.bottomAnchor().constraintEqualToAnchor(other.bottomAnchor()));
}

} // namespace

MappingsWindowController::FlippedView MappingsWindowController::FlippedView::make() {
  runtimeClass();
  return platform::make<"MappingsWindowController.FlippedView", "initWithFrame:", FlippedView>(NSRect{});
}

Class MappingsWindowController::FlippedView::runtimeClass() {
  static const Class registered = RuntimeClass<void, "MappingsWindowController.FlippedView", "NSView">()
                                      .method<"initWithFrame:", &FlippedView::initWithFrame>()
                                      .method<"initWithCoder:", &FlippedView::initWithCoder>()
                                      .method<"isFlipped", &FlippedView::isFlipped>()
                                      .registered();
  return registered;
}

id MappingsWindowController::FlippedView::initWithFrame(id self, NSRect frame) {
  return sendSuper<"NSView", "initWithFrame:", id>(self, frame);
}

id MappingsWindowController::FlippedView::initWithCoder(id self, id coder) {
  return sendSuper<"NSView", "initWithCoder:", id>(self, coder);
}

void MappingsWindowController::setupContent() {
  const NSView content = window().contentView();
  if (!content) return;

  settingsScrollView = makeScrollView();
  settingsDocumentView = FlippedView::make();
  if (!settingsDocumentView) return;
  settingsDocumentView.setTranslatesAutoresizingMaskIntoConstraints(NO);
  settingsDocumentView.setAutoresizingMask(NSViewWidthSizable);
  settingsScrollView.setDocumentView(settingsDocumentView);

  const auto iconFrame = makeIconFrame();
  const auto icon = makeIconView();
  iconFrame.addSubview(icon);

  settingsStack = makeColumn(NSLayoutAttributeLeading, 10);
  settingsStack.setTranslatesAutoresizingMaskIntoConstraints(NO);
  addRows();

  content.addSubview(settingsScrollView);
  settingsDocumentView.addSubview(iconFrame);
  settingsDocumentView.addSubview(settingsStack);
  std::vector<NSLayoutConstraint> constraints{
      iconFrame.topAnchor().constraintEqualToAnchor(settingsDocumentView.topAnchor(), iconTopInset),
      iconFrame.centerXAnchor().constraintEqualToAnchor(settingsDocumentView.centerXAnchor()),
      iconFrame.widthAnchor().constraintEqualToConstant(iconSize),
      iconFrame.heightAnchor().constraintEqualToConstant(iconSize),
      settingsStack.leadingAnchor().constraintEqualToAnchor(settingsDocumentView.leadingAnchor(), settingsInset),
      settingsStack.trailingAnchor().constraintEqualToAnchor(settingsDocumentView.trailingAnchor(), -settingsInset),
      settingsStack.topAnchor().constraintEqualToAnchor(iconFrame.bottomAnchor(), settingsInset),
      settingsStack.bottomAnchor().constraintEqualToAnchor(settingsDocumentView.bottomAnchor(), -settingsInset),
  };
  pinEdges(settingsScrollView, content, constraints);
  pinEdges(icon, iconFrame, constraints);
  NSLayoutConstraint::activateConstraints(NSArray::of(constraints));
  updateScrollLayout();
}

} // namespace tarnwick
