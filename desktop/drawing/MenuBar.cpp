#include "desktop/drawing/Shapes.hpp"

#include <algorithm>
#include <cmath>

namespace desktop {
namespace {

using namespace std::string_view_literals;

constexpr Typeface plainFace{13, false};
constexpr Typeface boldFace{13, true};
constexpr double middle = menuBarHeight / 2;
constexpr double gap = 20;

/// Every desktop begins its day at 9:41.
std::u16string clockText(std::int64_t nanoseconds) {
  constexpr std::int64_t minute = 60'000'000'000;
  const auto minutes = 9 * 60 + 41 + nanoseconds / minute;
  const auto hour = minutes / 60 % 24;
  char text[16];
  std::snprintf(text, sizeof text, "%d:%02d %s", static_cast<int>((hour + 11) % 12 + 1), static_cast<int>(minutes % 60),
                hour < 12 ? "AM" : "PM");
  return utf16(text).value_or(u"");
}

std::u16string keyText(const String* keyEquivalent) {
  std::u16string key = unitsOf(keyEquivalent);
  if (key.empty()) return key;
  if (key.front() >= u'a' && key.front() <= u'z') key.front() = static_cast<char16_t>(key.front() - u'a' + u'A');
  return u"\u2318" + key;
}

/// The status item's menu, hanging from the menu bar.
class OpenMenu {
public:
  OpenMenu(const Menu& menu, CGPoint corner, double pageWidth) : items(menu.items) {
    for (const auto& item : items) {
      const double key = textWidth(keyText(item->keyEquivalent.get()), plainFace);
      const double text = textWidth(unitsOf(item->title.get()), plainFace) + (key > 0 ? key + 2 * gap : 0);
      frame.size.width = std::max(frame.size.width, std::ceil(text) + 2 * inset);
      frame.size.height += heightOf(*item);
    }
    frame.size.height += 2 * padding;
    frame.origin = {std::max(0.0, std::min(corner.x, pageWidth - frame.size.width - 6)), corner.y};
  }

  void draw(Svg& svg) const {
    const Group menu(svg, svg.mark("menu", u"Tarnwick"));
    drawSurface(svg, frame, 6, "menu");
    CGRect row{{frame.origin.x + inset, frame.origin.y + padding}, {frame.size.width - 2 * inset, 0}};
    for (const auto& item : items) {
      row.size.height = heightOf(*item);
      drawItem(svg, *item, row);
      row.origin.y += row.size.height;
    }
  }

private:
  static constexpr double padding = 5;
  static constexpr double inset = 14;

  static double heightOf(const MenuItem& item) { return item.isSeparator ? 11 : 22; }

  static void drawItem(Svg& svg, const MenuItem& item, CGRect row) {
    if (item.isSeparator) {
      svg.rectangle({{row.origin.x, row.origin.y + 5}, {row.size.width, 1}}, 0, "separator");
      return;
    }
    const CGRect whole{{row.origin.x - inset, row.origin.y}, {row.size.width + 2 * inset, row.size.height}};
    std::optional<Target> entry;
    if (item.enabled) entry.emplace(svg, "entry", unitsOf(item.title.get()), whole);
    svg.text(unitsOf(item.title.get()), {row.origin.x, middleY(row)}, plainFace,
             item.enabled ? "label" : "disabledLabel");
    svg.textEndingAt(keyText(item.keyEquivalent.get()), {row.origin.x + row.size.width, middleY(row)}, plainFace,
                     item.enabled ? "secondaryLabel" : "disabledLabel");
  }

  const std::vector<Ref<MenuItem>>& items;
  CGRect frame{};
};

double widthOf(const StatusItem& item) {
  constexpr double square = 30;
  const Button& button = *item.itsButton;
  return button.image ? square : std::ceil(textWidth(unitsOf(button.title.get()), plainFace)) + 16;
}

void drawStatusItem(Svg& svg, const StatusItem& item, CGRect frame, bool isOpen) {
  const Target status(svg, "status", u"Tarnwick", frame);
  if (isOpen) svg.rectangle(insetBy(frame, 1), 4, "barMark");
  const Button& button = *item.itsButton;
  if (!button.image) {
    svg.centredText(unitsOf(button.title.get()), {middleX(frame), middle}, plainFace, "barLabel");
    return;
  }
  const CGSize size = button.image->size;
  drawImage(svg, *button.image, {{middleX(frame) - size.width / 2, middle - size.height / 2}, size}, "barLabel");
}

/// Two switches: what the system keeps beside the clock.
void drawControlCentre(Svg& svg, double x) {
  svg.path({x, middle},
           "M2.9 -6.2h9.2a2.6 2.6 0 0 1 0 5.2h-9.2a2.6 2.6 0 0 1 0 -5.2zm9.2 1.2a1.4 1.4 0 0 0 0 2.8"
           "a1.4 1.4 0 0 0 0 -2.8zM2.9 1h9.2a2.6 2.6 0 0 1 0 5.2h-9.2a2.6 2.6 0 0 1 0 -5.2z"
           "m0 1.2a1.4 1.4 0 0 0 0 2.8a1.4 1.4 0 0 0 0 -2.8z",
           "barLabel hollow");
}

/// From the right: clock, system, status items. Answers where they begin.
double drawRightHalf(Svg& svg, const Desktop& desktop, double right, bool menuIsOpen) {
  const std::u16string clock = clockText(desktop.queue.now);
  svg.textEndingAt(clock, {right - 12, middle}, plainFace, "barLabel");
  double x = std::floor(right - 12 - textWidth(clock, plainFace));
  x -= gap + 10;
  drawControlCentre(svg, x);
  x -= 10;
  const AppKit& appKit = desktop.appKit;
  if (appKit.isTerminated) return x;
  for (const StatusItem* item : appKit.statusItems) {
    const double width = widthOf(*item);
    x -= width;
    const bool isOpen = menuIsOpen && item->menu.get() == appKit.statusMenu();
    drawStatusItem(svg, *item, {{x, 0}, {width, menuBarHeight}}, isOpen);
    if (isOpen && item->menu) OpenMenu(*item->menu, {x, menuBarHeight}, right).draw(svg);
  }
  return x;
}

/// The system's own menu stands under a ring.
void drawSystemMenu(Svg& svg) {
  svg.path({21, middle}, "M-6 0a6 6 0 0 1 12 0a6 6 0 0 1 -12 0zM-3.8 0a3.8 3.8 0 0 0 7.6 0a3.8 3.8 0 0 0 -7.6 0z",
           "barLabel hollow");
}

/// As many of them as there is room for. All applications of the desktop have the same.
void drawApplicationMenus(Svg& svg, const std::string& application, double room) {
  double x = 48;
  Typeface face = boldFace;
  const std::u16string name = utf16(application).value_or(u"");
  for (const std::u16string_view title :
       {std::u16string_view(name), u"File"sv, u"Edit"sv, u"View"sv, u"Window"sv, u"Help"sv}) {
    const double width = textWidth(title, face);
    if (x + width > room - gap) return;
    svg.text(title, {x, middle}, face, "barLabel");
    x += width + gap;
    face = plainFace;
  }
}

} // namespace

void drawMenuBar(Svg& svg, const Desktop& desktop, double width, const MenuBarState& state) {
  const auto* const front = desktop.applications.frontmost.get();
  const std::u16string name = front != nullptr ? utf16(front->name).value_or(u"") : u"";
  const Group bar(svg, front != nullptr ? dataAttribute("front", name) : "");
  svg.rectangle({{0, 0}, {width, menuBarHeight}}, 0, "menuBar");
  const double free = drawRightHalf(svg, desktop, width, state.menuIsOpen);
  drawSystemMenu(svg);
  if (state.owner) drawApplicationMenus(svg, state.owner->name, free);
}

} // namespace desktop
