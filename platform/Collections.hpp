/// Arrays, dictionaries and numbers.
#pragma once

#include "platform/CoreFoundation.hpp"

#include <vector>

namespace platform {

class NSArray : public NSObject {
public:
  using NSObject::NSObject;

  /// Without those that are empty, which the platform would not take.
  template <Wrapper Element> static NSArray of(const std::vector<Element>& elements) {
    std::vector<id> objects;
    objects.reserve(elements.size());
    for (const Element& element : elements) {
      if (element) objects.push_back(element.object());
    }
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

} // namespace platform
