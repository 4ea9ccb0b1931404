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

/// What a shell in `folder` shows when the lines of the transcript that begin with "$ " are typed anew.
std::string transcribed(const std::filesystem::path& folder, const std::filesystem::path& transcript);

/// The command's prompt on a terminal of its own, in a plain language and without escapes.
class Terminal {
public:
  /// Runs the command in `folder`. `words` are its arguments.
  Terminal(const std::filesystem::path& folder, const std::vector<std::string>& words);
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  /// What is shown up to the next prompt, or the end.
  std::string shown();
  /// The same, after the keys have been typed; what they look like comes first.
  std::string type(const std::string& keys);
  /// Waits for the end of the command: its exit status.
  int status();

private:
  int screen = -1;
  int process = -1;
};

} // namespace desktop
