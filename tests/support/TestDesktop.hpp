/// A fresh desktop for one test, and the real program played on it.
#pragma once

#include "desktop/Desktop.hpp"
#include "desktop/session/SessionGrammar.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace desktop {

/// A folder of a test's own, gone with it.
class TemporaryFolder {
public:
  TemporaryFolder();
  ~TemporaryFolder() { std::filesystem::remove_all(path); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::filesystem::path path;
};

void writeFile(const std::filesystem::path& file, const std::string& bytes);
std::string contentsOf(const std::filesystem::path& file);

/// Whether what the program makes once is made before a test begins.
enum class Start { Warm, Cold };

/// Fails the test unless at its end exactly the objects of its beginning are alive.
class LeakCheck {
public:
  /// After a cold start nothing is checked: what is made once would count as leaked.
  explicit LeakCheck(Start begun = Start::Warm);
  ~LeakCheck() {
    if (start == Start::Cold) return;
    EXPECT_EQ(liveObjects(), before) << "references leaked, or were released too often";
  }
  LeakCheck(const LeakCheck&) = delete;
  LeakCheck& operator=(const LeakCheck&) = delete;

private:
  Start start;
  std::vector<std::pair<std::string, long>> before;
};

/// All commands of a session, or its first mistake.
std::variant<std::vector<Command>, Mistake> readSession(const std::string& file, std::string_view text);

/// What happens next: lines of a session, or a look at how things stand by then.
using Step = std::variant<std::string, std::function<void()>>;

/// The line of a trace that ends in a key's numbers, which its name stands for: `keyLine("key\tEditor\tdown",
/// "cmd+c")`.
std::string keyLine(const std::string& beginning, std::string_view keys);

/// Every test's desktop: bundle and defaults are its own, every entry is kept, and nothing may leak.
class TestDesktop {
  LeakCheck nothingLeaks;
  TemporaryFolder folder;

public:
  explicit TestDesktop(Start start = Start::Warm);

  /// The program's bundle: complete, for a test to break. `machine.mainBundle->open(bundle)` reads its dictionary anew.
  std::filesystem::path bundle = folder.path / "Tarnwick.app";
  Desktop machine;
  std::vector<JournalEntry> entries;

  /// The entries so far, as a trace tells them.
  std::string trace() const;
  void store(const std::u16string& key, PropertyList value) { machine.defaults->file->set(key, std::move(value)); }

  /// A key pressed and released: by what name it leaves the taps, or that they swallowed it.
  std::string press(std::string_view keys);

  /// Plays a whole session, from before the launch until the program has quit, and answers its trace. Once only.
  std::string play(const std::vector<Step>& steps);

private:
  /// After the machine, on which the last releases may still call.
  platform::AutoreleasePool pool;
};

} // namespace desktop
