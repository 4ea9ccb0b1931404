#include "desktop/runtime/Faults.hpp"

namespace desktop {

bool Faults::strikes(const std::string& call) {
  if (failing.empty() && failingOfAll < 0) return false; // keys pass here, and nobody counts them
  if (++madeOfAll == failingOfAll) {
    failedOfAll = call;
    return true;
  }
  const long number = ++made[call];
  const auto found = failing.find(call);
  return found != failing.end() && (found->second == every || found->second == number);
}

bool fails(const std::string& call) {
  Faults* const faults = Faults::existing();
  return faults != nullptr && faults->strikes(call);
}

} // namespace desktop
