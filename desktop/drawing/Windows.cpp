#include "desktop/drawing/Shapes.hpp"

#include <algorithm>
#include <cmath>

namespace desktop {
namespace {

constexpr double windowRadius = 10;
constexpr double buttonGap = 8;
constexpr Typeface boldFace{13, true};
constexpr Typeface smallFace{11, false};

/// Windows stand on whole points.
CGPoint rounded(CGPoint point) {
  return {std::round(point.x), std::round(point.y)};
}

/// Where the platform puts what it centres: a third of what is left goes above.
CGRect centredOn(CGRect screen, CGSize size) {
  return {rounded({middleX(screen) - size.width / 2, screen.origin.y + (screen.size.height - size.height) / 3}), size};
}

/// The platform's buttons for closing, miniaturizing and zooming, which only an active window has in colour.
void drawTrafficLights(Svg& svg, const Window& window, CGRect bar, bool isActive) {
  struct Light {
    NSUInteger needs;
    const char* classes;
  };
  constexpr NSUInteger NSWindowStyleMaskMiniaturizable = 4;
  constexpr Light lights[] = {{platform::NSWindowStyleMaskClosable, "closeLight"},
                              {NSWindowStyleMaskMiniaturizable, "miniaturizeLight"},
                              {platform::NSWindowStyleMaskResizable, "zoomLight"}};
  CGPoint centre{bar.origin.x + 14, middleY(bar)};
  for (const Light& light : lights) {
    std::optional<Target> close;
    if (&light == lights)
      close.emplace(svg, "close", unitsOf(window.title.get()), CGRect{{centre.x - 7, centre.y - 7}, {14, 14}});
    const bool isLit = isActive && (window.styleMask & light.needs) != 0;
    svg.circle(centre, 6, isLit ? light.classes : "noLight");
    svg.circle(centre, 5.75, "hairline lightEdge");
    centre.x += 20;
  }
}

/// Background and title; the corners are rounded by whoever cuts them off.
void drawTitleBar(Svg& svg, CGRect bar, const String* title, bool isActive) {
  svg.rectangle(bar, 0, "titleBar");
  svg.rectangle({{bar.origin.x, bar.origin.y + bar.size.height - 1}, {bar.size.width, 1}}, 0, "separator");
  svg.centredText(unitsOf(title), {middleX(bar), middleY(bar)}, boldFace, isActive ? "label" : "disabledLabel");
}

CGRect topOf(CGRect frame, double height) {
  return {frame.origin, {frame.size.width, height}};
}

/// Centred lines from `top` on. Answers where they end.
double drawParagraph(Svg& svg, const String* text, CGRect inside, double top, Typeface face) {
  if (text == nullptr) return top;
  for (const auto& line : wrapped(text->text, face, inside.size.width)) {
    svg.centredText(line, {middleX(inside), top + lineHeight(face) / 2}, face, "label");
    top += lineHeight(face);
  }
  return top;
}

double paragraphHeight(const String* text, double width, Typeface face) {
  return text == nullptr ? 0 : lineHeight(face) * static_cast<double>(wrapped(text->text, face, width).size());
}

/// Where the buttons of an alert stand: two short ones side by side, the first on the right; others below each other.
class AlertButtons {
public:
  AlertButtons(const Alert& alert, double room) : buttons(alert.buttons), width(room) {
    const auto isShort = [&](const auto& each) {
      return textWidth(unitsOf(each->title.get()), {}) + 20 <= (room - buttonGap) / 2;
    };
    isRow = buttons.size() == 2 && std::all_of(buttons.begin(), buttons.end(), isShort);
  }

  double totalHeight() const {
    const auto rows = static_cast<double>(isRow ? 1 : buttons.size());
    return rows * (height + buttonGap) - buttonGap;
  }

  void draw(Svg& svg, CGPoint origin) const {
    const double each = isRow ? (width - buttonGap) / 2 : width;
    CGRect frame{{origin.x + width - each, origin.y}, {each, height}};
    for (const auto& button : buttons) {
      const Target target(svg, "button", unitsOf(button->title.get()), frame);
      drawPushButton(svg, frame, button->title.get(), button.get() == buttons.front().get());
      if (isRow) {
        frame.origin.x -= each + buttonGap;
      } else {
        frame.origin.y += height + buttonGap;
      }
    }
  }

private:
  static constexpr double height = 28;
  const std::vector<Ref<Button>>& buttons;
  double width;
  bool isRow;
};

std::u16string folderName(const URL* folder) {
  if (folder == nullptr) return u"";
  return utf16(std::filesystem::path(folder->path).filename().string()).value_or(u"");
}

/// Ways back and forward, the folder that is shown, and a field to search it.
void drawPanelTools(Svg& svg, const OpenPanel& panel, CGRect bar) {
  constexpr double margin = 16;
  svg.path({bar.origin.x + 20, middleY(bar)}, "M4 -5L-1 0L4 5M22 -5L27 0L22 5", "mark chevron");
  const CGRect folder{{middleX(bar) - 90, middleY(bar) - 11}, {180, 22}};
  drawPushButton(svg, folder, nullptr, false);
  svg.text(folderName(panel.directory.get()), {folder.origin.x + 10, middleY(folder)}, {}, "label");
  svg.path({folder.origin.x + folder.size.width - 14, middleY(folder)}, "M-3 -2L0 -5L3 -2M-3 2L0 5L3 2",
           "line chevron");
  const double searchWidth = std::min(114.0, (bar.size.width - folder.size.width) / 2 - buttonGap - margin);
  const CGRect search{{bar.origin.x + bar.size.width - margin - searchWidth, middleY(bar) - 11}, {searchWidth, 22}};
  svg.rectangle(search, 6, "capsule");
  svg.text(u"Search", {search.origin.x + 10, middleY(search)}, {}, "secondaryLabel");
}

/// The applications in the folder that is shown.
void drawPanelList(Svg& svg, const OpenPanel& panel, CGRect list) {
  svg.rectangle(list, 0, "well");
  svg.rectangle(topOf(list, 1), 0, "separator");
  const auto icon = create<Image>();
  CGRect row = topOf(insetBy(list, 8), 24);
  for (const auto& [path, identifier] : InstalledBundles::current()) {
    const std::filesystem::path file = path;
    if (!panel.directory || file.parent_path() != panel.directory->path) continue;
    if (row.origin.y + row.size.height > list.origin.y + list.size.height) return;
    const Target target(svg, "choose", utf16(path).value_or(u""), row);
    drawImage(svg, *icon, {{row.origin.x, row.origin.y}, {row.size.height, row.size.height}}, "label");
    svg.text(utf16(file.stem().string()).value_or(u""), {row.origin.x + 30, middleY(row)}, {}, "label");
    row.origin.y += row.size.height;
  }
}

void drawPanelButtons(Svg& svg, const OpenPanel& panel, CGRect bar) {
  constexpr double width = 120;
  constexpr double height = 22;
  const Ref<String> cancel = string(u"Cancel");
  const Ref<String> open = panel.prompt ? panel.prompt : string(u"Open");
  CGRect frame{{bar.origin.x + bar.size.width - width - 16, middleY(bar) - height / 2}, {width, height}};
  drawPushButton(svg, frame, open.get(), true);
  frame.origin.x -= width + buttonGap;
  const Target target(svg, "cancel", unitsOf(cancel.get()), frame);
  drawPushButton(svg, frame, cancel.get(), false);
}

} // namespace

void drawSurface(Svg& svg, CGRect frame, double radius, std::string_view classes) {
  {
    const Group raised(svg, svg.shadow({0, 10}, 14, 0.34));
    svg.rectangle(frame, radius, classes);
  }
  svg.rectangle(insetBy(frame, -0.25), radius + 0.25, "hairline edge");
  svg.rectangle(insetBy(frame, 0.5), radius - 0.5, "line rim");
}

void drawWindow(Svg& svg, const Window& window, CGRect screen, bool isActive) {
  CGRect frame = window.frame;
  frame.origin = rounded(
      {screen.origin.x + frame.origin.x, screen.origin.y + screen.size.height - frame.origin.y - frame.size.height});
  const Group whole(svg, svg.mark("window", unitsOf(window.title.get())));
  drawSurface(svg, frame, windowRadius, "window");
  const Group inside(svg, svg.clip(frame, windowRadius));
  CGPoint content = frame.origin;
  if ((window.styleMask & platform::NSWindowStyleMaskTitled) != 0) {
    const CGRect bar = topOf(frame, Window::titleBarHeight);
    drawTitleBar(svg, bar, window.title.get(), isActive);
    drawTrafficLights(svg, window, bar, isActive);
    content.y += bar.size.height;
  }
  {
    const Group views(svg, isActive ? "" : " class=\"inactive\"");
    drawView(svg, *window.contentView(), content);
  }
  svg.rectangle(insetBy(frame, 0.5), windowRadius - 0.5, "line rim");
}

void drawAlert(Svg& svg, const Alert& alert, CGRect screen) {
  constexpr double width = 260;
  constexpr double margin = 16;
  constexpr double iconSide = 64;
  constexpr double room = width - 2 * margin;
  const AlertButtons buttons(alert, room);
  const double icon = 20 + iconSide + 14;
  const double texts = paragraphHeight(alert.message.get(), room, boldFace) + 8 +
                       paragraphHeight(alert.informative.get(), room, smallFace) + 18;
  const CGRect frame = centredOn(screen, {width, icon + texts + buttons.totalHeight() + margin});
  const Group whole(svg, svg.mark("alert", unitsOf(alert.message.get())));
  drawSurface(svg, frame, windowRadius, "window");

  const auto picture = Image::applicationIcon();
  drawImage(svg, *picture, {{middleX(frame) - iconSide / 2, frame.origin.y + 20}, {iconSide, iconSide}}, "label");
  const CGRect inside = insetBy(frame, margin);
  const double message = drawParagraph(svg, alert.message.get(), inside, frame.origin.y + icon, boldFace);
  const double end = drawParagraph(svg, alert.informative.get(), inside, message + 8, smallFace);
  buttons.draw(svg, {inside.origin.x, end + 18});
}

void drawOpenPanel(Svg& svg, const OpenPanel& panel, CGRect screen) {
  constexpr double toolsHeight = 44;
  constexpr double buttonsHeight = 52;
  constexpr double margin = 30;
  const CGSize size{std::clamp(screen.size.width - 2 * margin, 420.0, 720.0),
                    std::clamp(screen.size.height - 2 * margin, 260.0, 440.0)};
  const CGRect frame = centredOn(screen, size);
  const Group whole(svg, svg.mark("panel", unitsOf(panel.title.get())));
  drawSurface(svg, frame, windowRadius, "window");
  const Group inside(svg, svg.clip(frame, windowRadius));
  drawTitleBar(svg, topOf(frame, Window::titleBarHeight), panel.title.get(), true);

  CGRect strip = topOf(frame, toolsHeight);
  strip.origin.y += Window::titleBarHeight;
  if (panel.message) {
    svg.centredText(panel.message->text, {middleX(frame), strip.origin.y + 18}, {}, "label");
    strip.origin.y += 28;
  }
  drawPanelTools(svg, panel, strip);
  CGRect list = strip;
  list.origin.y += toolsHeight;
  list.size.height = frame.origin.y + size.height - buttonsHeight - list.origin.y;
  drawPanelList(svg, panel, list);
  strip.origin.y = list.origin.y + list.size.height;
  strip.size.height = buttonsHeight;
  svg.rectangle(topOf(strip, 1), 0, "separator");
  drawPanelButtons(svg, panel, strip);
  svg.rectangle(insetBy(frame, 0.5), windowRadius - 0.5, "line rim");
}

} // namespace desktop
