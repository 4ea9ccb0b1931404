#include "desktop/drawing/Style.hpp"

namespace desktop {
namespace {

struct Shade {
  const char* name;
  const char* property;
  const char* light;
  const char* dark;
};

// Where light and dark are the same, there is no dark one.
constexpr Shade shades[] = {
    {"skyTop", "stop-color", "#3f7fc4", "#0d1b38"},
    {"skyMiddle", "stop-color", "#8fb8e0", "#263a66"},
    {"skyBottom", "stop-color", "#f0c9b4", "#6b4a72"},
    {"hillTop", "stop-color", "#5d8fc9", "#1b2a52"},
    {"hillBottom", "stop-color", "#2c5a96", "#0b142c"},

    {"menuBar", "fill", "rgba(255,255,255,.55)", "rgba(20,22,30,.5)"},
    {"barLabel", "fill", "rgba(0,0,0,.88)", "rgba(255,255,255,.95)"},
    {"barMark", "fill", "rgba(255,255,255,.55)", "rgba(255,255,255,.22)"},
    {"menu", "fill", "#f3f2f3", "#2d2c30"},

    {"window", "fill", "#ececec", "#323232"},
    {"titleBar", "fill", "#f4f3f4", "#3c3b3c"},
    {"edge", "stroke", "rgba(0,0,0,.18)", "rgba(0,0,0,.75)"},
    {"rim", "stroke", "rgba(255,255,255,.5)", "rgba(255,255,255,.16)"},
    {"closeLight", "fill", "#ff5f57", nullptr},
    {"miniaturizeLight", "fill", "#febc2e", nullptr},
    {"zoomLight", "fill", "#28c840", nullptr},
    {"noLight", "fill", "#d2d1d2", "#5b5a5b"},
    {"lightEdge", "stroke", "rgba(0,0,0,.14)", "rgba(0,0,0,.25)"},

    {"label", "fill", "rgba(0,0,0,.85)", "rgba(255,255,255,.85)"},
    {"secondaryLabel", "fill", "rgba(0,0,0,.5)", "rgba(255,255,255,.55)"},
    {"disabledLabel", "fill", "rgba(0,0,0,.26)", "rgba(255,255,255,.25)"},
    {"black", "fill", "#000", nullptr},
    {"separator", "fill", "rgba(0,0,0,.12)", "rgba(255,255,255,.13)"},

    {"control", "fill", "#fff", "#656467"},
    {"controlEdge", "stroke", "rgba(0,0,0,.16)", "rgba(0,0,0,.3)"},
    {"checkBox", "fill", "#fff", "#5f5e61"},
    {"accent", "fill", "#007aff", "#0a84ff"},
    {"checkMark", "stroke", "#fff", nullptr},
    {"inactive .accent", "fill", "#d8d7d8", "#5f5e61"},
    {"inactive .checkMark", "stroke", "rgba(0,0,0,.7)", "rgba(255,255,255,.8)"},
    {"onAccent", "fill", "#fff", nullptr},
    {"capsule", "fill", "rgba(0,0,0,.09)", "rgba(255,255,255,.14)"},
    {"well", "fill", "#fff", "#262526"},
    {"chevron", "stroke", "rgba(0,0,0,.5)", "rgba(255,255,255,.55)"},
    {"scroller", "fill", "rgba(0,0,0,.36)", "rgba(255,255,255,.38)"},
};

// After the platform's own fonts come those as narrow, of a wide one its narrow cut, so that lines stay within their
// frames in viewers that do not stretch them. Ligatures are off because some fonts make an arrow of "->", and none is
// named that does so. Lines have no area, and what has a line around it says so with a second class.
constexpr auto shapes =
    "text{font-family:-apple-system,BlinkMacSystemFont,'SF Pro Text','Helvetica Neue',Helvetica,Arial,"
    "'Liberation Sans','DejaVu Sans Condensed',sans-serif;font-variant-ligatures:none;"
    "font-feature-settings:'calt' 0}\n"
    ".line{fill:none;stroke-width:1}\n"
    ".hairline{fill:none;stroke-width:.5}\n"
    ".mark{fill:none;stroke-width:1.9;stroke-linecap:round;stroke-linejoin:round}\n"
    ".hollow{fill-rule:evenodd}\n"
    ".target{fill:none;pointer-events:all}\n";

constexpr auto wallpaper = "<linearGradient id=\"sky\" x2=\"0.25\" y2=\"1\"><stop class=\"skyTop\"/>"
                           "<stop offset=\".6\" class=\"skyMiddle\"/><stop offset=\"1\" class=\"skyBottom\"/>"
                           "</linearGradient>\n"
                           "<linearGradient id=\"hill\" x2=\"0\" y2=\"1\"><stop class=\"hillTop\"/>"
                           "<stop offset=\"1\" class=\"hillBottom\"/></linearGradient>\n";

std::string rule(const Shade& shade, const char* colour) {
  return std::string(".") + shade.name + '{' + shade.property + ':' + colour + "}\n";
}

} // namespace

std::string styleElements() {
  std::string light;
  std::string dark;
  for (const Shade& shade : shades) {
    light += rule(shade, shade.light);
    if (shade.dark != nullptr) dark += rule(shade, shade.dark);
  }
  return "<style>\n" + std::string(shapes) + ".sky{fill:url(#sky)}\n.hill{fill:url(#hill)}\n" + light +
         "@media (prefers-color-scheme:dark){\n" + dark + "}\n</style>\n" + wallpaper;
}

} // namespace desktop
