#include "desktop/runtime/Faults.hpp"

namespace desktop {

bool Faults::strikes(const std::string& call) {
  if (++madeOfAll == failingOfAll) {
    failedOfAll = call;
    return true;
  }
  const long number = ++made[call];
  const auto found = failing.find(call);
  return found != failing.end() && (found->second == every || found->second == number);
}

bool isToFail(const char* name, const char* selector) {
  Faults* const faults = Faults::existing();
  return faults != nullptr && faults->strikes(selector != nullptr ? std::string(name) + ' ' + selector : name);
}

} // namespace desktop
