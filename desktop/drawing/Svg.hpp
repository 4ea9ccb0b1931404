/// Writes a picture as SVG, one element after the other, each over those before it.
///
/// Coordinates are points from the top left corner of the page, y downwards. How elements look is said by classes,
/// which `Style.hpp` lists.
#pragma once

#include "desktop/appkit/FontMetrics.hpp"
#include "platform/Geometry.hpp"

#include <string>
#include <string_view>

namespace desktop {

/// Short, and the same everywhere: two decimals at most.
std::string svgNumber(double number);
// The attribute ` data-NAME="VALUE"` of a group, for programs that show the picture: what it is about.
std::string dataAttribute(const char* name, std::u16string_view value);
std::string dataAttribute(const char* name, double value);

CGRect insetBy(CGRect rect, double distance);
double middleX(CGRect rect);
double middleY(CGRect rect);

class Svg {
public:
  explicit Svg(CGSize page);

  void rectangle(CGRect rect, double radius, std::string_view classes);
  void circle(CGPoint centre, double radius, std::string_view classes);
  /// Path data, drawn from `origin`.
  void path(CGPoint origin, std::string_view data, std::string_view classes);
  // One line of text, halfway up at the height of the point, which is where the line begins, its middle or its end.
  // Viewers stretch their font to the width that the typeface has here; where one does not, the line holds at its
  // point.
  void text(std::u16string_view text, CGPoint start, Typeface face, std::string_view classes);
  void centredText(std::u16string_view text, CGPoint middle, Typeface face, std::string_view classes);
  void textEndingAt(std::u16string_view text, CGPoint end, Typeface face, std::string_view classes);
  /// A PNG, as large as fits.
  void image(std::string_view png, CGRect rect);
  /// Only the shape of the PNG, in the colour of the classes.
  void stencil(std::string_view png, CGRect rect, std::string_view classes);

  // Each writes a definition and answers the attribute of a group that goes by it.
  std::string clip(CGRect rect, double radius);
  std::string shadow(CGSize offset, double radius, double opacity);

  /// Nothing lies over what is drawn now: the user can act on it.
  bool isReachable = false;
  /// The attribute of a group that is a part of the screen to the user, for pages that show the picture and let their
  /// visitors act on it. It says what the part is and what it is called: ` data-checkbox="Bold (Ctrl+B)"`. None where
  /// the user cannot act.
  std::string mark(const char* kind, std::u16string_view name) const;

  /// The whole picture. Nothing can be drawn afterwards.
  std::string finished() &&;

private:
  friend class Group;
  void line(std::u16string_view text, CGPoint point, const char* anchor, Typeface face, std::string_view classes);
  std::string newName();

  std::string code;
  int names = 0;
};

/// What is drawn while it lives belongs to a group with these attributes; without any there is no group.
class Group {
public:
  Group(Svg& picture, const std::string& attributes);
  ~Group();
  Group(const Group&) = delete;
  Group& operator=(const Group&) = delete;

private:
  Svg& svg;
  bool hasElement;
};

/// A marked group on which the user acts by a click anywhere in its frame.
class Target {
public:
  Target(Svg& svg, const char* kind, std::u16string_view name, CGRect frame);

private:
  Group group;
};

} // namespace desktop
