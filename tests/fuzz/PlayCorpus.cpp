/// Plays a corpus once: every file of the folder that is the argument.
#include "tests/fuzz/Fuzz.hpp"
#include "tests/support/TestDesktop.hpp"

#include <cstdio>
#include <set>

int main(int count, char** words) {
  if (count != 2) return 2;
  std::set<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(words[1]))
    files.insert(entry.path());
  for (const auto& file : files) {
    std::printf("%s\n", file.c_str());
    std::fflush(stdout); // the last line tells which one ended the process
    desktop::play(desktop::Bytes(desktop::contentsOf(file)));
  }
  return files.empty() || testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed() ? 1 : 0;
}
