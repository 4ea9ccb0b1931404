/// Numbers in texts.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>

namespace desktop {

/// The number that the whole text spells, in a base (10, 16) or a `std::chars_format`; none for any other text,
/// an empty one, or a number that its type cannot hold. Whole numbers without a sign in their type take none in the
/// text.
template <typename Number, typename Format = int>
std::optional<Number> numberIn(std::string_view text, Format format = 10) {
  Number number = 0;
  const auto* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, format);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

} // namespace desktop
