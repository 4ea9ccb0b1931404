#include "desktop/quartz/Applications.hpp"

namespace desktop {

RunningApplication& Applications::start(const std::string& name, const std::string& identifier) {
  auto application = create<RunningApplication>();
  application->name = name;
  if (!identifier.empty()) application->identifier = string(identifier);
  application->role = "AXGroup";
  running.push_back(application);
  return *application;
}

bool Applications::end(const std::string& name) {
  const auto isIt = [&](const auto& application) { return application->name == name; };
  for (Ref<RunningApplication>* const place : {&frontmost, &focusElsewhere}) {
    if (*place && isIt(*place)) *place = nullptr;
  }
  return std::erase_if(running, isIt) != 0;
}

RunningApplication* Applications::named(const std::string& name) const {
  for (const auto& application : running) {
    if (application->name == name) return application.get();
  }
  return nullptr;
}

} // namespace desktop
