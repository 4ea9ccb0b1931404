/// Lists the stand-in desktop's classes and methods for macos/interface/check, which holds them against macOS: a line
/// for each class with its superclass, and one for each method with its kind, selector and encoding.
#include "desktop/Desktop.hpp"

#include <cstdio>

int main() {
  desktop::registerAppKitClasses();
  for (const desktop::RegisteredMethod& method : desktop::registeredMethods()) {
    std::printf("%s\t%s\t%c\t%s\t%s\n", method.owner.c_str(), method.superclass.c_str(), method.isOfClass ? '+' : '-',
                method.selector.c_str(), method.encoding.c_str());
  }
}
