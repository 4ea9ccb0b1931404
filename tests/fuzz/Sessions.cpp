/// Whole sessions, made up from the commands that there are: no key is lost or doubled, nothing leaks, and each ends
/// the same way when it is played again.
#include "desktop/session/Output.hpp"
#include "desktop/session/SessionGrammar.hpp"
#include "tests/fuzz/Fuzz.hpp"
#include "tests/support/Shortcuts.hpp"
#include "tests/support/TestDesktop.hpp"

#include <map>

namespace desktop {
namespace {

std::vector<std::string> split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  for (std::size_t end = 0; end != std::string_view::npos; text.remove_prefix(std::min(end + 1, text.size()))) {
    end = text.find(separator);
    parts.emplace_back(text.substr(0, end));
  }
  return parts;
}

/// From sessions.words: what there is to say, by the kinds of words.
std::map<std::string, std::vector<std::string>> kindsOfWords() {
  std::map<std::string, std::vector<std::string>> kinds;
  for (const std::string& line : split(contentsOf(TARNWICK_SOURCE_DIR "/tests/fuzz/sessions.words"), '\n')) {
    const auto choices = split(line, '|');
    auto& known = kinds[choices.front()];
    known.insert(known.end(), choices.begin() + 1, choices.end());
  }
  return kinds;
}

std::string lineFrom(Bytes& input) {
  static const auto kinds = kindsOfWords();
  std::string line;
  for (const std::string& word : split(input.oneOf(kinds.at("LINE")), ' ')) {
    const auto kind = kinds.find(word);
    line += (kind != kinds.end() ? input.oneOf(kind->second) : word) + ' ';
  }
  return line;
}

/// Without those that the grammar refuses.
std::vector<Command> commandsFrom(Bytes& input) {
  constexpr std::size_t most = 100;
  SessionGrammar grammar("session");
  std::vector<Command> commands;
  while (!input.empty() && commands.size() < most) {
    auto read = grammar.read(lineFrom(input));
    if (auto* line = std::get_if<Command>(&read)) commands.push_back(std::move(*line));
  }
  return commands;
}

/// How an entry tells of each key event that a command types, without the receiver.
std::vector<JournalEntry> typedBy(const Command& line) {
  const auto event = [&](const char* way) {
    return JournalEntry{way, codeText(line.key.code), flagsText(line.key.flags)};
  };
  const bool isDown = line.verb == Verb::Down || line.choice == Choice::Down;
  if (line.verb == Verb::Down || line.verb == Verb::Up || line.verb == Verb::Raw)
    return {event(isDown ? "down" : "up")};
  std::vector<JournalEntry> events;
  for (std::uint64_t each = 0; line.verb == Verb::Press && each < line.times; ++each)
    events.insert(events.end(), {event("down"), event("up")});
  return events;
}

/// As it was typed, or as the table of shortcuts rewrites its key.
bool comesFrom(const JournalEntry& typed, const JournalEntry& received) {
  if (received == typed) return true;
  return received[0] == typed[0] && std::ranges::any_of(shortcuts, [&](const Shortcut& shortcut) {
           return codeText(shortcut.typed.code) == typed[1] && codeText(shortcut.delivered.code) == received[1];
         });
}

/// What follows the entries of each command; the second word is the clock.
constexpr auto mark = "(after a command)";
bool isMark(const JournalEntry& entry) {
  return entry[0] == mark;
}

/// What happened from one command to the next: the events that it typed, each received or swallowed, then those posted.
void expectEachOnce(const Command& line, const std::vector<JournalEntry>& happened) {
  std::vector<JournalEntry> wanted = typedBy(line);
  std::size_t next = 0;
  for (const JournalEntry& entry : happened) {
    const bool isSwallowed = entry[0] == "swallowed";
    if (entry[0] == "post") wanted.emplace_back(entry.begin() + 1, entry.end());
    if (entry[0] != "key" && !isSwallowed) continue;
    ASSERT_LT(next, wanted.size()) << line.text << ": an event more than was typed or posted";
    const JournalEntry numbers(entry.end() - 3, entry.end());
    EXPECT_TRUE(isSwallowed ? numbers == wanted[next] : comesFrom(wanted[next], numbers)) << line.text;
    EXPECT_TRUE(!isSwallowed || numbers[1] == codeText(kVK_ForwardDelete)) << line.text << " swallowed";
    ++next;
  }
  EXPECT_EQ(next, wanted.size()) << line.text << ": an event is lost";
}

void expectWholeKeyPresses(const std::vector<JournalEntry>& entries) {
  const auto isPost = [](const JournalEntry& entry) { return entry[0] == "post"; };
  for (auto down = std::ranges::find_if(entries, isPost); down != entries.end();
       down = std::find_if(down + 2, entries.end(), isPost)) {
    ASSERT_NE(down + 1, entries.end());
    EXPECT_EQ(traceLine(down[0]) + '\n' + traceLine(down[1]) + '\n',
              keyLine("post\tdown", "cmd+delete") + keyLine("post\tup", "cmd+delete"));
  }
}

void expectOneEnd(const std::vector<JournalEntry>& entries) {
  const JournalEntry end{"terminate"};
  EXPECT_EQ(std::ranges::count(entries, end), 1);
  for (auto late = std::ranges::find(entries, end) + 1; late != entries.end(); ++late) {
    EXPECT_TRUE((*late)[0] == "key" || (*late)[0] == "lost" || (*late)[0] == "default" || isMark(*late))
        << (*late)[0] << " after the end";
  }
}

std::vector<JournalEntry> played(const std::vector<Command>& commands, const PropertyList& exempt, long failing) {
  TestDesktop desktop;
  desktop.store(u"exemptBundleIDs", exempt);
  desktop.machine.faults.failAny(failing);
  std::vector<Step> steps;
  for (const Command& line : commands) {
    steps.emplace_back(line.text);
    steps.emplace_back([&] { desktop.entries.push_back({mark, std::to_string(desktop.machine.queue.now)}); });
  }
  desktop.play(steps);
  return std::move(desktop.entries);
}

} // namespace

void play(Bytes input) {
  const PropertyList stored[] = {PropertyList::Array{}, PropertyList::Array{u"com.example.mail", u"com.apple.finder"},
                                 PropertyList::Array{u"com.example.editor", 1}, u"com.example.editor"};
  const PropertyList& exempt = input.oneOf(stored);
  const long failing = input.byte();
  const auto commands = commandsFrom(input);
  const auto entries = played(commands, exempt, failing);
  auto at = entries.begin();
  for (const Command& line : commands) {
    const auto end = std::find_if(at, entries.end(), isMark);
    ASSERT_NE(end, entries.end()) << line.text << " was not played";
    expectEachOnce(line, {at, end});
    at = end + 1;
  }
  expectWholeKeyPresses(entries);
  expectOneEnd(entries);
  EXPECT_EQ(played(commands, exempt, failing), entries) << "played again, it ends otherwise";
}

} // namespace desktop
