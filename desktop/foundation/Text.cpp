#include "desktop/foundation/Text.hpp"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utf8proc.h>

namespace desktop {
namespace {

constexpr char32_t replacement = 0xFFFD;

std::string composedPiece(const std::string& piece) {
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> result(
      utf8proc_NFC(reinterpret_cast<const utf8proc_uint8_t*>(piece.c_str())), &std::free);
  return result ? std::string(reinterpret_cast<const char*>(result.get())) : piece;
}

} // namespace

bool isLeading(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool isTrailing(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

void append(std::u16string& text, char32_t point) {
  if (point < 0x10000) {
    text.push_back(static_cast<char16_t>(point));
    return;
  }
  text.push_back(static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10)));
  text.push_back(static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF)));
}

bool isSurrogate(char32_t point) {
  return isLeading(point) || isTrailing(point);
}

char32_t nextPoint(std::u16string_view text, std::size_t& at) {
  const char32_t unit = text[at++];
  if (!isLeading(unit) || at == text.size() || !isTrailing(text[at])) return unit;
  return 0x10000 + ((unit - 0xD800) << 10) + (text[at++] - 0xDC00U);
}

std::optional<char32_t> nextPoint(std::string_view text, std::size_t& at) {
  utf8proc_int32_t point = 0;
  const auto left = text.substr(at);
  const auto used = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(left.data()),
                                     static_cast<utf8proc_ssize_t>(left.size()), &point);
  if (used <= 0) return std::nullopt;
  at += static_cast<std::size_t>(used);
  return static_cast<char32_t>(point);
}

std::optional<std::u16string> utf16(std::string_view text) {
  std::u16string units;
  for (std::size_t at = 0; at < text.size();) {
    const auto point = nextPoint(text, at);
    if (!point) return std::nullopt;
    append(units, *point);
  }
  return units;
}

std::string utf8(std::u16string_view text) {
  std::string bytes;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t point = nextPoint(text, at);
    utf8proc_uint8_t encoded[4];
    const auto count = utf8proc_encode_char(static_cast<utf8proc_int32_t>(isSurrogate(point) ? replacement : point),
                                            static_cast<utf8proc_uint8_t*>(encoded));
    bytes.append(reinterpret_cast<const char*>(encoded), static_cast<std::size_t>(count));
  }
  return bytes;
}

bool mayCompose(std::u16string_view text) {
  // Nothing composes with what comes before the combining characters.
  constexpr char16_t firstCombining = 0x300;
  return std::any_of(text.begin(), text.end(), [](char16_t unit) { return unit >= firstCombining; });
}

std::u16string composed(std::u16string_view text) {
  // The library takes UTF-8 up to a NUL. NULs and lone surrogates, which it cannot be given, compose with nothing: what
  // lies between them is composed piece by piece.
  std::u16string result;
  std::u16string piece;
  const auto flush = [&] {
    result += utf16(composedPiece(utf8(piece))).value_or(piece);
    piece.clear();
  };
  for (std::size_t at = 0; at < text.size();) {
    const char32_t point = nextPoint(text, at);
    if (point != 0 && !isSurrogate(point)) {
      append(piece, point);
      continue;
    }
    flush();
    append(result, point);
  }
  flush();
  return result;
}

} // namespace desktop
