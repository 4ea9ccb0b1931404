#include "desktop/appkit/Layout.hpp"
#include "desktop/drawing/Shapes.hpp"

#include <algorithm>
#include <cmath>

namespace desktop {
namespace {

/// Where a view stands on the page, when the content of its window begins at `origin`.
CGRect frameOnPage(CGPoint origin, View& view) {
  CGRect frame = frameFromTop(view);
  frame.origin.x += origin.x;
  frame.origin.y += origin.y;
  return frame;
}

const char* classOf(const Color* color) {
  if (color == nullptr) return "label";
  switch (color->ink) {
  case Color::Ink::Black:
    return "black";
  case Color::Ink::SecondaryLabel:
    return "secondaryLabel";
  default:
    return "label";
  }
}

/// One line of text, cut off where its frame ends if the text is longer.
void drawLine(Svg& svg, const std::u16string& line, CGRect frame, Typeface face, const char* classes) {
  std::optional<Group> cut;
  if (textWidth(line, face) > frame.size.width) cut.emplace(svg, svg.clip(frame, 0));
  svg.text(line, {frame.origin.x, middleY(frame)}, face, classes);
}

void drawLabel(Svg& svg, const TextField& label, CGRect frame) {
  frame.size.height = lineHeight(label.face());
  for (const auto& line : label.shownLines()) {
    drawLine(svg, line, frame, label.face(), classOf(label.textColor));
    frame.origin.y += frame.size.height;
  }
}

void drawCheckbox(Svg& svg, const Button& button, CGRect frame) {
  constexpr double side = 14;
  const CGRect square{{frame.origin.x, middleY(frame) - side / 2}, {side, side}};
  if (button.isOn()) {
    svg.rectangle(square, 3.5, "accent");
    svg.path(square.origin, "M3.7 7.5L6 10L10.4 4.2", "mark checkMark");
  } else {
    svg.rectangle(square, 3.5, "checkBox");
    svg.rectangle(insetBy(square, 0.5), 3, "line controlEdge");
  }
  frame.origin.x += Button::checkboxTitleInset;
  frame.size.width -= Button::checkboxTitleInset;
  drawLine(svg, unitsOf(button.title.get()), frame, button.face(), classOf(button.tint));
}

void drawInlineButton(Svg& svg, const Button& button, CGRect frame) {
  svg.rectangle(frame, frame.size.height / 2, "capsule");
  svg.centredText(unitsOf(button.title.get()), {middleX(frame), middleY(frame)}, button.face(), classOf(button.tint));
}

void drawButton(Svg& svg, const Button& button, CGRect frame) {
  const Target target(svg, button.isCheckbox() ? "checkbox" : "button", unitsOf(button.title.get()), frame);
  if (button.isCheckbox()) return drawCheckbox(svg, button, frame);
  if (button.bezelStyle == platform::NSBezelStyleInline) return drawInlineButton(svg, button, frame);
  drawPushButton(svg, frame, button.title.get(), false);
}

void drawItself(Svg& svg, View& view, CGRect frame) {
  if (const auto* label = ifIs<TextField>(&view)) return drawLabel(svg, *label, frame);
  if (const auto* button = ifIs<Button>(&view)) return drawButton(svg, *button, frame);
  if (const auto* picture = ifIs<ImageView>(&view)) {
    if (picture->image) drawImage(svg, *picture->image, frame, "label");
  } else if (const auto* box = ifIs<Box>(&view); box != nullptr && box->type == platform::NSBoxSeparator) {
    svg.rectangle({{frame.origin.x, std::floor(middleY(frame))}, {frame.size.width, 1}}, 0, "separator");
  }
}

/// How much of a scroll view's document is out of sight.
double hiddenHeight(const ScrollView& scroll) {
  const double document = scroll.document != nullptr ? scroll.document->frame.size.height : 0;
  return std::max(0.0, document - scroll.frame.size.height);
}

/// Its length says how much of the document is seen; it lies over the content. It is drawn at its beginning, and
/// `data-travel` says how far it is from there to its end.
void drawScroller(Svg& svg, const ScrollView& scroll, CGRect frame) {
  constexpr double width = 7;
  constexpr double margin = 3;
  const double hidden = hiddenHeight(scroll);
  if (!scroll.hasVerticalScroller || hidden <= 0) return;
  const double track = frame.size.height - 2 * margin;
  const double length = std::max(2 * width, track * frame.size.height / (frame.size.height + hidden));
  const Group scroller(svg, dataAttribute("travel", track - length));
  svg.rectangle({{frame.origin.x + frame.size.width - width - margin, frame.origin.y + margin}, {width, length}},
                width / 2, "scroller");
}

} // namespace

void drawPushButton(Svg& svg, CGRect frame, const String* title, bool isDefault) {
  const double radius = std::min(6.0, frame.size.height / 4);
  {
    const Group raised(svg, svg.shadow({0, 0.5}, 0.6, 0.22));
    svg.rectangle(frame, radius, isDefault ? "accent" : "control");
  }
  if (!isDefault) svg.rectangle(insetBy(frame, 0.25), radius, "hairline controlEdge");
  svg.centredText(unitsOf(title), {middleX(frame), middleY(frame)}, Typeface(), isDefault ? "onAccent" : "label");
}

void drawView(Svg& svg, View& view, CGPoint origin) {
  const CGRect frame = frameOnPage(origin, view);
  std::optional<Group> shadow;
  std::optional<Group> mask;
  if (const Layer* layer = view.layer(); layer != nullptr) {
    const bool hasShadow = layer->shadowColor != nullptr && layer->shadowOpacity > 0;
    const CGSize downwards = {layer->shadowOffset.width, -layer->shadowOffset.height};
    if (hasShadow) shadow.emplace(svg, svg.shadow(downwards, layer->shadowRadius, layer->shadowOpacity));
    if (layer->masksToBounds) mask.emplace(svg, svg.clip(frame, layer->cornerRadius));
  }
  drawItself(svg, view, frame);

  const auto* const scroll = ifIs<ScrollView>(&view);
  std::optional<Group> document;
  if (scroll != nullptr) {
    mask.emplace(svg, svg.clip(frame, 0));
    // Drawn whole: `data-scroll` says how far it is to its end, for those who can move it.
    document.emplace(svg, dataAttribute("scroll", hiddenHeight(*scroll)));
  }
  for (const auto& subview : view.subviews)
    drawView(svg, *subview, origin);
  document.reset();
  if (scroll != nullptr) drawScroller(svg, *scroll, frame);
}

} // namespace desktop
