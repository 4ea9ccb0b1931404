/// Foundation: texts, collections, URLs, bundles and the user's defaults.
#pragma once

#include "platform/CoreFoundation.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// A text of UTF-16 units. Equality is that of the units: no case folding, no normalisation.
class NSString : public NSObject {
public:
  using NSObject::NSObject;

  /// A copy of UTF-8 text; empty (no string) when it is not UTF-8.
  static NSString utf8(std::string_view text) {
    constexpr NSUInteger NSUTF8StringEncoding = 4;
    return make<"NSString", "initWithBytes:length:encoding:", NSString>(
        static_cast<const void*>(text.data()), static_cast<NSUInteger>(text.size()), NSUTF8StringEncoding);
  }
  /// A constant, made once and never released, so that the key path can compare with it.
  template <Literal text> static const NSString& constant() {
    // Not a guarded static, so that the key path stays short: the program is on the main thread.
    static const NSString* made = nullptr;
    if (made == nullptr) made = new NSString(utf8(text.text));
    return *made;
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

/// The object under its Objective-C name, shared.
inline NSObject sharing(CFTypeRef reference) {
  return {share, static_cast<id>(const_cast<void*>(reference))};
}

/// `value` when it is a string, else no string.
inline NSString asString(const NSObject& value) {
  const bool isString = send<"isKindOfClass:", BOOL>(value, theClass<"NSString">);
  return isString ? NSString(share, value.object()) : NSString();
}

class NSArray : public NSObject {
public:
  using NSObject::NSObject;

  template <Wrapper Element> static NSArray of(const std::vector<Element>& elements) {
    std::vector<id> objects;
    objects.reserve(elements.size());
    for (const Element& element : elements)
      objects.push_back(element.object());
    return make<"NSArray", "initWithObjects:count:", NSArray>(static_cast<const id*>(objects.data()),
                                                              static_cast<NSUInteger>(objects.size()));
  }

  [[nodiscard]] NSUInteger count() const { return send<"count", NSUInteger>(*this); }
  template <Wrapper Element = NSObject> [[nodiscard]] Element objectAtIndex(NSUInteger index) const {
    return send<"objectAtIndex:", Element>(*this, index);
  }
};

class NSNumber : public NSObject {
public:
  using NSObject::NSObject;
  static NSNumber numberWithBool(BOOL value) { return send<"numberWithBool:", NSNumber>(theClass<"NSNumber">, value); }
};

class NSDictionary : public NSObject {
public:
  using NSObject::NSObject;
  static NSDictionary dictionaryWithObjectForKey(const NSObject& object, const NSObject& key) {
    return send<"dictionaryWithObject:forKey:", NSDictionary>(theClass<"NSDictionary">, object, key);
  }
  /// The same object under its CoreFoundation name; still owned by this value.
  [[nodiscard]] CFDictionaryRef asCFDictionary() const { return reinterpret_cast<CFDictionaryRef>(object()); }
};

class NSURL : public NSObject {
public:
  using NSObject::NSObject;
  /// Empty when the text is no URL.
  static NSURL URLWithString(const NSString& text) { return send<"URLWithString:", NSURL>(theClass<"NSURL">, text); }
  static NSURL fileURLWithPath(const NSString& path) {
    return send<"fileURLWithPath:", NSURL>(theClass<"NSURL">, path);
  }

  [[nodiscard]] NSURL URLByAppendingPathComponent(const NSString& name) const {
    return send<"URLByAppendingPathComponent:", NSURL>(*this, name);
  }
};

/// A folder with `Contents/Info.plist` and `Contents/Resources`.
class NSBundle : public NSObject {
public:
  using NSObject::NSObject;
  /// It lives as long as the process.
  static Lent<NSBundle> mainBundle() { return send<"mainBundle", Lent<NSBundle>>(theClass<"NSBundle">); }
  /// Empty when there is no folder at that place.
  static NSBundle withURL(const NSURL& url) { return make<"NSBundle", "initWithURL:", NSBundle>(url); }

  /// Empty when the bundle names none.
  [[nodiscard]] NSString bundleIdentifier() const { return send<"bundleIdentifier", NSString>(*this); }
  [[nodiscard]] NSObject objectForInfoDictionaryKey(const NSString& key) const {
    return send<"objectForInfoDictionaryKey:", NSObject>(*this, key);
  }
  /// The folder of the frameworks that came with the bundle.
  [[nodiscard]] NSURL privateFrameworksURL() const { return send<"privateFrameworksURL", NSURL>(*this); }
  /// Loads the bundle's code and with it its classes; false when there is none that can be loaded.
  [[nodiscard]] bool load() const { return send<"load", BOOL>(*this); }
  /// Empty when there is no such resource.
  [[nodiscard]] NSURL URLForResource(const NSString& name, const NSString& extension) const {
    return send<"URLForResource:withExtension:", NSURL>(*this, name, extension);
  }
};

class NSUserDefaults : public NSObject {
public:
  using NSObject::NSObject;
  static NSUserDefaults standardUserDefaults() {
    return send<"standardUserDefaults", NSUserDefaults>(theClass<"NSUserDefaults">);
  }
  /// Empty when the key is absent or its value is no array.
  [[nodiscard]] NSArray arrayForKey(const NSString& key) const { return send<"arrayForKey:", NSArray>(*this, key); }
  void setObject(const NSObject& value, const NSString& key) const { send<"setObject:forKey:">(*this, value, key); }
};

} // namespace platform
