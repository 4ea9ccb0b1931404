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
/// The canonical composition (NFC); surrogates without their other half stay.
std::u16string composed(std::u16string_view text);

} // namespace desktop
