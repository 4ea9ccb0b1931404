/// Texts.
#pragma once

#include "platform/CoreFoundation.hpp"

#include <string>
#include <string_view>

namespace platform {

inline constexpr NSUInteger NSUTF8StringEncoding = 4;

template <auto make> [[gnu::cold, gnu::noinline]] id madeNow() {
  return make().detach();
}

/// What `make` answers, made on first use and kept as long as the process: for objects of which there is one. Empty
/// while it cannot be made. Main thread only; not a guarded static, so that the key path stays short.
template <auto make> Lent<decltype(make())> madeOnce() {
  static id made = nullptr;
  if (made == nullptr) made = madeNow<make>();
  return Lent<decltype(make())>(made);
}

/// A text of UTF-16 units. Equality is that of the units: no case folding, no normalisation.
class NSString : public NSObject {
public:
  using NSObject::NSObject;

  /// A copy of UTF-8 text; empty (no string) when it is not UTF-8.
  explicit NSString(std::string_view utf8)
      : NSObject(adopt, make<"NSString", "initWithBytes:length:encoding:">(static_cast<const void*>(utf8.data()),
                                                                           static_cast<NSUInteger>(utf8.size()),
                                                                           NSUTF8StringEncoding)
                            .detach()) {}
  // Implicit: a literal stands for its text.
  NSString(const char* utf8) : NSString(std::string_view(utf8)) {}

  /// A constant, made once, so that the key path can compare with it.
  template <Literal text> static Lent<NSString> constant() {
    return madeOnce<[] { return NSString(text.text); }>();
  }
  /// The same object under its CoreFoundation name; still owned by this value.
  [[nodiscard]] CFStringRef asCFString() const { return reinterpret_cast<CFStringRef>(object()); }

  [[nodiscard]] NSUInteger length() const { return send<"length", NSUInteger>(*this); }
  [[nodiscard]] std::u16string characters() const {
    std::u16string units(length(), u'\0');
    send<"getCharacters:range:">(*this, units.data(), NSRange{0, units.size()});
    return units;
  }
  [[nodiscard]] NSString stringByAppendingString(const NSString& tail) const {
    return send<"stringByAppendingString:", NSString>(*this, tail);
  }
  /// Without the whitespace and line ends at both ends.
  [[nodiscard]] NSString stringByTrimmingWhitespaceAndNewlines() const {
    const auto set = send<"whitespaceAndNewlineCharacterSet", NSObject>(theClass<"NSCharacterSet">);
    return send<"stringByTrimmingCharactersInSet:", NSString>(*this, set);
  }
  /// The canonical composition (NFC).
  [[nodiscard]] NSString precomposedStringWithCanonicalMapping() const {
    return send<"precomposedStringWithCanonicalMapping", NSString>(*this);
  }

  friend bool operator==(const NSString& one, const NSString& other) {
    if (!one || !other) return one.object() == other.object();
    return CFEqual(one.object(), other.object()) != 0;
  }
};

/// For hash tables of strings. The CoreFoundation calls do without the look-up of a message.
struct NSStringHash {
  std::size_t operator()(const NSString& text) const { return CFHash(text.object()); }
};

/// The object under its Objective-C name.
inline id objectOf(CFTypeRef reference) {
  return static_cast<id>(const_cast<void*>(reference));
}
/// The same, shared.
inline NSObject sharing(CFTypeRef reference) {
  return {share, objectOf(reference)};
}

inline bool isString(const NSObject& value) {
  return send<"isKindOfClass:", BOOL>(value, theClass<"NSString">) != NO;
}

/// `value` when it is a string, else no string.
inline NSString asString(const NSObject& value) {
  return isString(value) ? NSString(share, value.object()) : NSString();
}

} // namespace platform
