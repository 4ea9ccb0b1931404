/// The command `tarnwick`: the program in the stand-in desktop, driven by a session.

#include "desktop/session/Help.hpp"
#include "desktop/session/Lines.hpp"
#include "desktop/session/Output.hpp"
#include "desktop/session/Prompt.hpp"
#include "desktop/session/Session.hpp"

#include <algorithm>
#include <cstdio>
#include <map>
#include <unistd.h>

int tarnwickMain();

namespace {

using namespace desktop;

constexpr int unsavedStatus = 1;
constexpr int mistakeStatus = 2;

/// The words after the command: options by their names, each with its argument, and the session.
struct Words {
  std::map<std::string_view, std::string> given;
  std::string session = "-";

  bool has(const Option& option) const { return given.contains(option.name); }
};

/// The words, or a sentence about what is wrong with them.
std::variant<Words, std::string> readWords(int count, char** arguments) {
  Words words;
  bool hasSession = false;
  for (int index = 1; index < count; ++index) {
    const std::string word = arguments[index];
    const auto* option = std::ranges::find(options, word, &Option::name);
    if (option != std::end(options)) {
      std::string& argument = words.given[option->name];
      if (option->argument.empty()) continue;
      if (++index == count || *arguments[index] == '\0') return "the option " + word + " wants a name after it";
      argument = arguments[index];
    } else if (word.size() > 1 && word.front() == '-') {
      return "unknown option " + word + "; --help lists all there are";
    } else if (hasSession) {
      return "more than one session: " + word;
    } else {
      words.session = word;
      hasSession = true;
    }
  }
  return words;
}

/// A sentence about a file or folder that cannot be what an option calls it.
std::optional<std::string> wrongFile(const Words& words) {
  namespace fs = std::filesystem;
  std::error_code unknown;
  if (words.has(bundleOption) && !fs::is_directory(words.given.at(bundleOption.name), unknown))
    return words.given.at(bundleOption.name) + ": is not a folder";
  if (!words.has(defaultsOption)) return std::nullopt;
  const fs::path defaults = words.given.at(defaultsOption.name);
  if (fs::is_directory(defaults, unknown)) return defaults.string() + ": is a folder";
  const fs::path folder = defaults.parent_path();
  if (!folder.empty() && !fs::is_directory(folder, unknown)) return defaults.string() + ": there is no such folder";
  return std::nullopt;
}

int fail(const std::string& sentence) {
  complain(sentence);
  return mistakeStatus;
}

/// The bundle that the build put beside the command.
std::string bundleBesideCommand() {
  std::error_code unknown;
  return (std::filesystem::read_symlink("/proc/self/exe", unknown).parent_path() / "Tarnwick.app").string();
}

/// Whole, also where it holds a NUL.
void say(const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
}

void sayIndented(const std::string& sentence) {
  say(printable("    " + sentence));
}

/// A desktop as the options want it, of which standard output tells.
struct Stage {
  const platform::AutoreleasePool pool;
  Desktop desktop;

  explicit Stage(const Words& words) {
    const auto& given = words.given;
    desktop.mainBundle->open(words.has(bundleOption) ? given.at(bundleOption.name) : bundleBesideCommand());
    if (words.has(defaultsOption))
      desktop.defaults->file = std::make_unique<PropertyListFile>(given.at(defaultsOption.name));
    desktop.journal.reader = [traces = words.has(traceOption)](const JournalEntry& entry) {
      say(traces ? traceLine(entry) : printable(sentenceFor(entry)));
    };
    if (!words.has(traceOption)) desktop.journal.remark = sayIndented;
  }

  /// 1 when the defaults could not be saved, else 0.
  int status() const { return desktop.defaults->file->isSaved() ? 0 : unsavedStatus; }
};

/// What a reader is told before a command of a session is carried out.
void announce(const Command& command) {
  if (!command.headings.empty()) say("");
  for (const std::string& heading : command.headings)
    say(printable("# " + heading));
  say(printable(command.text));
}

/// Both answer how it went, as an exit status.
int play(const Words& words, SessionReader& commands) {
  Stage stage(words);
  int readStatus = 0;
  Session session(stage.desktop, tarnwickMain, [&]() -> std::optional<Command> {
    auto read = commands.next();
    if (auto* command = std::get_if<Command>(&read)) return std::move(*command);
    if (const auto* mistake = std::get_if<Mistake>(&read)) readStatus = fail(mistake->text());
    return std::nullopt;
  });
  if (!words.has(traceOption)) session.announce = announce;
  session.run();
  return std::max(stage.status(), readStatus);
}

/// Not called where nobody can sit at it.
[[maybe_unused]] int playAtPrompt(const Words& words) {
  Stage stage(words);
  Lines lines;
  Prompt prompt(stage.desktop, [&] { return lines.next(); });
  if (!words.has(traceOption)) {
    say(versionText() + ": Tarnwick in a stand-in for a Mac's desktop, an Editor in front, the Finder behind it.\n"
                        "Type press ctrl+c to see what Tarnwick makes of it, help for all commands, exit to leave.");
    prompt.answer(sayIndented);
  }
  Session(stage.desktop, tarnwickMain, [&] { return prompt.next(); }).run();
  return stage.status();
}

/// How the session ended, or a mistake's status when what was printed did not arrive.
int finish(int played) {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return played;
  return fail("tarnwick: the output could not be written");
}

} // namespace

int main(int count, char** arguments) {
  const auto read = readWords(count, arguments);
  if (const auto* mistake = std::get_if<std::string>(&read)) return fail("tarnwick: " + *mistake);
  const auto& words = std::get<Words>(read);
  if (words.has(helpOption) || words.has(versionOption)) {
    std::fputs((words.has(helpOption) ? commandHelp() : versionText() + '\n').c_str(), stdout);
    return finish(0);
  }
  if (const auto wrong = wrongFile(words)) return fail(*wrong);

  if constexpr (TARNWICK_HAS_PROMPT) {
    if (words.session == "-" && isatty(STDIN_FILENO) != 0) return finish(playAtPrompt(words));
  }
  auto session = checkedSession(words.session);
  if (const auto* mistake = std::get_if<Mistake>(&session)) return fail(mistake->text());
  return finish(play(words, std::get<SessionReader>(session)));
}
