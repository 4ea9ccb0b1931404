#include "desktop/appkit/Control.hpp"

#include "desktop/appkit/AppKit.hpp"

#include <algorithm>
#include <cmath>

namespace desktop {
namespace {

/// What a button shows besides its text: its ends.
constexpr CGFloat pushExtra = 28;
constexpr CGFloat inlineExtra = 16;
constexpr CGFloat checkboxHeight = 16;
constexpr CGFloat pushHeight = 20;
constexpr CGFloat inlineHeight = 18;

Ref<Button> makeButton(String* title, id target, SEL action) {
  auto button = create<Button>();
  button->title = shared(title);
  button->target = target;
  button->action = action;
  return button;
}

} // namespace

void Control::setFont(Font* value) {
  font = shared(value);
  changed();
}

void Control::setLineBreakMode(NSUInteger value) {
  lineBreakMode = value;
  changed();
}

void TextField::setMaximumNumberOfLines(NSInteger value) {
  maximumNumberOfLines = value;
  changed();
}

void Button::setButtonType(NSUInteger value) {
  type = value;
  changed();
}

void Button::setBezelStyle(NSUInteger value) {
  bezelStyle = value;
  changed();
}

void Button::setTitle(String* value) {
  title = shared(value);
  changed();
}

void ImageView::setImage(Image* value) {
  image = shared(value);
  changed();
}

Ref<TextField> TextField::labelWithString(String* value) {
  auto label = create<TextField>();
  label->text = shared(value);
  label->frame.size = label->intrinsicContentSize();
  return label;
}

std::vector<std::u16string> TextField::shownLines() const {
  const std::u16string& all = unitsOf(text.get());
  const double width = frame.size.width;
  if (lineBreakMode == platform::NSLineBreakByTruncatingMiddle) return {shortenedInMiddle(all, face(), width)};
  if (lineBreakMode != platform::NSLineBreakByWordWrapping) return {all};
  auto lines = wrapped(all, face(), width);
  if (maximumNumberOfLines > 0) lines.resize(std::min<std::size_t>(lines.size(), maximumNumberOfLines));
  return lines;
}

CGSize TextField::intrinsicContentSize() const {
  const std::size_t lines = lineBreakMode == platform::NSLineBreakByWordWrapping ? shownLines().size() : 1;
  return {std::ceil(textWidth(unitsOf(text.get()), face())), lineHeight(face()) * static_cast<double>(lines)};
}

Ref<Button> Button::buttonWithTitle(String* title, id target, SEL action) {
  return makeButton(title, target, action);
}

Ref<Button> Button::checkboxWithTitle(String* title, id target, SEL action) {
  auto button = makeButton(title, target, action);
  button->type = platform::NSButtonTypeSwitch;
  return button;
}

CGSize Button::intrinsicContentSize() const {
  const double text = std::ceil(textWidth(unitsOf(title.get()), face()));
  if (isCheckbox()) return {text + Button::checkboxTitleInset, checkboxHeight};
  return bezelStyle == platform::NSBezelStyleInline ? CGSize{text + inlineExtra, inlineHeight}
                                                    : CGSize{text + pushExtra, pushHeight};
}

void Button::setState(NSInteger value) {
  itsState =
      value != platform::NSControlStateValueOff ? platform::NSControlStateValueOn : platform::NSControlStateValueOff;
}

void Button::press() {
  // The action may take the button out of its window and so release it, as that of "Remove" does.
  const auto kept = shared(this);
  if (isCheckbox()) setState(isOn() ? platform::NSControlStateValueOff : platform::NSControlStateValueOn);
  sendAction(action, target, this);
}

CGSize ImageView::intrinsicContentSize() const {
  return image && image->size.width > 0 ? image->size : CGSize{-1, -1};
}

void registerControlClasses() {
  NativeClass<Control>("NSControl", "NSView")
      .method<"setFont:", &Control::setFont>()
      .method<"setLineBreakMode:", &Control::setLineBreakMode>();
  NativeClass<TextField>("NSTextField", "NSControl")
      .classMethod<"labelWithString:", &TextField::labelWithString>()
      .method<"setTextColor:", &TextField::setTextColor>()
      .method<"setMaximumNumberOfLines:", &TextField::setMaximumNumberOfLines>()
      .method<"intrinsicContentSize", &TextField::intrinsicContentSize>();
  NativeClass<Button>("NSButton", "NSControl")
      .classMethod<"buttonWithTitle:target:action:", &Button::buttonWithTitle>()
      .classMethod<"checkboxWithTitle:target:action:", &Button::checkboxWithTitle>()
      .method<"setButtonType:", &Button::setButtonType>()
      .method<"setBezelStyle:", &Button::setBezelStyle>()
      .method<"setContentTintColor:", &Button::setContentTintColor>()
      .method<"setTitle:", &Button::setTitle>()
      .method<"action", &Button::itsAction>()
      .method<"performClick:", &Button::performClick>()
      .method<"setImage:", &Button::setImage>()
      .method<"setImagePosition:", &Button::setImagePosition>()
      .method<"setState:", &Button::setState>()
      .method<"state", &Button::state>()
      .method<"intrinsicContentSize", &Button::intrinsicContentSize>();
  NativeClass<ImageView>("NSImageView", "NSControl")
      .method<"setImage:", &ImageView::setImage>()
      .method<"setImageScaling:", &ImageView::setImageScaling>()
      .method<"intrinsicContentSize", &ImageView::intrinsicContentSize>();
}

} // namespace desktop
