/// Conversions between the platform's UTF-16 and the UTF-8 of files, sessions and traces.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace desktop {

/// None when `text` is not UTF-8.
std::optional<std::u16string> utf16(std::string_view text);
/// Surrogates without their other half become U+FFFD.
std::string utf8(std::u16string_view text);
/// The code point at `at`, which moves on: of UTF-16, where a surrogate without its other half stands for itself, or of
/// UTF-8, where there may be none.
char32_t nextPoint(std::u16string_view text, std::size_t& at);
std::optional<char32_t> nextPoint(std::string_view text, std::size_t& at);
void append(std::u16string& text, char32_t point);
/// The first and the second half of a pair of surrogates, and either of them.
bool isLeading(char32_t unit);
bool isTrailing(char32_t unit);
bool isSurrogate(char32_t point);
/// False for a text that is sure to be its own composition, which is seen at a glance.
bool mayCompose(std::u16string_view text);
/// The canonical composition (NFC); surrogates without their other half stay.
std::u16string composed(std::u16string_view text);

} // namespace desktop
