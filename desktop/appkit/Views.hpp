/// The stand-in's views: what a window shows, and what a drawing of it needs to know.
///
/// A view owns its subviews; everything else that points at a view does not. Frames are in points, in the superview's
/// coordinates: y runs upwards unless the superview is flipped. `Layout.hpp` gives them, and tells them from the top.
#pragma once

#include "desktop/appkit/ConstraintSolver.hpp"
#include "desktop/appkit/FontMetrics.hpp"
#include "desktop/appkit/Image.hpp"
#include "platform/Appearance.hpp"

#include <deque>
#include <functional>

namespace desktop {

struct Constraint;

struct Color : Object {
  enum class Ink { Black, Label, SecondaryLabel };
  Ink ink = Ink::Black;

  /// Lasts as long as the colour; colours last for ever.
  CGColorRef asCGColor() { return reinterpret_cast<CGColorRef>(this); }
};

struct Font : Object {
  Typeface face;
};

/// What a layer-backed view draws into.
struct Layer : Object {
  /// None for no shadow.
  const Color* shadowColor = nullptr;
  float shadowOpacity = 0;
  CGFloat shadowRadius = 3;
  /// Upwards for positive heights.
  CGSize shadowOffset{0, -3};
  CGFloat cornerRadius = 0;
  BOOL masksToBounds = false;

  void setShadowColor(CGColorRef color) { shadowColor = reinterpret_cast<const Color*>(color); }
  void setShadowOpacity(float value) { shadowOpacity = value; }
  void setShadowRadius(CGFloat value) { shadowRadius = value; }
  void setShadowOffset(CGSize value) { shadowOffset = value; }
  void setCornerRadius(CGFloat value) { cornerRadius = value; }
  void setMasksToBounds(BOOL value) { masksToBounds = value; }
};

enum class Axis { Horizontal, Vertical };

struct View : Object {
  /// From the back to the front. A double-ended queue, so that taking them out one by one from the first takes linear
  /// time.
  std::deque<Ref<View>> subviews;
  View* superview = nullptr;
  CGRect frame{};
  BOOL translatesMask = true;
  /// By its superview, a stack.
  bool isArranged = false;
  NSUInteger autoresizingMask = 0;
  Ref<String> itsIdentifier;
  Ref<Layer> itsLayer;
  /// How firmly the view holds its content's width and height, up to 1000.
  float compressionResistance[2] = {750, 750};
  /// Active constraints between this view, its subviews or both.
  std::vector<Ref<Constraint>> constraints;

  View();
  ~View();
  View* initWithFrame(CGRect value);
  View* initWithCoder(id /*coder*/) { return this; }
  BOOL isFlipped() const { return false; }
  /// -1 along an axis for a view that does not mind.
  CGSize intrinsicContentSize() const { return {-1, -1}; }
  void setTranslatesMask(BOOL value) { translatesMask = value; }
  void setAutoresizingMask(NSUInteger value) { autoresizingMask = value; }
  void setFrame(CGRect value) { frame = value; }
  CGSize fittingSize();
  void layoutSubtreeIfNeeded();
  void addSubview(View* view);
  void removeFromSuperview();
  void setWantsLayer(BOOL value);
  Layer* layer() const { return itsLayer.get(); }
  void setIdentifier(String* value) { itsIdentifier = shared(value); }
  String* identifier() const { return itsIdentifier.get(); }
  /// Along the horizontal (0) or the vertical axis (1).
  void setCompressionResistance(float priority, NSInteger axis);
  /// Defined with the anchors.
  template <class Anchor, Axis axis, Edge edge> Ref<Anchor> anchor();
};

/// A view that the user acts on, or that shows one value.
struct Control : View {
  Ref<Font> font;
  NSUInteger lineBreakMode = 2;

  void setFont(Font* value) { font = shared(value); }
  void setLineBreakMode(NSUInteger value) { lineBreakMode = value; }
  /// The system font at its size of 13 unless another one was set.
  Typeface face() const { return font ? font->face : Typeface(); }
};

/// A label.
struct TextField : Control {
  static constexpr NSUInteger wordWrapping = 0;
  static constexpr NSUInteger truncatingMiddle = 5;

  Ref<String> text;
  /// None for the label colour.
  const Color* textColor = nullptr;
  NSInteger maximumNumberOfLines = 1;

  static Ref<TextField> labelWithString(String* value);
  void setTextColor(Color* value) { textColor = value; }
  void setMaximumNumberOfLines(NSInteger value) { maximumNumberOfLines = value; }
  CGSize intrinsicContentSize() const;
  /// The text as it is seen: wrapped into lines or shortened in its middle for the width of the frame.
  std::vector<std::u16string> shownLines() const;
};

struct Button : Control {
  static constexpr NSUInteger switchType = 3;
  static constexpr NSUInteger inlineBezel = 15;
  /// From a checkbox's left edge to its title: the square and a gap.
  static constexpr CGFloat checkboxTitleInset = 20;

  Ref<String> title;
  Ref<Image> image;
  NSUInteger imagePosition = 0;
  NSUInteger type = 7;
  NSUInteger bezelStyle = 1;
  const Color* tint = nullptr;
  NSInteger itsState = 0;
  /// Not owned, as on the platform.
  id target = nullptr;
  SEL action = nullptr;

  static Ref<Button> buttonWithTitle(String* title, id target, SEL action);
  static Ref<Button> checkboxWithTitle(String* title, id target, SEL action);
  void setButtonType(NSUInteger value) { type = value; }
  void setBezelStyle(NSUInteger value) { bezelStyle = value; }
  void setContentTintColor(Color* value) { tint = value; }
  void setTitle(String* value) { title = shared(value); }
  void setImage(Image* value) { image = shared(value); }
  void setImagePosition(NSUInteger value) { imagePosition = value; }
  /// On for everything but 0, since no button here has a mixed state.
  void setState(NSInteger value) { itsState = value != 0 ? 1 : 0; }
  NSInteger state() const { return itsState; }
  CGSize intrinsicContentSize() const;

  bool isCheckbox() const { return type == switchType; }
  bool isOn() const { return itsState != 0; }
  /// The user presses it: a checkbox changes its state, and then the action is sent.
  void press();
};

struct ImageView : Control {
  /// None for an empty view.
  Ref<Image> image;
  NSUInteger scaling = 0;

  void setImage(Image* value) { image = shared(value); }
  void setImageScaling(NSUInteger value) { scaling = value; }
  CGSize intrinsicContentSize() const;
};

struct Box : View {
  static constexpr NSUInteger separator = 2;

  NSUInteger type = 0;

  void setBoxType(NSUInteger value) { type = value; }
  CGSize intrinsicContentSize() const;
};

/// Lays its arranged views out in a row or a column, packed towards the start.
struct StackView : View {
  std::deque<View*> arranged;
  Axis orientation = Axis::Horizontal;
  /// A layout attribute: leading (5), centre-X (9) or centre-Y (10).
  NSInteger alignment = 10;
  CGFloat spacing = 8;

  void setOrientation(NSInteger value) { orientation = value == 0 ? Axis::Horizontal : Axis::Vertical; }
  void setAlignment(NSInteger value) { alignment = value; }
  void setSpacing(CGFloat value) { spacing = value; }
  void addArrangedSubview(View* view);
  /// It stays a subview.
  void removeArrangedSubview(View* view);
  Ref<Array> arrangedSubviews() const;
};

/// What of the document the scroll view shows: everything in it is cut off at its bounds.
struct ClipView : View {
  /// As the document is, so that the document's origin is the clip view's.
  BOOL isFlipped() const;
};

/// Overlay scrollers: they take no room.
struct ScrollView : View {
  ClipView* clip = nullptr;
  /// Null until it is set.
  View* document = nullptr;
  BOOL hasVerticalScroller = false;
  BOOL hasHorizontalScroller = false;
  BOOL autohidesScrollers = false;
  BOOL drawsBackground = true;

  ScrollView* init();
  void setHasVerticalScroller(BOOL value) { hasVerticalScroller = value; }
  void setHasHorizontalScroller(BOOL value) { hasHorizontalScroller = value; }
  void setAutohidesScrollers(BOOL value) { autohidesScrollers = value; }
  void setDrawsBackground(BOOL value) { drawsBackground = value; }
  void setDocumentView(View* view);
  CGSize contentSize() const;
};

/// All views inside and the view itself, each before those inside it and in the order in which they were put in.
void forEachView(View& view, const std::function<void(View&)>& visit);

void registerAppearanceClasses();
void registerViewClasses();
void registerControlClasses();
void registerContainerClasses();

} // namespace desktop
