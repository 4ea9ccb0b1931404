#include "desktop/session/SessionGrammar.hpp"

#include "desktop/foundation/Numbers.hpp"
#include "desktop/runtime/Journal.hpp"
#include "desktop/session/Patterns.hpp"
#include "desktop/session/Words.hpp"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <utility>

namespace desktop {

namespace {

// In the order of Choice.
constexpr std::string_view choices[] = {"none", "yes",     "no",    "auto", "allow",  "refuse", "down",
                                        "up",   "timeout", "input", "menu", "window", "alert",  "defaults"};
static_assert(std::size(choices) == static_cast<std::size_t>(Choice::Defaults) + 1);

/// The part of `rest` before the separator; `rest` goes on behind it.
std::string_view takeUntil(std::string_view& rest, char separator) {
  const std::string_view taken = rest.substr(0, rest.find(separator));
  rest.remove_prefix(std::min(taken.size() + 1, rest.size()));
  return taken;
}

[[noreturn]] void expected(const std::string& what, std::string_view argument) {
  throw std::invalid_argument("expected " + what + ", not " + inQuotes(argument));
}

std::uint64_t codeOrFlags(std::string_view argument, std::uint64_t highest) {
  const bool isHex = argument.starts_with("0x");
  const auto number = numberIn<std::uint64_t>(argument.substr(isHex ? 2 : 0), isHex ? 16 : 10);
  if (number && *number <= highest) return *number;
  expected("a number from 0 to " + flagsText(highest), argument);
}

std::uint64_t ordinal(std::string_view argument) {
  const auto number = numberIn<std::uint64_t>(argument, 10);
  if (number && *number >= 1) return *number;
  expected("a whole number of 1 or more, in 64 bits", argument);
}

double measure(std::string_view argument) {
  const auto number = numberIn<double>(argument, std::chars_format::fixed);
  if (number && std::isfinite(*number) && !std::signbit(*number)) return *number;
  expected("a finite number of 0 or more", argument);
}

/// The system would take the name to end at a NUL.
std::string fileName(std::string_view argument) {
  if (!argument.empty() && argument.find('\0') == std::string_view::npos) return std::string(argument);
  expected("the name of a file", argument);
}

/// A kind of value: how a command takes it from an argument.
struct Kind {
  std::string_view name;
  void (*read)(Command& to, std::string_view from);
};

constexpr Kind kinds[] = {
    {"NAME", [](Command& to, std::string_view from) { to.name = from; }},
    {"BUNDLE-ID", [](Command& to, std::string_view from) { to.bundleIdentifier = from; }},
    {"ROLE", [](Command& to, std::string_view from) { to.role = from; }},
    {"TITLE", [](Command& to, std::string_view from) { to.title = from; }},
    {"PATH", [](Command& to, std::string_view from) { to.path = from; }},
    {"FILE.svg", [](Command& to, std::string_view from) { to.path = fileName(from); }},
    {"KEYS", [](Command& to, std::string_view from) { to.key = keyNamed(from); }},
    {"CODE", [](Command& to, std::string_view from) { to.key.code = std::uint16_t(codeOrFlags(from, 0xffff)); }},
    {"FLAGS", [](Command& to, std::string_view from) { to.key.flags = codeOrFlags(from, ~std::uint64_t{0}); }},
    {"TIMES", [](Command& to, std::string_view from) { to.times = ordinal(from); }},
    {"ROW", [](Command& to, std::string_view from) { to.row = ordinal(from); }},
    {"SECONDS", [](Command& to, std::string_view from) { to.seconds = measure(from); }},
    {"W", [](Command& to, std::string_view from) { to.size.emplace().width = measure(from); }},
    {"H", [](Command& to, std::string_view from) { to.size->height = measure(from); }},
};

bool isOneOf(std::string_view offered, std::string_view argument) {
  while (!offered.empty())
    if (takeUntil(offered, '|') == argument) return true;
  return false;
}

Choice choiceNamed(std::string_view name) {
  return static_cast<Choice>(std::ranges::find(choices, name) - std::begin(choices));
}

void readArgument(Command& command, std::string_view kind, std::string_view argument) {
  const auto* known = std::ranges::find(kinds, kind, &Kind::name);
  if (known != std::end(kinds)) return known->read(command, argument);
  if (!isOneOf(kind, argument)) expected(std::string(kind), argument);
  command.choice = choiceNamed(argument);
}

const Pattern& patternFor(const std::vector<std::string>& line) {
  const Pattern* fitting = nullptr;
  for (const Pattern& pattern : patterns) {
    if (!pattern.verb || pattern.name != line.front()) continue;
    fitting = &pattern;
    if (line.size() > 1 && line[1] == pattern.arguments) break;
  }
  if (fitting == nullptr) throw std::invalid_argument("unknown command " + inQuotes(line.front()));
  return *fitting;
}

Command parse(const std::vector<std::string>& line) {
  const Pattern& pattern = patternFor(line);
  Command command;
  command.verb = *pattern.verb;
  auto argument = line.begin() + 1;
  for (std::string_view rest = pattern.arguments; !rest.empty();) {
    std::string_view kind = takeUntil(rest, ' ');
    const bool optional = kind.starts_with('[');
    if (optional) kind = kind.substr(1, kind.size() - 2);
    if (argument != line.end())
      readArgument(command, kind, *argument++);
    else if (!optional)
      throw std::invalid_argument("missing " + std::string(kind) + ": " + pattern.usage());
  }
  if (argument != line.end())
    throw std::invalid_argument("extra argument " + inQuotes(*argument) + ": " + pattern.usage());
  return command;
}

/// Of a line that holds nothing else: its text, without the sign that starts it.
std::string_view commentOf(std::string_view line) {
  line.remove_prefix(std::min(line.find_first_not_of(" \t#"), line.size()));
  return line.substr(0, line.find_last_not_of(" \t\r") + 1);
}

Mistake unable(const std::string& file, const std::string& what) {
  return {file, 0, "cannot be " + what + ": " + std::strerror(errno)};
}

Stream owned(std::FILE* opened) {
  return {opened, [](std::FILE* stream) { return stream != nullptr ? std::fclose(stream) : 0; }};
}

} // namespace

std::string Mistake::text() const {
  return file + ":" + (line > 0 ? std::to_string(line) + ":" : "") + " " + what;
}

SessionGrammar::SessionGrammar(std::string sessionName) : file(std::move(sessionName)) {}

std::variant<std::monostate, Command, Mistake> SessionGrammar::read(std::string_view text) {
  ++line;
  // The end of a Windows line; two, when a file was made into such a one twice.
  text = text.substr(0, text.find_last_not_of('\r') + 1);
  try {
    const std::vector<std::string> lineWords = splitWords(text);
    if (lineWords.empty()) return {};
    Command command = parse(lineWords);
    command.line = line;
    command.text = text;
    follow(command);
    return command;
  } catch (const std::invalid_argument& wrong) {
    return Mistake{file, line, wrong.what()};
  }
}

/// Checks the command against those before it; the state changes only when it fits.
void SessionGrammar::follow(const Command& command) {
  if (command.verb == Verb::Launch && launched) throw std::invalid_argument("Tarnwick has been launched already");
  if (impliesLaunch(command.verb)) launched = true;
  if (command.verb == Verb::App && !applications.insert(*command.name).second)
    throw std::invalid_argument("there is an application named " + inQuotes(*command.name) + " already");
  if (command.verb == Verb::End && *command.name != "Tarnwick") applications.erase(*command.name);
}

SessionReader::SessionReader(std::string name, Stream from, Stream to)
    : file(std::move(name)), stream(std::move(from)), copy(std::move(to)), grammar(file) {}

bool SessionReader::readLine() {
  line.clear();
  int sign = EOF;
  while ((sign = std::getc(stream.get())) != EOF && sign != '\n')
    line += static_cast<char>(sign);
  if (sign == EOF && line.empty()) return false;
  if (copy &&
      (std::fwrite(line.data(), 1, line.size(), copy.get()) != line.size() || std::putc('\n', copy.get()) == EOF))
    return false;
  // The mark that Windows editors begin UTF-8 with.
  if (std::exchange(isFirst, false) && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
  return true;
}

std::variant<std::monostate, Command, Mistake> SessionReader::next() {
  std::vector<std::string> headings;
  while (readLine()) {
    auto read = grammar.read(line);
    if (auto* command = std::get_if<Command>(&read)) command->headings = std::exchange(headings, {});
    if (!std::holds_alternative<std::monostate>(read)) return read;
    if (const auto comment = commentOf(line); !comment.empty()) headings.emplace_back(comment);
  }
  if (std::ferror(stream.get()) != 0) return unable(file, "read");
  if (copy && (std::ferror(copy.get()) != 0 || std::fflush(copy.get()) != 0)) return unable(file, "copied");
  return {};
}

std::variant<SessionReader, Mistake> checkedSession(const std::string& file) {
  const Stream given = file == "-" ? Stream(stdin, [](std::FILE*) {}) : owned(std::fopen(file.c_str(), "rb"));
  // Read before there is a copy, which would take the place of a standard input that is closed.
  if (!given || (std::ungetc(std::getc(given.get()), given.get()) == EOF && std::ferror(given.get()) != 0))
    return unable(file, "read");
  const Stream kept = owned(std::tmpfile());
  if (!kept) return unable(file, "copied");
  SessionReader check(file, given, kept);
  auto read = check.next();
  while (std::holds_alternative<Command>(read))
    read = check.next();
  if (auto* mistake = std::get_if<Mistake>(&read)) return std::move(*mistake);
  std::rewind(kept.get());
  return SessionReader(file, kept);
}

} // namespace desktop
