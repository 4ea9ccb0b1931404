#include "desktop/appkit/FontMetrics.hpp"

#include "desktop/foundation/Text.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace desktop {
namespace {

constexpr std::u16string_view ellipsis = u"\u2026";

// In thousandths of the size: of the characters from the space to the tilde, and of what lies beyond them.
constexpr std::array<short, 95> advances = {
    270, 300, 420, 630, 630, 850, 700, 250, 370, 370, 450, 640, 290, 450, 290, 340, // space to slash
    620, 470, 620, 620, 620, 620, 620, 620, 620, 620, 290, 290, 640, 640, 640, 530, // digits to question mark
    920, 680, 660, 720, 730, 600, 580, 750, 750, 270, 540, 660, 560, 880, 750, 780, // @, A to O
    640, 780, 660, 640, 640, 740, 670, 960, 680, 660, 660, 370, 340, 370, 640, 520, // P to underscore
    330, 560, 620, 570, 620, 580, 350, 620, 600, 250, 250, 550, 250, 880, 600, 600, // grave accent, a to o
    620, 620, 380, 530, 350, 600, 550, 770, 540, 550, 550, 370, 280, 370, 640,      // p to tilde
};
constexpr int otherLetter = 600;
constexpr int fullWidth = 1000;
constexpr int boldExtra = 30;

/// A pair of surrogates is counted at its first.
int advanceOf(char16_t unit) {
  if (unit >= u' ' && unit <= u'~') return advances[unit - u' '];
  const bool isCombining = unit >= 0x300 && unit < 0x370;
  if (unit < u' ' || isCombining || isTrailing(unit)) return 0;
  // From U+2190 on (arrows, the signs of keys, Chinese, emoji) few characters are narrow.
  return unit >= 0x2190 || unit == ellipsis.front() ? fullWidth : otherLetter;
}

} // namespace

double textWidth(std::u16string_view text, Typeface face) {
  const int extra = face.bold ? boldExtra : 0;
  std::int64_t sum = 0;
  for (const char16_t unit : text) {
    const int advance = advanceOf(unit);
    sum += advance > 0 ? advance + extra : 0;
  }
  return static_cast<double>(sum) * face.size / 1000;
}

double lineHeight(Typeface face) {
  return std::ceil(face.size * 1.19);
}

std::u16string shortenedInMiddle(const std::u16string& text, Typeface face, double width) {
  if (textWidth(text, face) <= width) return text;
  const std::u16string_view all = text;
  double room = width - textWidth(ellipsis, face);
  std::size_t head = 0;
  std::size_t tail = all.size();
  for (bool atHead = true; head < tail; atHead = !atHead) {
    const std::size_t unit = atHead ? head : tail - 1;
    const bool isPair = atHead ? isLeading(all[unit]) : isTrailing(all[unit]);
    const std::size_t length = std::min<std::size_t>(isPair ? 2 : 1, tail - head);
    room -= textWidth(all.substr(atHead ? head : tail - length, length), face);
    if (room < 0) break;
    if (atHead) {
      head += length;
    } else {
      tail -= length;
    }
  }
  return std::u16string(all.substr(0, head)).append(ellipsis).append(all.substr(tail));
}

std::vector<std::u16string> wrapped(const std::u16string& text, Typeface face, double width) {
  std::vector<std::u16string> lines(1);
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(u' ', begin), text.size());
    const auto word = text.substr(begin, end - begin);
    const auto longer = begin == 0 ? word : lines.back() + u' ' + word;
    if (begin == 0 || textWidth(longer, face) <= width) {
      lines.back() = longer;
    } else {
      lines.push_back(word);
    }
    begin = end + 1;
  }
  return lines;
}

} // namespace desktop
