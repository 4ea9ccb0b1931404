#include "tests/support/Command.hpp"

#include <algorithm>

namespace desktop {
namespace {

namespace fs = std::filesystem;

const fs::path sessions = fs::path(TARNWICK_SOURCE_DIR) / "tests" / "sessions";

/// What the first line of a session asks the command for: `# options: --defaults FILE`.
std::string optionsOf(const std::string& session) {
  const std::string marker = "# options: ";
  if (session.rfind(marker, 0) != 0) return "";
  return session.substr(marker.size(), session.find('\n') - marker.size());
}

std::vector<std::string> sessionNames() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(sessions)) {
    if (entry.path().extension() == ".txt") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// Plays NAME.txt and expects NAME.trace, in a copy of their folder that the session may write to.
class Sessions : public testing::TestWithParam<std::string> {};

TEST_P(Sessions, LeaveTheirTrace) {
  const TemporaryFolder folder;
  fs::copy(sessions, folder.path, fs::copy_options::recursive);
  const std::string session = GetParam() + ".txt";
  const std::string options = optionsOf(contentsOf(folder.path / session));
  const CommandRun traced = runCommand(folder.path, "--trace " + options + " " + session);
  EXPECT_EQ(traced.output, contentsOf(sessions / (GetParam() + ".trace")));
  EXPECT_EQ(traced.complaints, "");
  EXPECT_EQ(traced.status, 0);
}

INSTANTIATE_TEST_SUITE_P(Files, Sessions, testing::ValuesIn(sessionNames()),
                         [](const auto& name) { return name.param; });

class CommandTest : public testing::Test {
protected:
  TemporaryFolder folder;

  CommandRun run(const std::string& arguments, const std::string& input = "") {
    return runCommand(folder.path, arguments, input);
  }
};

TEST_F(CommandTest, TellsPeopleWhatHappened) {
  const std::string session = "launch\npress ctrl+c\nfront none\ndown win+l # locks\nmenu Nothing\nshow defaults\n"
                              "front Finder\ndown cmd+delete\npress f2\ndown return\nquit\n";
  const CommandRun told = run("", session);
  EXPECT_EQ(told.output, "launch\n"
                         "    the status bar shows Tarnwick's image\n"
                         "press ctrl+c\n"
                         "    Editor receives Cmd+C pressed\n"
                         "    Editor receives Cmd+C released\n"
                         "front none\n"
                         "down win+l # locks\n"
                         "    nobody receives Cmd+Ctrl+Q pressed\n"
                         "menu Nothing\n"
                         "    nothing to act on\n"
                         "show defaults\n"
                         "    exemptBundleIDs holds nothing\n"
                         "front Finder\n"
                         "down cmd+delete\n"
                         "    Finder receives Cmd+Delete pressed\n"
                         "    the Finder moves the selection to the Bin\n"
                         "press f2\n"
                         "    Finder receives Return pressed\n"
                         "    the Finder lets the selection's name be edited\n"
                         "    Finder receives Return released\n"
                         "down return\n"
                         "    Finder receives Return pressed\n"
                         "    the Finder ends the editing of the name\n"
                         "quit\n"
                         "    Tarnwick has quit\n");
  EXPECT_EQ(told.status, 0);
  const CommandRun strange = run("", "app \"E\\x1b[31m\\n\"\nfront \"E\\x1b[31m\\n\"\ndown a");
  EXPECT_NE(strange.output.find("    E\\x1b[31m\\n receives A pressed\n"), std::string::npos) << strange.output;
}

TEST_F(CommandTest, RunsNothingOfASessionWithAMistake) {
  const std::string session = "trust no # and nothing of this may run\nlaunch\njump\nlaunch\n";
  writeFile(folder.path / "bad.txt", session);
  for (const auto& [refused, name] : {std::pair{run("--trace bad.txt"), "bad.txt"}, std::pair{run("", session), "-"}}) {
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.output, "");
    EXPECT_EQ(refused.complaints, name + std::string(":3: unknown command \"jump\"\n"));
  }
}

TEST_F(CommandTest, RefusesWhatItCannotReadOrDoesNotKnow) {
  writeFile(folder.path / "good.txt", "press ctrl+c\n");
  const struct {
    const char* arguments;
    const char* complaint;
  } mistakes[] = {
      {"missing.txt", "missing.txt: cannot be read: No such file or directory\n"},
      {".", ".: cannot be read: Is a directory\n"},
      {"--loud good.txt", "tarnwick: unknown option --loud\n"},
      {"-t good.txt", "tarnwick: unknown option -t\n"},
      {"good.txt good.txt", "tarnwick: more than one session: good.txt\n"},
      {"good.txt --defaults", "tarnwick: the option --defaults wants a name after it\n"},
      {"--defaults '' good.txt", "tarnwick: the option --defaults wants a name after it\n"},
      {"good.txt --bundle", "tarnwick: the option --bundle wants a name after it\n"},
      {"--bundle nowhere good.txt", "nowhere: is not a folder\n"},
      {"--bundle good.txt good.txt", "good.txt: is not a folder\n"},
  };
  for (const auto& [arguments, complaint] : mistakes) {
    const CommandRun refused = run(arguments);
    EXPECT_EQ(refused.status, 2) << arguments;
    EXPECT_EQ(refused.output, "") << arguments;
    EXPECT_EQ(refused.complaints, complaint);
  }
}

TEST_F(CommandTest, GoesOnWithNothingInItsBundle) {
  const CommandRun bare = run("--trace --bundle .", "down ctrl+c");
  EXPECT_EQ(bare.output, "status\tTarnwick\nkey\tEditor\tdown\t0x08\t0x100000\nterminate\n");
  EXPECT_EQ(bare.status, 0);

  fs::create_directory(folder.path / "Contents");
  writeFile(folder.path / "Contents/Info.plist", "<plist><dict>");
  const CommandRun damaged = run("--trace --bundle .", "down ctrl+c");
  EXPECT_EQ(damaged.output, bare.output);
  EXPECT_EQ(damaged.complaints.rfind("./Contents/Info.plist: cannot be understood, line 1: ", 0), 0U)
      << damaged.complaints;

  fs::remove(folder.path / "Contents/Info.plist");
  fs::create_symlink("/proc/self/mem", folder.path / "Contents/Info.plist");
  const CommandRun unreadable = run("--trace --bundle .", "down ctrl+c");
  EXPECT_EQ(unreadable.output, bare.output);
  EXPECT_EQ(unreadable.complaints, "./Contents/Info.plist: cannot be read: Input/output error\n");
}

// As a command of its own: a class that has been loaded once stays for the whole process.
TEST_F(CommandTest, GoesOnWithAnUpdateFrameworkThatLacksItsClass) {
  fs::create_directories(folder.path / "Contents" / "Frameworks" / "Sparkle.framework");
  writeFile(folder.path / "Contents/Frameworks/Sparkle.framework/Sparkle", "other code");
  writeFile(folder.path / "Contents/Info.plist",
            writeXml(PropertyList::Dictionary{{u"SUFeedURL", u"https://updates.example"}, {u"SUPublicEDKey", u"key"}}));
  const CommandRun bare = run("--trace --bundle .", "menu \"Check for Updates...\"");
  EXPECT_EQ(bare.output, "status\tTarnwick\nlost\tmenu \"Check for Updates...\"\nterminate\n");
  EXPECT_EQ(bare.complaints, "");
}

TEST_F(CommandTest, KeepsDefaultsThatItCannotRead) {
  const std::string broken = "<plist><dict><key>exemptBundleIDs";
  writeFile(folder.path / "broken.plist", broken);
  const CommandRun first = run("--trace --defaults broken.plist", "down ctrl+c\nshow defaults");
  EXPECT_EQ(first.output, "status\timage\nkey\tEditor\tdown\t0x08\t0x100000\ndefault\texemptBundleIDs\t-\nterminate\n");
  EXPECT_EQ(first.status, 0);
  EXPECT_NE(first.complaints.find("broken.plist"), std::string::npos) << first.complaints;
  EXPECT_EQ(contentsOf(folder.path / "broken.plist"), broken);

  // Something is saved: an application chosen in the settings window.
  fs::create_directories(folder.path / "Chosen.app" / "Contents");
  writeFile(folder.path / "Chosen.app/Contents/Info.plist",
            writeXml(PropertyList::Dictionary{{u"CFBundleIdentifier", u"com.example.editor"}}));
  const std::string choosing = "menu Settings…\nclick \"Choose App…\"\nchoose Chosen.app";
  EXPECT_EQ(run("--defaults broken.plist", choosing).status, 0);
  EXPECT_EQ(contentsOf(folder.path / "broken.plist.broken"), broken);
  const CommandRun next = run("--trace --defaults broken.plist", "down ctrl+c\nshow defaults");
  EXPECT_EQ(next.output, "status\timage\nkey\tEditor\tdown\t0x08\t0x40000\n"
                         "default\texemptBundleIDs\tcom.example.editor\nterminate\n");
  EXPECT_EQ(next.complaints, "");

  const CommandRun unsaved = run("--defaults nowhere/new.plist", choosing);
  EXPECT_EQ(unsaved.status, 1);
  EXPECT_EQ(unsaved.complaints, "nowhere/new.plist: cannot be saved in its folder: No such file or directory\n");
}

TEST_F(CommandTest, MakesNoDefaultsFileWithoutNeed) {
  const CommandRun fresh = run("--trace --defaults new.plist", "press ctrl+c\nmenu \"Disable Tarnwick\"");
  EXPECT_EQ(fresh.complaints, "");
  EXPECT_FALSE(fs::exists(folder.path / "new.plist"));
}

} // namespace
} // namespace desktop
