#include "desktop/session/Lines.hpp"

#include <clocale>
#include <cstring>
#include <histedit.h>
#include <langinfo.h>
#include <unistd.h>

namespace desktop {

namespace {

/// Titles hold characters beyond ASCII, also where the user's language is not set.
void readUtf8() {
  if (std::setlocale(LC_CTYPE, "") == nullptr || std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0)
    std::setlocale(LC_CTYPE, "C.UTF-8");
}

/// What is typed is shown where the user looks, also when the output goes elsewhere.
std::FILE* screen() {
  return isatty(STDOUT_FILENO) != 0 ? stdout : stderr;
}

const char* prompt(EditLine* /*line*/) {
  return "> ";
}

} // namespace

struct Lines::Editor {
  EditLine* line = el_init("tarnwick", stdin, screen(), stderr);
  History* history = history_init();
  HistEvent event{};
};

Lines::Lines() {
  readUtf8();
  editor = std::make_unique<Editor>();
  ::history(editor->history, &editor->event, H_SETSIZE, 1000);
  ::history(editor->history, &editor->event, H_SETUNIQUE, 1);
  el_set(editor->line, EL_EDITOR, "emacs");
  el_set(editor->line, EL_SIGNAL, 1); // Ctrl+C leaves the terminal as it was
  el_set(editor->line, EL_PROMPT, prompt);
  el_set(editor->line, EL_HIST, ::history, editor->history);
}

Lines::~Lines() {
  el_end(editor->line);
  history_end(editor->history);
}

std::optional<std::string> Lines::next() {
  int length = 0;
  const char* typed = el_gets(editor->line, &length);
  if (typed == nullptr || length <= 0) return std::nullopt;
  std::string line(typed, static_cast<std::size_t>(length));
  if (line.back() == '\n') line.pop_back();
  if (!line.empty()) ::history(editor->history, &editor->event, H_ENTER, line.c_str());
  return line;
}

} // namespace desktop
