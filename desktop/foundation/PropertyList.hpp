/// Property lists, and the two forms in which files hold them: XML and binary.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace desktop {

/// A value of the kind that user defaults and Info.plist hold. It owns everything in it; copies are deep.
struct PropertyList {
  /// Uninterpreted bytes.
  using Data = std::vector<std::byte>;
  /// A moment, in seconds since the first of January 2001, 00:00 UTC.
  struct Date {
    double seconds = 0;
    bool operator==(const Date&) const = default;
  };
  using Array = std::vector<PropertyList>;
  /// Keys are ordered by their UTF-16 code units.
  using Dictionary = std::map<std::u16string, PropertyList>;
  /// Strings are UTF-16 and may hold any code unit: NUL and lone surrogates are nothing special.
  using Value = std::variant<bool, std::int64_t, double, std::u16string, Data, Date, Array, Dictionary>;

  Value value;

  PropertyList() = default;
  /// Only for `bool` itself, or else pointers would become truths.
  PropertyList(std::same_as<bool> auto truth) : value(truth) {}
  template <std::integral Number>
  requires(!std::same_as<Number, bool>) PropertyList(Number number) : value(static_cast<std::int64_t>(number)) {}
  PropertyList(double number) : value(number) {}
  PropertyList(const char16_t* text) : value(std::u16string(text)) {}
  PropertyList(std::u16string text) : value(std::move(text)) {}
  PropertyList(Data data) : value(std::move(data)) {}
  PropertyList(Date date) : value(date) {}
  PropertyList(Array array) : value(std::move(array)) {}
  PropertyList(Dictionary dictionary) : value(std::move(dictionary)) {}

  /// The content if it is a `Kind`, else null.
  template <typename Kind> const Kind* as() const { return std::get_if<Kind>(&value); }
  template <typename Kind> Kind* as() { return std::get_if<Kind>(&value); }

  friend bool operator==(const PropertyList& left, const PropertyList& right) { return left.value == right.value; }
};

/// What reading gave: the value, or one sentence that says why there is none.
struct PropertyListReading {
  PropertyList value;
  std::string error; ///< "line 3: ..." for XML, "offset 17: ..." for binary; empty when `value` was read

  explicit operator bool() const { return error.empty(); }
};

/// Arrays and dictionaries that lie deeper than this within each other are refused by the readers.
inline constexpr unsigned maxPropertyListNesting = 512;

/// Reads a property list of either form. Whatever the bytes are, it answers in time and memory proportional to them.
PropertyListReading parsePropertyList(std::string_view bytes);
PropertyListReading parseXmlPropertyList(std::string_view text);
PropertyListReading parseBinaryPropertyList(std::string_view bytes);

/// False when XML cannot carry the value: a string with a control character, a noncharacter or a lone surrogate, or a
/// date outside the years 1 to 9999.
bool canBeXml(const PropertyList& value);
/// The text of a property-list file, in UTF-8. Dates lose fractions of a second, as on the platform. What XML cannot
/// carry becomes U+FFFD, or the nearest date.
std::string writeXml(const PropertyList& value);
/// The bytes of a binary property-list file; these carry everything.
std::string writeBinary(const PropertyList& value);

} // namespace desktop
