#include "desktop/session/Trace.hpp"

#include <array>
#include <cinttypes>
#include <cstdio>

namespace desktop {

namespace {

template <class Number> std::string formatted(const char* format, Number number) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), format, number);
  return text.data();
}

std::string escaped(char character) {
  switch (character) {
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
  const unsigned byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7f ? formatted("\\x%02x", byte) : std::string(1, character);
}

} // namespace

std::string escaped(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (const char character : text)
    result += escaped(character);
  return result;
}

std::string traceLine(const std::vector<std::string>& fields) {
  std::string line;
  for (const std::string& field : fields) {
    if (&field != &fields.front()) line += '\t';
    line += field.empty() ? "-" : escaped(field);
  }
  return line;
}

std::string traceCode(std::uint16_t code) {
  return formatted("0x%02x", static_cast<unsigned>(code));
}

std::string traceFlags(std::uint64_t flags) {
  return formatted("0x%" PRIx64, flags);
}

std::string traceSize(double size) {
  return formatted("%g", size);
}

} // namespace desktop
