/// How texts, numbers, dates and data are spelt within the elements of an XML document. Readers ignore whitespace
/// around the text and answer nothing when it is something else.
#pragma once

#include "desktop/foundation/PropertyList.hpp"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace desktop::xmlScalars {

inline constexpr std::string_view whitespace = " \t\r\n";
std::string_view trimmed(std::string_view text);

/// False for control characters, noncharacters and lone surrogates.
bool fitsXml(std::u16string_view text);
/// As it stands within an element, in UTF-8; what XML cannot hold becomes U+FFFD.
std::string escapedText(std::u16string_view text);

/// Decimal, or hexadecimal after 0x, with an optional sign.
std::optional<std::int64_t> integerFrom(std::string_view text);

/// Besides numbers there are "nan", "+infinity" and "-infinity".
std::optional<double> realFrom(std::string_view text);
std::string realText(double number);

/// Exactly 2001-02-03T04:05:06Z.
std::optional<PropertyList::Date> dateFrom(std::string_view text);
/// Dates outside the years 1 to 9999 have no text of their own and get that of the nearest.
std::string dateText(PropertyList::Date date);
bool hasDateText(PropertyList::Date date);

/// Base64.
std::optional<PropertyList::Data> dataFrom(std::string_view text);
std::string dataText(std::span<const std::byte> data);

} // namespace desktop::xmlScalars
