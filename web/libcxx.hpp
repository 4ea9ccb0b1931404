/// What the sources use and the C++ library of older emscriptens lacks (Debian 12's is libc++ 13). Every source of the
/// browser build includes this first.
#pragma once

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <string>

namespace std {

#if _LIBCPP_VERSION < 14000
template <class To, class From> constexpr To bit_cast(const From& from) noexcept {
  return __builtin_bit_cast(To, from);
}

/// In general notation, the only one that is used.
inline to_chars_result to_chars(char* first, char* last, double value, chars_format, int precision) {
  const int size = std::snprintf(first, static_cast<size_t>(last - first), "%.*g", precision, value);
  return {first + size, errc()};
}
#endif

#if _LIBCPP_VERSION < 15000
namespace ranges {

template <class Range, class Value, class Part = identity>
constexpr auto find(Range&& range, const Value& value, Part part = {}) {
  return std::find_if(begin(range), end(range), [&](const auto& each) { return std::invoke(part, each) == value; });
}
template <class Range, class Predicate> constexpr auto find_if(Range&& range, Predicate predicate) {
  return std::find_if(begin(range), end(range), predicate);
}
template <class One, class Other, class First, class Second>
constexpr bool equal(One&& one, Other&& other, equal_to, First first, Second second) {
  return std::equal(begin(one), end(one), begin(other), end(other), [&](const auto& left, const auto& right) {
    return std::invoke(first, left) == std::invoke(second, right);
  });
}

} // namespace ranges
#endif

#if _LIBCPP_VERSION < 20000
/// By strtod, which also takes blanks, a plus sign, hexadecimal digits and, where the notation is fixed, an exponent:
/// texts with any of these are refused.
inline from_chars_result from_chars(const char* first, const char* last, double& value, chars_format format) {
  const string text(first, last);
  const char* const refused = format == chars_format::fixed ? " \t\n\v\f\rxXeE" : " \t\n\v\f\rxX";
  if (text.empty() || text.front() == '+' || text.find_first_of(refused) != text.npos)
    return {first, errc::invalid_argument};
  errno = 0;
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  if (end == text.c_str()) return {first, errc::invalid_argument};
  const char* const stop = first + (end - text.c_str());
  if (errno == ERANGE && (number == 0 || std::isinf(number))) return {stop, errc::result_out_of_range};
  value = number;
  return {stop, errc()};
}
#endif

} // namespace std
