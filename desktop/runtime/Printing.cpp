#include "desktop/runtime/Printing.hpp"

#include <cstdio>
#include <utf8proc.h>

namespace desktop {
namespace {

/// Control characters, and what Unicode takes for the end of a line.
bool mustBeEscaped(utf8proc_int32_t point) {
  return point < 0x20 || (point >= 0x7F && point < 0xA0) || point == 0x2028 || point == 0x2029;
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

std::string escapedWith(std::string_view text, bool backslashToo) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    utf8proc_int32_t point = 0;
    const auto used = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                       static_cast<utf8proc_ssize_t>(text.size()), &point);
    const auto character = text.substr(0, used > 0 ? static_cast<std::size_t>(used) : 1);
    text.remove_prefix(character.size());
    if (used > 0 && !mustBeEscaped(point) && !(backslashToo && point == '\\')) {
      result += character;
      continue;
    }
    for (const char byte : character)
      result += escaped(byte);
  }
  return result;
}

} // namespace

std::string escaped(std::string_view text) {
  return escapedWith(text, true);
}

std::string printable(std::string_view text) {
  constexpr std::size_t longest = 2000;
  constexpr std::size_t end = 300; // says what is wrong with what stands before it
  if (text.size() <= longest) return escapedWith(text, false);
  return escapedWith(text.substr(0, longest - end), false) + "..." + escapedWith(text.substr(text.size() - end), false);
}

void complain(std::string_view sentence) {
  const std::string line = printable(sentence) + '\n';
  std::fflush(stdout); // where both go the same way, things are told in the order in which they happen
  std::fwrite(line.data(), 1, line.size(), stderr);
}

} // namespace desktop
