/// The stand-in's views: what a window shows, and what a drawing of it needs to know.
///
/// A view owns its subviews; everything else that points at a view does not. Frames are in points, in the superview's
/// coordinates: y runs upwards unless the superview is flipped. `Layout.hpp` gives them, and tells them from the top.
#pragma once

#include "desktop/appkit/Appearance.hpp"
#include "desktop/appkit/ConstraintSolver.hpp"
#include "desktop/foundation/Collections.hpp"
#include "desktop/foundation/Strings.hpp"
#include "platform/View.hpp"

#include <functional>
#include <list>

namespace desktop {

struct Constraint;

// What views begin with.
inline constexpr float NSLayoutPriorityDefaultHigh = 750;
inline constexpr NSUInteger NSBoxPrimary = 0;

enum class Axis { Horizontal, Vertical };
/// The axis that the platform calls by a number; stops the program for any other.
Axis axisOf(NSInteger orientation);

struct View : Object {
  /// From the back to the front.
  std::list<Ref<View>> subviews;
  View* superview = nullptr;
  /// Where it is among its superview's subviews: it leaves in one step, however many there are.
  std::list<Ref<View>>::iterator place;
  CGRect frame{};
  BOOL translatesMask = true;
  /// Whether its superview, a stack, lays it out.
  bool isArranged = false;
  NSUInteger autoresizingMask = 0;
  Ref<String> itsIdentifier;
  Ref<Layer> itsLayer;
  /// How firmly the view holds its content's width and height, up to 1000.
  float compressionResistance[2] = {NSLayoutPriorityDefaultHigh, NSLayoutPriorityDefaultHigh};
  /// What layout (Layout.hpp) found along an axis.
  struct Measure {
    /// The least length at which everything inside has the room that it wants; none where nothing asks for any.
    std::optional<double> fitting;
    /// It holds, here and for everything inside, until something changes.
    bool isKnown = false;
    /// The length at which everything inside was placed, if it is there still.
    std::optional<double> placedAt;
  };
  Measure measures[2];
  /// Active constraints between this view, its subviews or both.
  std::list<Ref<Constraint>> constraints;
  /// Those among its superview's that it is part of: they leave with it.
  std::list<Constraint*> ties;

  View();
  ~View();
  View* initWithFrame(CGRect value);
  View* initWithCoder(id /*coder*/) { return this; }
  BOOL isFlipped() const { return false; }
  /// -1 along an axis for a view that does not mind.
  CGSize intrinsicContentSize() const { return {-1, -1}; }
  void setTranslatesMask(BOOL value);
  void setAutoresizingMask(NSUInteger value) { autoresizingMask = value; }
  void setFrame(CGRect value);
  CGRect itsFrame() const { return frame; }
  Ref<Array> copyOfSubviews() const;
  CGSize fittingSize();
  void layoutSubtreeIfNeeded();
  void addSubview(View* view);
  void removeFromSuperview();
  void setWantsLayer(BOOL value);
  Layer* layer() const { return itsLayer.get(); }
  void setIdentifier(String* value) { itsIdentifier = shared(value); }
  String* identifier() const { return itsIdentifier.get(); }
  void setCompressionResistance(float priority, NSInteger orientation);
  /// To be called when something has changed that the layout of the view or of what is around it may follow from.
  void changed();
  /// Defined with the anchors.
  template <class Anchor, Axis axis, Edge edge> Ref<Anchor> anchor();
};

struct Box : View {
  NSUInteger type = NSBoxPrimary;

  void setBoxType(NSUInteger value);
  CGSize intrinsicContentSize() const;
};

/// Lays those of its subviews that are arranged out in a row or a column, packed towards the start.
struct StackView : View {
  Axis orientation = Axis::Horizontal;
  /// A layout attribute: leading, centre-X or centre-Y.
  NSInteger alignment = platform::NSLayoutAttributeCenterY;
  CGFloat spacing = 8;

  void setOrientation(NSInteger value);
  void setAlignment(NSInteger value);
  void setSpacing(CGFloat value);
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
  View* documentView() const { return document; }
  void setScrollerStyle(NSInteger style);
  CGSize contentSize() const;
};

/// All views inside and the view itself, each before those inside it and in the order in which they were put in.
void forEachView(View& view, const std::function<void(View&)>& visit);

} // namespace desktop
