#include "desktop/Desktop.hpp"

namespace desktop {

Desktop::Desktop() {
  start("Finder", "com.apple.finder");
  applications.frontmost = shared(&start("Editor", "com.example.editor"));
}

Desktop::~Desktop() {
  const platform::AutoreleasePool pool;
  server.forgetProgram();
}

RunningApplication& Desktop::start(const std::string& name, const std::string& identifier) {
  RunningApplication& application = applications.start(name, identifier);
  if (name == "Editor") application.role = "AXTextArea";
  if (name == "Finder") application.role = "AXList";
  if (identifier == "com.apple.finder") {
    application.reaction = finderReaction;
  } else {
    installed["/Applications/" + name + ".app"] = identifier;
  }
  return application;
}

} // namespace desktop
