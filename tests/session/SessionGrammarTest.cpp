#include "tests/support/TestDesktop.hpp"

using namespace desktop;
using namespace std::string_literals;

namespace {

// What it answers to each mistake, the transcript of mistakes shows.

/// What is wrong with a session or a line of one.
std::string mistakeIn(const auto& read) {
  const auto* mistake = std::get_if<Mistake>(&read);
  return mistake ? mistake->text() : "no mistake";
}

std::vector<Command> commandsOf(std::string_view text) {
  const auto read = readSession("s", text);
  EXPECT_EQ(mistakeIn(read), "no mistake");
  return std::get<std::vector<Command>>(read);
}

TEST(SessionGrammar, SplitsWordsByTheirFirstCharacter) {
  const std::string longTitle(10'000'000, ' ');
  const std::pair<std::string, std::string> titles[] = {
      {"menu a#b", "a#b"},
      {"\tmenu  \"#b\"\t#rest \"", "#b"},
      {"menu a\\t\"b # \"", "a\\t\"b"},
      {"menu \"\"", ""},
      {R"(menu "\"\\\t\n\r\x00\xfF é")", "\"\\\t\n\r\0\xff é"s},
      {"menu a\0b\x01\xff\v"s, "a\0b\x01\xff\v"s},
      {"menu \"" + longTitle + '"', longTitle},
  };
  for (const auto& [line, title] : titles) {
    const auto commands = commandsOf(line + "\r\n");
    ASSERT_EQ(commands.size(), 1u) << line.substr(0, 40);
    EXPECT_TRUE(commands[0].title == title) << line.substr(0, 40);
    EXPECT_TRUE(commands[0].text == line) << line.substr(0, 40);
  }
  EXPECT_TRUE(commandsOf("").empty() && commandsOf("\r\n \t\r\n# only\n  #comments").empty());
}

TEST(SessionGrammar, RemembersOnlyWhatItAccepted) {
  SessionGrammar grammar("-");
  const std::string already = "there is an application named ";
  const std::pair<const char*, std::string> lines[] = {
      {"app Tarnwick", "-:1: " + already + "\"Tarnwick\" already"},
      {"app Mail a b", "-:2: extra argument \"b\": app NAME [BUNDLE-ID]"},
      {"app Mail", "no mistake"},
      {"app Mail", "-:4: " + already + "\"Mail\" already"},
      {"app mail", "no mistake"},
      {"app Mail", "-:6: " + already + "\"Mail\" already"},
      {"end Mail", "no mistake"},
      {"end Mail", "no mistake"},
      {"app Mail", "no mistake"},
      {"press nothing", "-:10: unknown key \"nothing\""},
      {"launch", "no mistake"},
      {"launch", "-:12: Tarnwick has been launched already"},
      {"app Tarnwick", "-:13: " + already + "\"Tarnwick\" already"},
  };
  for (const auto& [line, expected] : lines)
    EXPECT_EQ(mistakeIn(grammar.read(line)), expected) << line;
  // What prepares the desktop does not launch.
  EXPECT_EQ(commandsOf("trust no\ntaps auto\nscreen none\napp A\nend A\nfront none\nfocus none\nlaunch").size(), 8u);
}

} // namespace
