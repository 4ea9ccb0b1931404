/// Property lists in both forms: whatever is read comes back when it is written and read again.
#include "desktop/foundation/PropertyList.hpp"
#include "tests/fuzz/Fuzz.hpp"

#include <algorithm>
#include <cmath>

namespace desktop {
namespace {

/// How much of a date a form loses, in seconds.
bool isSame(const PropertyList& one, const PropertyList& other, double lost) {
  if (one.value.index() != other.value.index()) return false;
  const auto same = [lost](const PropertyList& left, const PropertyList& right) { return isSame(left, right, lost); };
  const auto sameReal = [](double left, double right, double slack) {
    return left == right || std::abs(left - right) <= slack || (std::isnan(left) && std::isnan(right));
  };
  if (const auto* real = one.as<double>()) return sameReal(*real, *other.as<double>(), 0);
  if (const auto* date = one.as<PropertyList::Date>())
    return sameReal(date->seconds, other.as<PropertyList::Date>()->seconds, lost);
  if (const auto* array = one.as<PropertyList::Array>())
    return std::ranges::equal(*array, *other.as<PropertyList::Array>(), same);
  if (const auto* dictionary = one.as<PropertyList::Dictionary>()) {
    return std::ranges::equal(*dictionary, *other.as<PropertyList::Dictionary>(),
                              [&](const auto& left, const auto& right) {
                                return left.first == right.first && same(left.second, right.second);
                              });
  }
  return one == other;
}

void expectAgain(const PropertyList& value, const std::string& written, double lost) {
  const PropertyListReading again = parsePropertyList(written);
  EXPECT_EQ(again.error, "") << written;
  EXPECT_TRUE(isSame(again.value, value, lost)) << written;
}

} // namespace

void play(Bytes input) {
  const std::string_view bytes = input.rest();
  const PropertyListReading reading = parsePropertyList(bytes);
  parseXmlPropertyList(bytes);
  if (!reading) return;
  expectAgain(reading.value, writeBinary(reading.value), 0);
  const std::string xml = writeXml(reading.value);
  if (canBeXml(reading.value)) return expectAgain(reading.value, xml, 1);
  EXPECT_TRUE(parseXmlPropertyList(xml)) << xml;
}

} // namespace desktop
