#include "desktop/foundation/Strings.hpp"

#include "desktop/foundation/Foundation.hpp"

#include <algorithm>
#include <cstring>

namespace desktop {
namespace {

/// Unicode's category Z, tab, line feed to carriage return, next line.
bool isWhitespaceOrNewline(char16_t unit) {
  static constexpr char16_t others[] = {0x20, 0x85, 0xA0, 0x1680, 0x2028, 0x2029, 0x202F, 0x205F, 0x3000};
  return (unit >= 0x09 && unit <= 0x0D) || (unit >= 0x2000 && unit <= 0x200A) ||
         std::find(std::begin(others), std::end(others), unit) != std::end(others);
}

Ref<CharacterSet> whitespaceAndNewlineCharacterSet() {
  return create<CharacterSet>();
}

} // namespace

Ref<String> string(std::u16string_view text) {
  auto made = create<String>();
  made->text = text;
  return made;
}

Ref<String> string(std::string_view text) {
  return string(utf16(text).value_or(u"\uFFFD"));
}

CFStringRef constantString(std::u16string_view text) {
  registerFoundationClasses();
  return referenceTo<CFStringRef>(string(text).detach());
}

std::string textOf(const String* string) {
  return string != nullptr ? utf8(string->text) : std::string();
}

const std::u16string& unitsOf(const String* string) {
  static const std::u16string none;
  return string != nullptr ? string->text : none;
}

String* String::initWithBytes(const void* bytes, NSUInteger length, NSUInteger encoding) {
  if (encoding != platform::NSUTF8StringEncoding) stop("no string encoding but UTF-8 (4) is known here");
  auto units = utf16({static_cast<const char*>(bytes), length});
  if (!units) {
    release(this);
    return nullptr;
  }
  text = *std::move(units);
  return this;
}

NSUInteger String::hash() const {
  constexpr std::uint64_t prime = 0x9E3779B97F4A7C15;
  constexpr std::size_t step = sizeof(std::uint64_t) / sizeof(char16_t);
  const char16_t* units = text.data();
  std::size_t left = text.size();
  std::uint64_t hash = left;
  for (; left >= step; left -= step, units += step) {
    std::uint64_t chunk = 0;
    std::memcpy(&chunk, units, sizeof chunk);
    hash = (hash ^ chunk) * prime;
  }
  std::uint64_t rest = 0;
  for (; left > 0; --left)
    rest = rest << 16 | *units++;
  hash = (hash ^ rest) * prime;
  // The half that the products mix well; a short number is also divided by a table's size in half the time.
  return static_cast<NSUInteger>(hash >> 32);
}

BOOL String::isEqualToString(String* other) const {
  // Bytes at once: char_traits would compare unit by unit.
  return other != nullptr && text.size() == other->text.size() &&
         std::memcmp(text.data(), other->text.data(), text.size() * sizeof(char16_t)) == 0;
}

void String::getCharacters(char16_t* units, NSRange range) const {
  if (range.location > text.size() || range.length > text.size() - range.location)
    stop("characters beyond the end of a string were asked for");
  std::copy_n(text.data() + range.location, range.length, units);
}

Ref<String> String::stringByAppendingString(String* tail) const {
  return string(text + tail->text);
}

Ref<String> String::stringByTrimmingCharactersInSet(Object* set) const {
  as<CharacterSet>(set);
  const auto kept = [](char16_t unit) { return !isWhitespaceOrNewline(unit); };
  const auto first = std::find_if(text.begin(), text.end(), kept);
  const auto last = std::find_if(text.rbegin(), std::make_reverse_iterator(first), kept).base();
  return string(std::u16string(first, last));
}

Ref<String> String::precomposedStringWithCanonicalMapping() {
  return mayCompose(text) ? string(composed(text)) : shared(this);
}

void registerStringClasses() {
  NativeClass<String>("NSString", "NSObject")
      .method<"initWithBytes:length:encoding:", &String::initWithBytes>()
      .method<"length", &String::length>()
      .method<"getCharacters:range:", &String::getCharacters>()
      .method<"stringByAppendingString:", &String::stringByAppendingString>()
      .method<"stringByTrimmingCharactersInSet:", &String::stringByTrimmingCharactersInSet>()
      .method<"precomposedStringWithCanonicalMapping", &String::precomposedStringWithCanonicalMapping>();
  NativeClass<MutableString>("NSMutableString", "NSString");
  NativeClass<CharacterSet>("NSCharacterSet", "NSObject")
      .classMethod<"whitespaceAndNewlineCharacterSet", &whitespaceAndNewlineCharacterSet>();
}

} // namespace desktop
