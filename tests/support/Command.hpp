/// The built command, run as a user runs it.
#pragma once

#include "tests/support/TestDesktop.hpp"

namespace desktop {

/// What came of it.
struct CommandRun {
  int status = -1;
  std::string output;
  std::string complaints;
};

/// Runs the command in `folder`, the words of `arguments` as a shell takes them, `input` on standard input.
CommandRun runCommand(const std::filesystem::path& folder, const std::string& arguments, const std::string& input = "");

} // namespace desktop
