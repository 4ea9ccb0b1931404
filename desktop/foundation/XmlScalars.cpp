#include "desktop/foundation/XmlScalars.hpp"

#include "desktop/foundation/Numbers.hpp"
#include "desktop/foundation/Text.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>

namespace desktop::xmlScalars {
namespace {

using namespace std::chrono;

constexpr sys_days epoch = 2001y / January / 1;
constexpr double earliestDate = duration<double>(sys_days(1y / January / 1) - epoch).count();
constexpr double endOfDates = duration<double>(sys_days(10000y / January / 1) - epoch).count();

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

bool fitsXml(char32_t character) {
  if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
  return !isSurrogate(character) && character != 0xFFFE && character != 0xFFFF;
}

} // namespace

bool fitsXml(std::u16string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    if (!fitsXml(nextPoint(text, at))) return false;
  }
  return true;
}

std::string escapedText(std::u16string_view text) {
  std::u16string out;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t character = nextPoint(text, at);
    if (character == '&') {
      out += u"&amp;";
    } else if (character == '<') {
      out += u"&lt;";
    } else if (character == '>') {
      out += u"&gt;";
    } else if (character == '\r') {
      out += u"&#13;"; // a bare one is a line break to an XML reader and comes back as \n
    } else {
      append(out, fitsXml(character) ? character : 0xFFFD);
    }
  }
  return utf8(out);
}

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(whitespace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(whitespace) - first + 1);
}

std::optional<std::int64_t> integerFrom(std::string_view text) {
  text = trimmed(text);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text = trimmed(text.substr(1));
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  const auto magnitude = numberIn<std::uint64_t>(text.substr(hexadecimal ? 2 : 0), hexadecimal ? 16 : 10);
  const auto limit = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) + (negative ? 1 : 0);
  if (!magnitude || *magnitude > limit) return std::nullopt;
  return static_cast<std::int64_t>(negative ? 0 - *magnitude : *magnitude);
}

std::optional<double> realFrom(std::string_view text) {
  text = trimmed(text);
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  return numberIn<double>(text, std::chars_format::general);
}

std::optional<PropertyList::Date> dateFrom(std::string_view text) {
  constexpr std::string_view form = "0000-00-00T00:00:00Z";
  const auto fits = [](char have, char want) { return want == '0' ? have >= '0' && have <= '9' : have == want; };
  text = trimmed(text);
  if (!std::equal(text.begin(), text.end(), form.begin(), form.end(), fits)) return std::nullopt;

  const auto part = [text](std::size_t at, std::size_t size) {
    return numberIn<unsigned>(text.substr(at, size)).value_or(0);
  };
  const year_month_day date(year(static_cast<int>(part(0, 4))), month(part(5, 2)), day(part(8, 2)));
  const hours hour(part(11, 2));
  const minutes minute(part(14, 2));
  const seconds second(part(17, 2));
  if (!date.ok() || hour > 23h || minute > 59min || second > 59s) return std::nullopt;
  const sys_seconds moment = sys_days(date) + hour + minute + second;
  return PropertyList::Date{static_cast<double>((moment - epoch).count())};
}

std::optional<PropertyList::Data> dataFrom(std::string_view text) {
  PropertyList::Data data;
  unsigned pending = 0;
  unsigned bits = 0;
  bool padded = false;
  for (const char letter : text) {
    if (whitespace.find(letter) != std::string_view::npos) continue;
    if (letter == '=') {
      padded = true;
      continue;
    }
    const auto digit = alphabet.find(letter);
    if (padded || digit == std::string_view::npos) return std::nullopt;
    pending = (pending << 6 | static_cast<unsigned>(digit)) & 0xFFFF;
    bits += 6;
    if (bits < 8) continue;
    bits -= 8;
    data.push_back(static_cast<std::byte>(pending >> bits));
  }
  if (bits == 6) return std::nullopt; // one digit over: 6 of a byte's 8 bits
  return data;
}

std::string realText(double number) {
  if (std::isnan(number)) return "nan";
  if (std::isinf(number)) return number > 0 ? "+infinity" : "-infinity";
  if (number == 0) return std::signbit(number) ? "-0.0" : "0.0";
  std::array<char, 40> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, 17).ptr;
  return {text.data(), end};
}

bool hasDateText(PropertyList::Date date) {
  return date.seconds >= earliestDate && date.seconds < endOfDates;
}

std::string dateText(PropertyList::Date date) {
  const double known = std::isnan(date.seconds) ? 0 : date.seconds;
  const auto whole = static_cast<std::int64_t>(std::floor(std::clamp(known, earliestDate, endOfDates - 1)));
  const sys_seconds moment = epoch + seconds(whole);
  const auto midnight = floor<days>(moment);
  const year_month_day day(midnight);
  const hh_mm_ss time(moment - midnight);
  std::array<char, 80> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(day.year()),
                static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()));
  return text.data();
}

std::string dataText(std::span<const std::byte> data) {
  std::string text;
  for (std::size_t i = 0; i < data.size(); i += 3) {
    const auto byte = [&](std::size_t at) { return at < data.size() ? std::to_integer<unsigned>(data[at]) : 0U; };
    const unsigned group = byte(i) << 16 | byte(i + 1) << 8 | byte(i + 2);
    text += alphabet[group >> 18];
    text += alphabet[group >> 12 & 63];
    text += i + 1 < data.size() ? alphabet[group >> 6 & 63] : '=';
    text += i + 2 < data.size() ? alphabet[group & 63] : '=';
  }
  return text;
}

} // namespace desktop::xmlScalars
