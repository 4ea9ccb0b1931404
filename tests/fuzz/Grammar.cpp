/// Sessions as they are written: each is read whole, or its first mistake is told in one line.
#include "desktop/foundation/Text.hpp"
#include "desktop/session/Output.hpp"
#include "tests/fuzz/Fuzz.hpp"
#include "tests/support/TestDesktop.hpp"

#include <algorithm>

namespace desktop {
namespace {

bool isSame(const Command& one, const Command& other) {
  const auto all = [](const Command& each) {
    const auto [width, height] = each.size.value_or(Extent{-1, -1});
    return std::tuple(each.text, each.verb, each.choice, each.name, each.bundleIdentifier, each.role, width, height,
                      each.key.code, each.key.flags, each.times, each.title, each.row, each.path, each.seconds);
  };
  return all(one) == all(other);
}

void expectOneLine(const Mistake& mistake, std::ptrdiff_t lines) {
  EXPECT_FALSE(mistake.what.empty());
  EXPECT_TRUE(mistake.line >= 1 && mistake.line <= lines) << mistake.text();
  std::string unescaped = mistake.what;
  std::erase(unescaped, '\\');
  EXPECT_EQ(escaped(unescaped), unescaped) << "control characters in a mistake";
}

} // namespace

void play(Bytes input) {
  const std::string_view text = input.rest();
  const auto read = readSession("session", text);
  if (const auto* mistake = std::get_if<Mistake>(&read))
    return expectOneLine(*mistake, std::ranges::count(text, '\n') + 1);
  const auto& commands = std::get<std::vector<Command>>(read);
  std::string again;
  for (const Command& command : commands) {
    again += command.text + '\n';
    if (command.verb == Verb::Press && describeKey(command.key.code, 0).find("key 0x") == std::string::npos) {
      EXPECT_EQ(keyNamed(describeKey(command.key.code, command.key.flags)), command.key) << command.text;
    }
  }
  const auto reread = readSession("again", again);
  ASSERT_TRUE(std::holds_alternative<std::vector<Command>>(reread)) << std::get<Mistake>(reread).text();
  EXPECT_TRUE(std::ranges::equal(commands, std::get<std::vector<Command>>(reread), isSame)) << again;
}

} // namespace desktop
