#include "utf8proc.h"

#include <cstddef>
#include <emscripten.h>

// clang-format off
EM_JS(char*, composedByBrowser, (const char* text), {
  const composed = UTF8ToString(text).normalize("NFC");
  const size = lengthBytesUTF8(composed) + 1;
  const copy = _malloc(size);
  stringToUTF8(composed, copy, size);
  return copy;
});
// clang-format on

namespace {

/// The length of a character by its first byte; 0 for a byte that begins none.
int lengthFrom(utf8proc_uint8_t first) {
  if (first < 0x80) return 1;
  if (first < 0xC2) return 0; // within a character, or a needlessly long spelling of ASCII
  if (first < 0xE0) return 2;
  if (first < 0xF0) return 3;
  return first < 0xF5 ? 4 : 0;
}

} // namespace

utf8proc_uint8_t* utf8proc_NFC(const utf8proc_uint8_t* text) {
  return reinterpret_cast<utf8proc_uint8_t*>(composedByBrowser(reinterpret_cast<const char*>(text)));
}

utf8proc_ssize_t utf8proc_iterate(const utf8proc_uint8_t* text, utf8proc_ssize_t size, utf8proc_int32_t* character) {
  const int length = size > 0 ? lengthFrom(text[0]) : 0;
  if (length == 0 || length > size) return -1;
  utf8proc_int32_t point = length == 1 ? text[0] : text[0] & (0x7F >> length);
  for (int at = 1; at < length; ++at) {
    if ((text[at] & 0xC0) != 0x80) return -1;
    point = point << 6 | (text[at] & 0x3F);
  }
  constexpr utf8proc_int32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = point >= 0xD800 && point < 0xE000;
  if (point < least[length] || point > 0x10FFFF || isSurrogate) return -1;
  *character = point;
  return length;
}

utf8proc_ssize_t utf8proc_encode_char(utf8proc_int32_t character, utf8proc_uint8_t* to) {
  const auto byte = [](utf8proc_int32_t bits) { return static_cast<utf8proc_uint8_t>(bits); };
  if (character < 0x80) {
    to[0] = byte(character);
    return 1;
  }
  const int length = character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
  for (int at = length - 1; at > 0; --at, character >>= 6)
    to[at] = byte(0x80 | (character & 0x3F));
  to[0] = byte((0xF00 >> length) | character); // as many leading ones as bytes
  return length;
}
