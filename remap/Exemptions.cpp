#include "platform/UserDefaults.hpp"
#include "remap/KeyRemapper.hpp"

#include <algorithm>

namespace tarnwick {

using namespace platform;

namespace {

/// A stand-in for a UTF-16 unit that sorts by code point. Code points above 0xFFFF are spelt with surrogates (0xD800 to
/// 0xDFFF), which as numbers come before 0xE000 to 0xFFFF: U+FF5E is 0xFF5E, and U+1F600, which belongs after it,
/// begins with 0xD83D. So surrogates move up to the end, and what stood behind them moves down into their place: 0xD83D
/// becomes 0xF83D, 0xFF5E becomes 0xF75E.
char16_t rank(char16_t unit) {
  constexpr char16_t firstSurrogate = 0xD800;
  constexpr char16_t surrogates = 0x800;
  constexpr char16_t above = 0x10000 - surrogates - firstSurrogate;
  if (unit < firstSurrogate) return unit;
  return static_cast<char16_t>(unit < firstSurrogate + surrogates ? unit + above : unit - surrogates);
}

/// Two bytes for each unit, the higher one first: bytes are compared many at a time.
std::string rankedBytes(const NSString& text) {
  const std::u16string units = text.characters();
  std::string bytes;
  bytes.reserve(2 * units.size());
  for (const char16_t unit : units) {
    const char16_t ranked = rank(unit);
    bytes += static_cast<char>(ranked >> 8);
    bytes += static_cast<char>(ranked & 0xFF);
  }
  return bytes;
}

/// By code point after canonical composition; texts that compose to the same, by their own code points.
struct SortKey {
  std::string composed;
  /// The text's place in the set, which keeps it: moving a key while sorting counts no references.
  const NSString* text;

  explicit SortKey(const NSString& source)
      : composed(rankedBytes(source.precomposedStringWithCanonicalMapping())), text(&source) {}
  bool operator<(const SortKey& other) const {
    const int order = composed.compare(other.composed);
    return order != 0 ? order < 0 : rankedBytes(*text) < rankedBytes(*other.text);
  }
};

} // namespace

void KeyRemapper::loadExemptions() {
  // Most applications are not exempt: in a sparse table their bucket is empty, and nothing is compared.
  constexpr float sparse = 0.125F;
  exemptBundleIDs.max_load_factor(sparse);
  const NSArray stored = NSUserDefaults::standardUserDefaults().arrayForKey(exemptionsDefaultsKey);
  for (NSUInteger index = 0; index < stored.count(); ++index) {
    const NSString bundleID = asString(stored.objectAtIndex(index));
    if (!bundleID) {
      exemptBundleIDs.clear();
      return;
    }
    exemptBundleIDs.insert(bundleID);
  }
}

void KeyRemapper::addExemptBundleID(const NSString& bundleID) {
  const NSString trimmed = bundleID.stringByTrimmingWhitespaceAndNewlines();
  if (trimmed.length() == 0) return;
  exemptBundleIDs.insert(trimmed);
  saveExemptions();
}

void KeyRemapper::removeExemptBundleID(const NSString& bundleID) {
  exemptBundleIDs.erase(bundleID);
  saveExemptions();
}

std::vector<NSString> KeyRemapper::allExemptBundleIDs() const {
  std::vector<SortKey> keys(exemptBundleIDs.begin(), exemptBundleIDs.end());
  std::sort(keys.begin(), keys.end());
  std::vector<NSString> sorted;
  sorted.reserve(keys.size());
  for (const SortKey& key : keys)
    sorted.push_back(*key.text);
  return sorted;
}

void KeyRemapper::saveExemptions() const {
  const NSArray list = NSArray::of(allExemptBundleIDs());
  NSUserDefaults::standardUserDefaults().setObject(list, exemptionsDefaultsKey);
}

} // namespace tarnwick
