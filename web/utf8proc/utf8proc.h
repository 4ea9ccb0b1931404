/// The functions of utf8proc that the stand-in calls, for browsers. Debian has that library for no WebAssembly, and
/// what makes it large, the tables of Unicode, every browser has already.
#pragma once

#include <cstdint>

using utf8proc_uint8_t = std::uint8_t;
using utf8proc_int32_t = std::int32_t;
using utf8proc_ssize_t = std::intptr_t;

/// The text in canonical composition, in memory that the caller frees.
utf8proc_uint8_t* utf8proc_NFC(const utf8proc_uint8_t* text);
/// How many bytes the first character has, and which it is; less than 1 for an empty or ill-formed text.
utf8proc_ssize_t utf8proc_iterate(const utf8proc_uint8_t* text, utf8proc_ssize_t size, utf8proc_int32_t* character);
/// Writes a character in as many bytes as it answers, 4 at most.
utf8proc_ssize_t utf8proc_encode_char(utf8proc_int32_t character, utf8proc_uint8_t* to);
