#include "desktop/drawing/Shapes.hpp"

#include <algorithm>

namespace desktop {
namespace {

void drawPlainIcon(Svg& svg, CGRect rect) {
  const double side = std::min(rect.size.width, rect.size.height);
  const CGRect square = {{middleX(rect) - side / 2, middleY(rect) - side / 2}, {side, side}};
  svg.rectangle(insetBy(square, side * 0.1), side * 0.18, "well");
  svg.rectangle(insetBy(square, side * 0.1), side * 0.18, "line controlEdge");
}

} // namespace

void drawImage(Svg& svg, const Image& image, CGRect rect, std::string_view classes) {
  if (image.bytes.empty()) return drawPlainIcon(svg, rect);
  // Sharp on a screen with two pixels to a point.
  const std::string_view png = image.png(2 * std::max(rect.size.width, rect.size.height));
  if (png.empty()) return;
  image.isTemplate ? svg.stencil(png, rect, classes) : svg.image(png, rect);
}

} // namespace desktop
