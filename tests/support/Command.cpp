#include "tests/support/Command.hpp"

#include <cstdlib>
#include <sys/wait.h>

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

} // namespace desktop
