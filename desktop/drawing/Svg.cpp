#include "desktop/drawing/Svg.hpp"

#include "desktop/drawing/Style.hpp"
#include "desktop/foundation/XmlScalars.hpp"

#include <cmath>
#include <cstdio>

namespace desktop {
namespace {

std::string attribute(const char* name, double value) {
  return std::string(" ") + name + "=\"" + svgNumber(value) + '"';
}

std::string attribute(const char* name, std::string_view value) {
  return std::string(" ") + name + "=\"" + std::string(value) + '"';
}

std::string frameOf(CGRect rect) {
  return attribute("x", rect.origin.x) + attribute("y", rect.origin.y) + attribute("width", rect.size.width) +
         attribute("height", rect.size.height);
}

std::string roundedFrameOf(CGRect rect, double radius) {
  return frameOf(rect) + (radius > 0 ? attribute("rx", radius) : "");
}

std::string imageElement(std::string_view png, CGRect rect) {
  return "<image" + frameOf(rect) + " href=\"data:image/png;base64," +
         xmlScalars::dataText(std::as_bytes(std::span(png.data(), png.size()))) + "\"/>";
}

} // namespace

std::string svgNumber(double number) {
  char text[32];
  // -0.001 is rounded to -0, which would be written with its sign; -0 + 0 is 0.
  std::snprintf(text, sizeof text, "%.10g", std::round(number * 100) / 100 + 0.0);
  return text;
}

std::string dataAttribute(const char* name, std::u16string_view value) {
  std::string quoted;
  for (const char byte : xmlScalars::escapedText(value)) {
    // Readers of XML take a tab or line break in an attribute for a blank, unless it is spelt by its number.
    if (byte == '"') {
      quoted += "&quot;";
    } else if (byte == '\t' || byte == '\n' || byte == '\r') {
      quoted += "&#" + std::to_string(byte) + ';';
    } else {
      quoted += byte;
    }
  }
  return " data-" + std::string(name) + "=\"" + quoted + '"';
}

std::string dataAttribute(const char* name, double value) {
  return " data-" + std::string(name) + "=\"" + svgNumber(value) + '"';
}

CGRect insetBy(CGRect rect, double distance) {
  return {{rect.origin.x + distance, rect.origin.y + distance},
          {rect.size.width - 2 * distance, rect.size.height - 2 * distance}};
}

double middleX(CGRect rect) {
  return rect.origin.x + rect.size.width / 2;
}

double middleY(CGRect rect) {
  return rect.origin.y + rect.size.height / 2;
}

Svg::Svg(CGSize page) {
  const std::string width = svgNumber(page.width);
  const std::string height = svgNumber(page.height);
  code = "<svg xmlns=\"http://www.w3.org/2000/svg\"" + attribute("width", width) + attribute("height", height) +
         attribute("viewBox", "0 0 " + width + ' ' + height) + " xml:space=\"preserve\">\n" + styleElements();
}

void Svg::rectangle(CGRect rect, double radius, std::string_view classes) {
  if (rect.size.width <= 0 || rect.size.height <= 0) return;
  code += "<rect" + roundedFrameOf(rect, radius) + attribute("class", classes) + "/>\n";
}

void Svg::circle(CGPoint centre, double radius, std::string_view classes) {
  code += "<circle" + attribute("cx", centre.x) + attribute("cy", centre.y) + attribute("r", radius) +
          attribute("class", classes) + "/>\n";
}

void Svg::path(CGPoint origin, std::string_view data, std::string_view classes) {
  const std::string move = "translate(" + svgNumber(origin.x) + ' ' + svgNumber(origin.y) + ')';
  code += "<path" + attribute("transform", move) + attribute("d", data) + attribute("class", classes) + "/>\n";
}

void Svg::text(std::u16string_view text, CGPoint start, Typeface face, std::string_view classes) {
  line(text, start, "", face, classes);
}

void Svg::centredText(std::u16string_view text, CGPoint middle, Typeface face, std::string_view classes) {
  line(text, middle, " text-anchor=\"middle\"", face, classes);
}

void Svg::textEndingAt(std::u16string_view text, CGPoint end, Typeface face, std::string_view classes) {
  line(text, end, " text-anchor=\"end\"", face, classes);
}

void Svg::line(std::u16string_view text, CGPoint point, const char* anchor, Typeface face, std::string_view classes) {
  if (text.empty()) return;
  // A capital letter is 0.7 of the size high, and SVG places a line by its foot.
  const double baseline = point.y + 0.35 * face.size;
  code += "<text" + attribute("x", point.x) + attribute("y", baseline) + anchor + attribute("font-size", face.size) +
          (face.bold ? attribute("font-weight", "700") : "") + attribute("textLength", textWidth(text, face)) +
          " lengthAdjust=\"spacingAndGlyphs\"" + attribute("class", classes) + '>' + xmlScalars::escapedText(text) +
          "</text>\n";
}

void Svg::image(std::string_view png, CGRect rect) {
  code += imageElement(png, rect) + '\n';
}

void Svg::stencil(std::string_view png, CGRect rect, std::string_view classes) {
  const std::string name = newName();
  code += "<mask" + attribute("id", name) + " style=\"mask-type:alpha\">" + imageElement(png, rect) + "</mask>\n";
  code += "<rect" + frameOf(rect) + attribute("mask", "url(#" + name + ')') + attribute("class", classes) + "/>\n";
}

std::string Svg::clip(CGRect rect, double radius) {
  const std::string name = newName();
  code += "<clipPath" + attribute("id", name) + "><rect" + roundedFrameOf(rect, radius) + "/></clipPath>\n";
  return attribute("clip-path", "url(#" + name + ')');
}

std::string Svg::shadow(CGSize offset, double radius, double opacity) {
  const std::string name = newName();
  code += "<filter" + attribute("id", name) +
          " x=\"-50%\" y=\"-50%\" width=\"200%\" height=\"200%\" color-interpolation-filters=\"sRGB\">"
          "<feGaussianBlur in=\"SourceAlpha\"" +
          attribute("stdDeviation", radius) + "/><feOffset" + attribute("dx", offset.width) +
          attribute("dy", offset.height) + "/><feComponentTransfer><feFuncA type=\"linear\"" +
          attribute("slope", opacity) +
          "/></feComponentTransfer><feMerge><feMergeNode/><feMergeNode in=\"SourceGraphic\"/></feMerge></filter>\n";
  return attribute("filter", "url(#" + name + ')');
}

std::string Svg::finished() && {
  return std::move(code) + "</svg>\n";
}

std::string Svg::newName() {
  return "part" + std::to_string(++names);
}

std::string Svg::mark(const char* kind, std::u16string_view name) const {
  return isReachable ? dataAttribute(kind, name) : "";
}

Group::Group(Svg& picture, const std::string& attributes) : svg(picture), hasElement(!attributes.empty()) {
  if (hasElement) svg.code += "<g" + attributes + ">\n";
}

Group::~Group() {
  if (hasElement) svg.code += "</g>\n";
}

Target::Target(Svg& svg, const char* kind, std::u16string_view name, CGRect frame) : group(svg, svg.mark(kind, name)) {
  if (svg.isReachable) svg.rectangle(frame, 0, "target");
}

} // namespace desktop
