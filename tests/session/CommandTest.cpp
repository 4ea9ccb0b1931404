#include "tests/support/Command.hpp"

#include <algorithm>
#include <regex>

namespace desktop {
namespace {

namespace fs = std::filesystem;

const fs::path sessions = fs::path(TARNWICK_SOURCE_DIR) / "tests" / "sessions";
const fs::path transcripts = fs::path(TARNWICK_SOURCE_DIR) / "tests" / "transcripts";

/// What the first line of a session asks the command for: `# options: --defaults FILE`.
std::string optionsOf(const std::string& session) {
  const std::string marker = "# options: ";
  if (session.rfind(marker, 0) != 0) return "";
  return session.substr(marker.size(), session.find('\n') - marker.size());
}

std::vector<std::string> namesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
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

INSTANTIATE_TEST_SUITE_P(Files, Sessions, testing::ValuesIn(namesIn(sessions)),
                         [](const auto& name) { return name.param; });

/// What the command prints for whoever runs it: arguments, mistakes, files that are of no use.
class Transcripts : public testing::TestWithParam<std::string> {};

TEST_P(Transcripts, AreWhatTheShellShows) {
  const TemporaryFolder folder;
  fs::copy(sessions, folder.path, fs::copy_options::recursive);
  const fs::path transcript = transcripts / (GetParam() + ".txt");
  EXPECT_EQ(transcribed(folder.path, transcript), contentsOf(transcript));
}

INSTANTIATE_TEST_SUITE_P(Files, Transcripts, testing::ValuesIn(namesIn(transcripts)),
                         [](const auto& name) { return name.param; });

class CommandTest : public testing::Test {
protected:
  TemporaryFolder folder;

  CommandRun run(const std::string& arguments, const std::string& input = "") {
    return runCommand(folder.path, arguments, input);
  }
};

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
      {"menu Settings...",
       "image\n    nothing to act on\n    did you mean Settings…? the menu has: \"Disable Tarnwick\", S"},
      {"press control+c", "Editor receives Cmd+C pressed\n"},
      {"menu \"Disable Tarnwick\"", "    Tarnwick is disabled\n"},
      {"\x1b[A\x1b[A", "Editor receives Ctrl+C pressed\n"},       // up twice: the line before the last one, anew
      {"press b\x02shift+", "Editor receives Shift+B pressed\n"}, // in front of the b
      {"menu \"Check for Updates...\"", "    \"Check for Updates...\" is grey\n"},
      {"front finder", "did you mean Finder? there run: Editor, Finder, Tarnwick\n"},
      {"front Edtor", "did you mean Editor? there run: "},
      {"front Finder", "    Finder is in front\n"},
      {"click Bold", "neither an alert nor a window is open\n"},
      {"menu Settings…", "    window \"Tarnwick Settings\""},
      {"click bold", "did you mean \"Bold (Ctrl+B)\"? the window has: "},
      {"click \"Bold (Ctrl+B)\"", "    \"Bold (Ctrl+B)\" is off\n"},
      {"click \"Swap @ and \\\"\"", "    \"Swap @ and \\\"\" is off\n"},
      {"click \"Choose App…\"", "    panel \"Choose Application to Exempt\"\n    the open panel waits: "},
      {"close", "    the open panel waits: choose PATH, or cancel; it lists: /Applications/Editor.app\n"},
      {"end Tarnwick", "    the open panel waits: "},
      {"choose Editor", "none is exempted; did you mean /Applications/Editor.app? the panel lists: /App"},
      {"click \"Choose App…\"", "    panel "},
      {"choose /Applications/Editor.app", "    com.example.editor is exempt\n"},
      {"Quit", "\nunknown command \"Quit\"; did you mean quit? help lists all there are\n"},
      {"meun", "\nunknown command \"meun\"; did you mean menu? help"},
      {"lunhc", "\nunknown command \"lunhc\"; did you mean launch? help"},
      {"press ctl+c", "\nunknown modifier \"ctl\"; did you mean ctrl? help"},
      {"press ctrl+ecape", "\nunknown key \"ecape\"; did you mean escape? help"},
      {"press insert", "\nunknown key \"insert\"; help"},
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

} // namespace
} // namespace desktop
