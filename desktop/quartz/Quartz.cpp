#include "desktop/quartz/Quartz.hpp"

#include "desktop/foundation/Foundation.hpp"

namespace desktop {

void registerQuartzClasses() {
  static const bool once = [] {
    registerFoundationClasses();
    registerEventClasses();
    registerAccessibilityClass();
    return true;
  }();
  static_cast<void>(once);
}

} // namespace desktop
