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
  [[nodiscard]] NSArray arrayForKey(const NSString& key) const { return send<"arrayForKey:", NSArray>(*this, key); }
  void setObject(const NSObject& value, const NSString& key) const { send<"setObject:forKey:">(*this, value, key); }
};

} // namespace platform
