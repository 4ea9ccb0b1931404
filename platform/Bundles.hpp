/// URLs and bundles.
#pragma once

#include "platform/Strings.hpp"

namespace platform {

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
  static Lent<NSBundle> mainBundle() {
    return madeOnce<[] { return send<"mainBundle", NSBundle>(theClass<"NSBundle">); }>();
  }
  /// Empty when there is no folder at that place.
  static NSBundle withURL(const NSURL& url) { return make<"NSBundle", "initWithURL:", NSBundle>(url); }

  /// Empty when the bundle names none.
  [[nodiscard]] Lent<NSString> bundleIdentifier() const { return send<"bundleIdentifier", Lent<NSString>>(*this); }
  [[nodiscard]] NSObject objectForInfoDictionaryKey(const NSString& key) const {
    return key ? send<"objectForInfoDictionaryKey:", NSObject>(*this, key) : NSObject();
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

} // namespace platform
