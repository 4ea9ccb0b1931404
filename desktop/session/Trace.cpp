#include "desktop/session/Trace.hpp"

#include "desktop/foundation/Text.hpp"

namespace desktop {
namespace {

/// Control characters, and what Unicode takes for the end of a line.
bool mustBeEscaped(char32_t point) {
  return point < 0x20 || (point >= 0x7F && point < 0xA0) || point == 0x2028 || point == 0x2029 || point == '\\';
}

std::string escaped(char byte) {
  switch (byte) {
  case '\t':
    return "\\t";
  case '\n':
    return "\\n";
  case '\r':
    return "\\r";
  case '\\':
    return "\\\\";
  default:
    break;
  }
  constexpr auto digits = "0123456789abcdef";
  const unsigned value = static_cast<unsigned char>(byte);
  return {'\\', 'x', digits[value / 16], digits[value % 16]};
}

} // namespace

std::string escaped(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = at;
    const auto point = nextPoint(text, at);
    if (!point) ++at;
    for (const char byte : text.substr(start, at - start)) {
      if (point && mustBeEscaped(*point)) {
        result += escaped(byte);
      } else {
        result += byte;
      }
    }
  }
  return result;
}

std::string traceLine(const Fact& fact) {
  std::string line;
  for (const std::string& field : fact) {
    if (&field != &fact.front()) line += '\t';
    line += field.empty() ? "-" : escaped(field);
  }
  return line;
}

} // namespace desktop
