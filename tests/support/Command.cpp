#include "tests/support/Command.hpp"

#include <cstdlib>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace desktop {

CommandRun runCommand(const std::filesystem::path& folder, const std::string& arguments, const std::string& input) {
  const TemporaryFolder streams;
  const auto stream = [&](const char* name) { return streams.path / name; };
  writeFile(stream("in"), input);
  const std::string line = "cd '" + folder.string() + "' && '" TARNWICK_COMMAND "' " + arguments + " <" +
                           stream("in").string() + " >" + stream("out").string() + " 2>" + stream("err").string();
  const int ended = std::system(line.c_str());
  return {WIFEXITED(ended) ? WEXITSTATUS(ended) : -1, contentsOf(stream("out")), contentsOf(stream("err"))};
}

std::string transcribed(const std::filesystem::path& folder, const std::filesystem::path& transcript) {
  const TemporaryFolder own;
  const auto shown = own.path / "shown";
  const std::string line = "cd '" + folder.string() + "' && '" TARNWICK_SOURCE_DIR "/tests/transcripts/play' '" +
                           TARNWICK_COMMAND "' '" + transcript.string() + "' >" + shown.string();
  EXPECT_EQ(std::system(line.c_str()), 0);
  return contentsOf(shown);
}

Terminal::Terminal(const std::filesystem::path& folder, const std::vector<std::string>& words) {
  std::vector<std::string> given{TARNWICK_COMMAND};
  given.insert(given.end(), words.begin(), words.end());
  std::vector<char*> arguments;
  for (std::string& word : given)
    arguments.push_back(word.data());
  arguments.push_back(nullptr);
  process = forkpty(&screen, nullptr, nullptr, nullptr);
  if (process != 0) return;
  setenv("TERM", "dumb", 1);
  setenv("LC_ALL", "C", 1);
  if (chdir(folder.c_str()) == 0) execv(TARNWICK_COMMAND, arguments.data());
  _exit(127);
}

Terminal::~Terminal() {
  close(screen);
}

std::string Terminal::shown() {
  std::string text = "\n";
  // A line that is edited is shown anew, but not on a new line.
  for (char sign = 0; !text.ends_with("\n> ") && read(screen, &sign, 1) == 1;)
    text += sign;
  std::erase(text, '\r');
  return text.substr(1);
}

std::string Terminal::type(const std::string& keys) {
  EXPECT_EQ(write(screen, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  return shown();
}

int Terminal::status() {
  int ended = 0;
  waitpid(process, &ended, 0);
  return WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
}

} // namespace desktop
