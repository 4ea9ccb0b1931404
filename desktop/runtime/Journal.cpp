#include "desktop/runtime/Journal.hpp"

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

} // namespace

std::string codeText(std::uint16_t code) {
  return formatted("0x%02x", static_cast<unsigned>(code));
}

std::string flagsText(std::uint64_t flags) {
  return formatted("0x%" PRIx64, flags);
}

std::string sizeText(double size) {
  return formatted("%g", size);
}

} // namespace desktop
