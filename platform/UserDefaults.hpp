/// The user's defaults database.
#pragma once

#include "platform/Collections.hpp"
#include "platform/Strings.hpp"

namespace platform {

class NSUserDefaults : public NSObject {
public:
  using NSObject::NSObject;
  static NSUserDefaults standardUserDefaults() {
    return send<"standardUserDefaults", NSUserDefaults>(theClass<"NSUserDefaults">);
  }
  /// Empty when the key is absent or its value is no array.
  [[nodiscard]] NSArray arrayForKey(const NSString& key) const {
    return key ? send<"arrayForKey:", NSArray>(*this, key) : NSArray();
  }
  /// Nothing happens when one of them could not be made: the platform would delete what is stored.
  void setObject(const NSObject& value, const NSString& key) const {
    if (value && key) send<"setObject:forKey:">(*this, value, key);
  }
};

} // namespace platform
