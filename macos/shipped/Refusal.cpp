#include "macos/shipped/Refusal.hpp"

#include <cstdio>
#include <cstdlib>

namespace shipped {

void refuse(const std::string& sentence) {
  std::fflush(stdout);
  std::fprintf(stderr, "tarnwick: %s\n", sentence.c_str());
  std::_Exit(2);
}

} // namespace shipped
