#include "desktop/quartz/Applications.hpp"

#include <algorithm>

namespace desktop {

RunningApplication& Applications::start(const std::string& name, const std::string& identifier) {
  auto application = create<RunningApplication>();
  application->name = name;
  if (!identifier.empty()) application->identifier = string(identifier);
  application->role = "AXGroup";
  application->number = ++started;
  running.emplace(name, application);
  return *application;
}

bool Applications::end(const std::string& name) {
  for (Ref<RunningApplication>* const place : {&frontmost, &focusElsewhere}) {
    if (*place && (*place)->name == name) *place = nullptr;
  }
  return running.erase(name) != 0;
}

RunningApplication* Applications::named(const std::string& name) const {
  const auto first = running.lower_bound(name);
  return first != running.end() && first->first == name ? first->second.get() : nullptr;
}

std::vector<Ref<RunningApplication>> Applications::identifiedBy(String* identifier) const {
  std::vector<Ref<RunningApplication>> found;
  for (const auto& [name, application] : running) {
    if (application->identifier && application->identifier->isEqualToString(identifier)) found.push_back(application);
  }
  std::sort(found.begin(), found.end(), [](const auto& one, const auto& other) { return one->number < other->number; });
  return found;
}

} // namespace desktop
