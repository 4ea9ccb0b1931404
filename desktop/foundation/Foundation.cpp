#include "desktop/foundation/Foundation.hpp"

#include "desktop/runtime/Runtime.hpp"

namespace desktop {

void registerFoundationClasses() {
  static const bool once = [] {
    registerRootClass();
    registerStringClasses();
    registerCollectionClasses();
    registerBundleClasses();
    registerUserDefaultsClass();
    registerCoreFoundationClasses();
    return true;
  }();
  static_cast<void>(once);
}

} // namespace desktop
