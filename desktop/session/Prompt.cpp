#include "desktop/session/Prompt.hpp"

#include "desktop/runtime/Printing.hpp"
#include "desktop/session/Advice.hpp"
#include "desktop/session/Help.hpp"
#include "desktop/session/Patterns.hpp"
#include "desktop/session/Words.hpp"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace desktop {

namespace {

std::vector<std::string> commandNames() {
  std::vector<std::string> names;
  for (const Pattern& pattern : patterns)
    if (names.empty() || names.back() != pattern.name) names.emplace_back(pattern.name);
  return names;
}

/// The first word, however the line goes on.
std::string_view firstWord(std::string_view line) {
  constexpr std::string_view blanks = " \t";
  line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
  return line.substr(0, line.find_first_of(blanks));
}

/// The names that a mistake may be about, by the words before the unknown one.
constexpr std::pair<std::string_view, std::vector<std::string> (*)()> known[] = {
    {"unknown command ", commandNames}, {"unknown key ", keyWords}, {"unknown modifier ", modifierWords}};

/// The mistake as a sentence, with what was perhaps meant and where to look.
std::string complaint(const std::string& wrong) {
  for (const auto& [beginning, names] : known)
    if (wrong.starts_with(beginning))
      return wrong + "; " + nearMatches(wrong.substr(beginning.size()), names()) + "help lists all there are";
  return wrong;
}

} // namespace

Prompt::Prompt(Desktop& target, NextLine lines) : desktop(target), nextLine(std::move(lines)) {}

void Prompt::answer(Say tellPerson) {
  say = std::move(tellPerson);
  desktop.journal.reader = [this, reader = desktop.journal.reader](const JournalEntry& entry) {
    reader(entry);
    if (!unanswered) return;
    if (entry.front() == "lost" || entry.front() == "panel") {
      const std::string advice = adviceFor(desktop, *unanswered);
      if (!advice.empty()) say(advice);
    }
    // What comes of a choice is only known once the program has looked at it.
    if (entry.front() != "answer" || unanswered->verb != Verb::Choose) unanswered.reset();
  };
  desktop.journal.remark = [this, remark = desktop.journal.remark](const std::string& sentence) {
    remark(sentence);
    unanswered.reset();
  };
}

void Prompt::answerLast() {
  if (unanswered && say) say(outcomeOf(desktop, *unanswered));
  unanswered.reset();
}

std::optional<Command> Prompt::next() {
  answerLast();
  if (!typed) typed = read();
  if (typed && impliesLaunch(typed->verb) && !std::exchange(launched, true) && typed->verb != Verb::Launch) {
    Command launch;
    launch.verb = Verb::Launch;
    return launch;
  }
  unanswered = std::exchange(typed, std::nullopt);
  return unanswered;
}

std::optional<Command> Prompt::read() {
  while (auto line = nextLine()) {
    const std::string_view word = firstWord(*line);
    if (word == "exit") return std::nullopt;
    if (word == "help") {
      std::fputs(promptHelp().c_str(), stdout);
      continue;
    }
    auto read = grammar.read(*line);
    if (const auto* mistake = std::get_if<Mistake>(&read)) complain(complaint(mistake->what));
    if (auto* command = std::get_if<Command>(&read)) return std::move(*command);
  }
  std::fputs("\n", stdout);
  return std::nullopt;
}

} // namespace desktop
