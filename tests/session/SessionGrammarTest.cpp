#include "desktop/session/SessionGrammar.hpp"

#include <gtest/gtest.h>

using namespace desktop;
using namespace std::string_literals;

namespace {

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

TEST(SessionGrammar, TellsTheFirstMistakeAndItsLine) {
  const std::string number = "expected a number from 0 to ";
  const std::string ordinal = "expected a whole number of 1 or more, in 64 bits, not ";
  const std::string measure = "expected a finite number of 0 or more, not ";
  const std::string huge(400, '9');
  const std::pair<std::string, std::string> rows[] = {
      {"Quit", "unknown command \"Quit\""},
      {"a\0\x1b"s, "unknown command \"a\\x00\\x1b\""},
      {std::string(59, 'x') + "…" + std::string(100'000, 'y'), "unknown command \"" + std::string(59, 'x') + "...\""},
      {"draw \"\"", "expected the name of a file, not \"\""},
      {"draw \"a\\x00b.svg\"", "expected the name of a file, not \"a\\x00b.svg\""},
      {"show yes", "expected menu|window|alert|defaults, not \"yes\""},
      {"menu #Settings", "missing TITLE: menu TITLE"},
      {"screen 5", "missing H: screen W H"},
      {"screen none 1", "extra argument \"1\": screen none"},
      {"raw down 0x10000 0", number + "0xffff, not \"0x10000\""},
      {"raw down -1 0", number + "0xffff, not \"-1\""},
      {"raw down 0x-1 0", number + "0xffff, not \"0x-1\""},
      {"raw up 1 0x10000000000000000", number + "0xffffffffffffffff, not \"0x10000000000000000\""},
      {"press a 0", ordinal + "\"0\""},
      {"click OK 0", ordinal + "\"0\""},
      {"wait -0", measure + "\"-0\""},
      {"wait 1e3", measure + "\"1e3\""},
      {"wait \"\"", measure + "\"\""},
      {"wait " + huge, measure + '"' + huge.substr(0, 60) + "...\""},
      {"menu \"a", "unterminated quote"},
      {"menu \"a\\", "unknown escape \"\\\\\""},
      {"menu \"\\x1", "\\x needs two hex digits"},
      {"menu \"a\"b", "text right after a closing quote"},
  };
  for (const auto& [line, what] : rows)
    for (const char* rest : {"", "\r\n", "\nunknown"})
      EXPECT_EQ(mistakeIn(readSession("s", "app Mail\r\n \t# comment\n\"cancel\" # launches\n" + line + rest)),
                "s:4: " + what);
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
