/// Modal alerts.
#pragma once

#include "platform/Strings.hpp"

namespace platform {

inline constexpr NSUInteger NSAlertStyleWarning = 0;
/// The answer for the first button that was added.
inline constexpr NSInteger NSAlertFirstButtonReturn = 1000;

class NSAlert : public NSObject {
public:
  using NSObject::NSObject;
  static NSAlert make() { return platform::make<"NSAlert", "init", NSAlert>(); }

  void setAlertStyle(NSUInteger style) const { send<"setAlertStyle:">(*this, style); }
  void setMessageText(const NSString& text) const { send<"setMessageText:">(*this, text); }
  void setInformativeText(const NSString& text) const { send<"setInformativeText:">(*this, text); }
  void addButtonWithTitle(const NSString& title) const { send<"addButtonWithTitle:", NSObject>(*this, title); }
  /// Blocks in a modal session until a button is pressed; answers its code.
  NSInteger runModal() const { return send<"runModal", NSInteger>(*this); }
};

} // namespace platform
