#include "desktop/session/Lines.hpp"

#include <cstdio>
#include <iostream>

namespace desktop {

struct Lines::Editor {};

Lines::Lines() = default;
Lines::~Lines() = default;

std::optional<std::string> Lines::next() {
  std::fputs("> ", stdout);
  std::fflush(stdout);
  std::string line;
  if (!std::getline(std::cin, line)) return std::nullopt;
  return line;
}

} // namespace desktop
