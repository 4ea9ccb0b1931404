#include "desktop/session/Help.hpp"

#include "desktop/session/KeyNames.hpp"
#include "desktop/session/Patterns.hpp"

#include <algorithm>
#include <utility>

namespace desktop {

namespace {

constexpr std::size_t width = 80;

/// The words of the text in lines, each behind the indent.
std::string wrapped(std::string_view text, std::size_t indent) {
  const std::string margin(indent, ' ');
  std::string lines;
  std::string line;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    if (!line.empty() && indent + line.size() + 1 + word.size() > width)
      lines += margin + std::exchange(line, "") + '\n';
    line.append(line.empty() ? "" : " ").append(word);
  }
  return lines + margin + line + '\n';
}

/// A row of a list: what is written, and beside it what it is for.
std::string row(const std::string& written, std::string_view purpose) {
  constexpr std::size_t column = 30;
  std::string lines = wrapped(purpose, column);
  const std::string begin = "  " + written;
  if (begin.size() < column - 1) return lines.replace(0, begin.size(), begin);
  return begin + '\n' + lines;
}

} // namespace

std::string versionText() {
  return "tarnwick " TARNWICK_VERSION;
}

std::string commandHelp() {
  std::string help = "tarnwick [OPTIONS] [SESSION]\n\n" +
                     wrapped("Plays Tarnwick in a stand-in for a Mac's desktop. SESSION is a text file with a command "
                             "on each line; without it, or as -, commands are read from standard input, with a prompt "
                             "where that is a terminal.",
                             0) +
                     "\nOptions:\n";
  for (const Option& option : options)
    help += row(option.usage(), option.purpose);
  return help + '\n' + promptHelp();
}

std::string promptHelp() {
  std::string help = "Commands; the first of those below launch that is given launches Tarnwick:\n";
  for (const Pattern& pattern : patterns)
    help += row(pattern.usage(), pattern.purpose);
  help += "A word with blanks stands in double quotes; # starts a comment.\n\n"
          "Keys, with their modifiers before them as in ctrl+shift+left, in any case:\n";
  return help + row("modifiers", modifierNames()) + row("keys", keyNames());
}

} // namespace desktop
