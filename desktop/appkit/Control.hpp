/// Controls: labels, buttons, checkboxes, images.
#pragma once

#include "desktop/appkit/Image.hpp"
#include "desktop/appkit/View.hpp"
#include "platform/Control.hpp"

namespace desktop {

// What controls begin with.
inline constexpr NSUInteger NSLineBreakByClipping = 2;
inline constexpr NSUInteger NSButtonTypeMomentaryPushIn = 7;
inline constexpr NSUInteger NSBezelStyleRounded = 1;
inline constexpr NSUInteger NSImageScaleProportionallyDown = 0;

/// A view that the user acts on, or that shows one value.
struct Control : View {
  Ref<Font> font;
  NSUInteger lineBreakMode = NSLineBreakByClipping;

  void setFont(Font* value);
  void setLineBreakMode(NSUInteger value);
  /// The system font at its size of 13 unless another one was set.
  Typeface face() const { return font ? font->face : Typeface(); }
};

/// A label.
struct TextField : Control {
  Ref<String> text;
  /// None for the label colour.
  const Color* textColor = nullptr;
  NSInteger maximumNumberOfLines = 1;

  static Ref<TextField> labelWithString(String* value);
  void setTextColor(Color* value) { textColor = value; }
  void setMaximumNumberOfLines(NSInteger value);
  CGSize intrinsicContentSize() const;
  /// The text as it is seen: wrapped into lines or shortened in its middle for the width of the frame.
  std::vector<std::u16string> shownLines() const;
};

struct Button : Control {
  /// From a checkbox's left edge to its title: the square and a gap.
  static constexpr CGFloat checkboxTitleInset = 20;

  Ref<String> title;
  Ref<Image> image;
  /// An image shows only once it has been given a position.
  NSUInteger imagePosition = 0;
  NSUInteger type = NSButtonTypeMomentaryPushIn;
  NSUInteger bezelStyle = NSBezelStyleRounded;
  const Color* tint = nullptr;
  NSInteger itsState = platform::NSControlStateValueOff;
  /// Not owned, as on the platform.
  id target = nullptr;
  SEL action = nullptr;

  static Ref<Button> buttonWithTitle(String* title, id target, SEL action);
  static Ref<Button> checkboxWithTitle(String* title, id target, SEL action);
  void setButtonType(NSUInteger value);
  void setBezelStyle(NSUInteger value);
  void setContentTintColor(Color* value) { tint = value; }
  void setTitle(String* value);
  void setImage(Image* value) { image = shared(value); }
  void setImagePosition(NSUInteger value) { imagePosition = value; }
  /// On for everything but off, since no button here has a mixed state.
  void setState(NSInteger value);
  NSInteger state() const { return itsState; }
  CGSize intrinsicContentSize() const;

  bool isCheckbox() const { return type == platform::NSButtonTypeSwitch; }
  bool isOn() const { return itsState != platform::NSControlStateValueOff; }
  /// The user presses it: a checkbox changes its state, and then the action is sent.
  void press();
  void performClick(id /*sender*/) { press(); }
  SEL itsAction() const { return action; }
};

struct ImageView : Control {
  /// None for an empty view.
  Ref<Image> image;
  NSUInteger scaling = NSImageScaleProportionallyDown;

  void setImage(Image* value);
  void setImageScaling(NSUInteger value) { scaling = value; }
  CGSize intrinsicContentSize() const;
};

} // namespace desktop
