#include "app/main.hpp"

#include "app/AppDelegate.hpp"

namespace tarnwick {

id app;
id delegate;

} // namespace tarnwick

int main() {
  const platform::AutoreleasePool pool;
  const auto application = platform::NSApplication::sharedApplication();
  tarnwick::AppDelegate::runtimeClass();
  tarnwick::app = application.object();
  tarnwick::delegate = platform::make<"AppDelegate", "init">().detach();
  application.setDelegate(tarnwick::delegate);
  application.run();
  return 0;
}
