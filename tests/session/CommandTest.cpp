#include "tests/support/Command.hpp"

#include <algorithm>
#include <cstdlib>
#include <regex>
#include <sys/resource.h>

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
  const std::string session = "# Keys,\n# and who gets them\n\nlaunch\npress ctrl+c\nfront none\ndown win+l # "
                              "locks\nmenu Nothing\nshow defaults\n"
                              "front Finder\ndown cmd+delete\npress f2\ndown return\nquit\n";
  const CommandRun told = run("", session);
  EXPECT_EQ(told.output, "\n# Keys,\n# and who gets them\n"
                         "launch\n"
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
      {"--loud good.txt", "tarnwick: unknown option --loud; --help lists all there are\n"},
      {"good.txt good.txt", "tarnwick: more than one session: good.txt\n"},
      {"good.txt --defaults", "tarnwick: the option --defaults wants a name after it\n"},
      {"--defaults '' good.txt", "tarnwick: the option --defaults wants a name after it\n"},
      {"--defaults . good.txt", ".: is a folder\n"},
      {"--defaults nowhere/new.plist good.txt", "nowhere/new.plist: there is no such folder\n"},
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

TEST_F(CommandTest, TellsOfItself) {
  const std::string build = contentsOf(fs::path(TARNWICK_SOURCE_DIR) / "CMakeLists.txt");
  std::smatch version;
  ASSERT_TRUE(std::regex_search(build, version, std::regex("project\\(Tarnwick VERSION (\\S+)")));
  EXPECT_EQ(run("--version missing.txt").output, "tarnwick " + version.str(1) + "\n");
  const CommandRun help = run("--trace --help");
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.complaints, "");
  for (const char* row : {"\n  --defaults FILE  ", "\n  press KEYS [TIMES]  ", "\n  modifiers  ", " backspace,"})
    EXPECT_NE(help.output.find(row), std::string::npos) << row << "in\n" << help.output;
}

TEST_F(CommandTest, AnswersAtThePrompt) {
  Terminal terminal(folder.path, {});
  EXPECT_NE(terminal.shown().find("help"), std::string::npos) << "no greeting";
  const std::pair<const char*, const char*> rows[] = {
      {"press control+c", "Editor receives Cmd+C pressed\n"},
      {"menu \"Disable Tarnwick\"", "    Tarnwick is disabled\n"},
      {"\x1b[A\x1b[A", "Editor receives Ctrl+C pressed\n"},       // up twice: the line before the last one, anew
      {"press b\x02shift+", "Editor receives Shift+B pressed\n"}, // in front of the b
      {"menu Settings...", "nothing to act on\n    did you mean Settings…? the menu has: \"Enable Tarnwick\", Set"},
      {"menu \"Check for Updates...\"", "    \"Check for Updates...\" is grey\n"},
      {"front finder", "did you mean Finder? there run: Editor, Finder, Tarnwick\n"},
      {"front Finder", "    Finder is in front\n"},
      {"click Bold", "neither an alert nor a window is open\n"},
      {"menu Settings…", "    window \"Tarnwick Settings\""},
      {"click bold", "did you mean \"Bold (Ctrl+B)\"? the window has: "},
      {"click \"Bold (Ctrl+B)\"", "    \"Bold (Ctrl+B)\" is off\n"},
      {"click \"Swap @ and \\\"\"", "    \"Swap @ and \\\"\" is off\n"},
      {"click \"Choose App…\"", "    panel "},
      {"close", "    the open panel waits: choose PATH, or cancel\n"},
      {"Quit", "\nunknown command \"Quit\"; did you mean quit? help lists all there are\n"},
      {"resize 5", "\nmissing H: resize W H\n"},
      {"help", "\n  press KEYS [TIMES]  "},
      {"\x04", ""}, // Ctrl+D
  };
  for (const auto& [keys, answer] : rows) {
    const std::string shown = terminal.type(keys + std::string(*keys == '\x04' ? "" : "\n"));
    EXPECT_NE(shown.find(answer), std::string::npos) << keys << " shows\n" << shown;
  }
  EXPECT_EQ(terminal.status(), 0);
}

TEST_F(CommandTest, KeepsTheTraceFreeOfAnswers) {
  Terminal terminal(folder.path, {"--trace"});
  EXPECT_EQ(terminal.shown(), "> ");
  // The system may show what is typed before the prompt is ready for it, and then the prompt shows it too.
  for (const auto& [line, answer] : {std::pair{"menu \"Disable Tarnwick\"\n", "status\timage\n> "},
                                     {"menu Nothing\n", "lost\tmenu Nothing\n> "},
                                     {"exit\n", "terminate\n"}}) {
    const std::string shown = terminal.type(line);
    EXPECT_TRUE(shown.ends_with(line + std::string(answer))) << shown;
  }
  EXPECT_EQ(terminal.status(), 0);
}

TEST_F(CommandTest, PrintsNothingThatCommandsATerminal) {
  const std::string orders = "\x1b[2J\x9b"
                             "2J\r";
  writeFile(folder.path / "list\x1b[2J", "<plist><dict>" + std::string(3000000, '\x1b') + orders + "</dict></plist>");
  writeFile(folder.path / "bad.txt", "jump \"" + orders + "\"\n");
  const struct {
    std::string arguments;
    std::string input;
  } runs[] = {{"--defaults 'list\x1b[2J'", "launch # " + orders + "\napp \"" + std::string(5000, 'n') + "\x1b\"\n"},
              {"--trace", "app " + orders + "a\nfront " + orders + "a\npress a\n"},
              {"bad.txt", ""},
              {"'missing\x1b[2J'", ""},
              {"--'\x1b[2J'", ""},
              {"--bundle '\x1b[2J'", ""},
              {"", "draw 'no\x1bwhere/a.svg'\n"}};
  for (const auto& [arguments, input] : runs) {
    const CommandRun told = run(arguments, input);
    for (const std::string& text : {told.output, told.complaints}) {
      EXPECT_EQ(text.find_first_of("\x1b\x9b\r"), std::string::npos) << arguments;
      EXPECT_LT(text.size(), 20000U) << arguments;
    }
    EXPECT_NE(told.output + told.complaints, "") << arguments;
  }
}

/// The most memory that any command of this process has needed so far.
long peakOfCommands() {
  struct rusage usage {};
  EXPECT_EQ(::getrusage(RUSAGE_CHILDREN, &usage), 0);
  return usage.ru_maxrss;
}

TEST_F(CommandTest, NeedsNoMoreMemoryForMoreKeys) {
  ::setenv("ASAN_OPTIONS", "quarantine_size_mb=1", 0); // or else the sanitizer keeps what is freed
  const auto typing = [](int times) {
    const std::string count = std::to_string(times);
    return "press ctrl+c " + count + "\nfront Finder\npress f2 " + count + "\npress a " + count + "\n";
  };
  run("--trace", typing(5000));
  const long few = peakOfCommands();
  run("--trace", typing(50000));
  EXPECT_LT(peakOfCommands(), few + few / 10);
}

TEST_F(CommandTest, GoesOnWithNothingInItsBundle) {
  const CommandRun bare = run("--trace --bundle .", "down ctrl+c");
  EXPECT_EQ(bare.output, "status\tTarnwick\n" + keyLine("key\tEditor\tdown", "cmd+c") + "terminate\n");
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
  EXPECT_EQ(first.output,
            "status\timage\n" + keyLine("key\tEditor\tdown", "cmd+c") + "default\texemptBundleIDs\t-\nterminate\n");
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
  EXPECT_EQ(next.output, "status\timage\n" + keyLine("key\tEditor\tdown", "ctrl+c") +
                             "default\texemptBundleIDs\tcom.example.editor\nterminate\n");
  EXPECT_EQ(next.complaints, "");

  const CommandRun unsaved = run("--defaults /dev/null", choosing);
  EXPECT_EQ(unsaved.status, 1);
  EXPECT_TRUE(unsaved.complaints.ends_with("/dev/null: cannot be saved: it is not a regular file\n"));
}

TEST_F(CommandTest, MakesNoDefaultsFileWithoutNeed) {
  const CommandRun fresh = run("--trace --defaults new.plist", "press ctrl+c\nmenu \"Disable Tarnwick\"");
  EXPECT_EQ(fresh.complaints, "");
  EXPECT_FALSE(fs::exists(folder.path / "new.plist"));
}

} // namespace
} // namespace desktop
