/// How much room text takes: fixed widths, close to those of the system font.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace desktop {

/// The system font in a weight and size.
struct Typeface {
  double size = 13;
  bool bold = false;
};

/// In points, not rounded.
double textWidth(std::u16string_view text, Typeface face);
/// Whole points from one line to the next.
double lineHeight(Typeface face);

/// The text, or as much of its beginning and end around an ellipsis as the width allows.
std::u16string shortenedInMiddle(const std::u16string& text, Typeface face, double width);
/// Broken at spaces so that each line fits, where its words do.
std::vector<std::u16string> wrapped(const std::u16string& text, Typeface face, double width);

} // namespace desktop
