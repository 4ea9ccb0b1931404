/// The command `tarnwick`: the program in the stand-in desktop, driven by a session.

#include "desktop/session/Output.hpp"
#include "desktop/session/Session.hpp"

#include <cstdio>
#include <cstring>
#include <iostream>
#include <unistd.h>

int tarnwickMain();

namespace {

using namespace desktop;

constexpr int unsavedStatus = 1;
constexpr int mistakeStatus = 2;

struct Options {
  bool trace = false;
  std::optional<std::string> defaults;
  std::optional<std::string> bundle;
  std::string session = "-";
};

/// The options, or a sentence about what is wrong with them.
std::variant<Options, std::string> readOptions(int count, char** words) {
  Options options;
  bool hasSession = false;
  for (int index = 1; index < count; ++index) {
    const std::string word = words[index];
    if (word == "--trace") {
      options.trace = true;
    } else if (word == "--defaults" || word == "--bundle") {
      if (++index == count || *words[index] == '\0') return "the option " + word + " wants a name after it";
      (word == "--defaults" ? options.defaults : options.bundle) = words[index];
    } else if (word.size() > 1 && word.front() == '-') {
      return "unknown option " + word;
    } else if (hasSession) {
      return "more than one session: " + word;
    } else {
      options.session = word;
      hasSession = true;
    }
  }
  return options;
}

int fail(const std::string& sentence) {
  std::fprintf(stderr, "%s\n", sentence.c_str());
  return mistakeStatus;
}

/// The bundle that the build put beside the command.
std::string bundleBesideCommand() {
  std::error_code unknown;
  return (std::filesystem::read_symlink("/proc/self/exe", unknown).parent_path() / "Tarnwick.app").string();
}

Session::Source listed(std::vector<Command> commands) {
  return [commands = std::move(commands), next = std::size_t{0}]() mutable -> std::optional<Command> {
    if (next == commands.size()) return std::nullopt;
    return commands[next++];
  };
}

/// Commands as a person types them: a mistake is told, and the prompt comes again.
Session::Source prompted() {
  return [grammar = SessionGrammar("-")]() mutable -> std::optional<Command> {
    for (std::string line; std::fputs("> ", stdout), std::fflush(stdout), std::getline(std::cin, line);) {
      auto read = grammar.read(line);
      if (auto* command = std::get_if<Command>(&read)) return std::move(*command);
      if (const auto* mistake = std::get_if<Mistake>(&read)) std::fprintf(stderr, "%s\n", mistake->text().c_str());
    }
    std::fputs("\n", stdout);
    return std::nullopt;
  };
}

/// Whole, also where it holds a NUL.
void say(const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
}

/// 0, or 1 when the defaults could not be saved.
int play(const Options& options, Session::Source source, bool echo) {
  const platform::AutoreleasePool pool;
  Desktop desktop;
  desktop.mainBundle->open(options.bundle.value_or(bundleBesideCommand()));
  if (options.defaults) desktop.defaults->file = std::make_unique<PropertyListFile>(*options.defaults);
  Session session(desktop, tarnwickMain, std::move(source));
  desktop.journal.reader = [&](const JournalEntry& entry) {
    say(options.trace ? traceLine(entry) : sentenceFor(entry));
  };
  if (!options.trace) desktop.journal.remark = [](const std::string& sentence) { say("    " + sentence); };
  if (echo) session.announce = [](const Command& command) { say(command.text); };
  session.run();
  return desktop.defaults->file->isSaved() ? 0 : unsavedStatus;
}

/// How the session ended, or a mistake's status when what was printed did not arrive.
int finish(int played) {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return played;
  return fail("tarnwick: the output could not be written");
}

} // namespace

int main(int count, char** words) {
  const auto read = readOptions(count, words);
  if (const auto* mistake = std::get_if<std::string>(&read)) return fail("tarnwick: " + *mistake);
  const auto& options = std::get<Options>(read);
  std::error_code unknown;
  if (options.bundle && !std::filesystem::is_directory(*options.bundle, unknown)) {
    return fail(*options.bundle + ": is not a folder");
  }

  if (options.session == "-" && isatty(STDIN_FILENO) != 0) {
    return finish(play(options, prompted(), false));
  }
  auto session = readSessionFile(options.session);
  if (const auto* mistake = std::get_if<Mistake>(&session)) return fail(mistake->text());
  return finish(play(options, listed(std::get<std::vector<Command>>(std::move(session))), !options.trace));
}
