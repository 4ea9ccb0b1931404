#include "desktop/drawing/Parts.hpp"

namespace desktop {
namespace {

std::size_t bigEndian(std::string_view bytes, std::size_t at) {
  std::size_t number = 0;
  for (std::size_t index = at; index < at + 4; ++index)
    number = number << 8 | static_cast<unsigned char>(bytes[index]);
  return number;
}

/// Its width; 0 for none, and for one that ends before it.
double pixelsOf(std::string_view png) {
  constexpr std::size_t width = 16;
  return png.size() < width + 4 ? 0 : static_cast<double>(bigEndian(png, width));
}

/// Of the pictures in an icon file the smallest that is large enough, else the largest; empty when there is none.
std::string_view pictureIn(std::string_view icns, double enough) {
  const auto suitsBetter = [&](std::string_view one, std::string_view other) {
    if (pixelsOf(other) < enough) return pixelsOf(one) > pixelsOf(other);
    return pixelsOf(one) >= enough && pixelsOf(one) < pixelsOf(other);
  };
  constexpr std::size_t header = 8;
  std::string_view best;
  for (std::size_t at = header; at + header <= icns.size();) {
    const std::size_t length = bigEndian(icns, at + 4);
    if (length < header || length > icns.size() - at) break;
    const auto body = icns.substr(at + header, length - header);
    at += length;
    if (isPng(body) && suitsBetter(body, best)) best = body;
  }
  return best;
}

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
  const std::string_view png =
      isPng(image.bytes) ? image.bytes : pictureIn(image.bytes, 2 * std::max(rect.size.width, rect.size.height));
  if (png.empty()) return;
  image.isTemplate ? svg.stencil(png, rect, classes) : svg.image(png, rect);
}

} // namespace desktop
