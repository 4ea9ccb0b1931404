#include "desktop/session/Words.hpp"

#include "desktop/foundation/Numbers.hpp"
#include "desktop/session/Output.hpp"

#include <algorithm>
#include <stdexcept>

namespace desktop {

namespace {

constexpr std::string_view blanks = " \t";

/// Removes the first `count` characters of `rest` and returns them.
std::string_view take(std::string_view& rest, std::size_t count) {
  const std::string_view taken = rest.substr(0, count);
  rest.remove_prefix(taken.size());
  return taken;
}

char byteEscape(std::string_view& rest) {
  const std::string_view digits = take(rest, 2);
  const auto byte = numberIn<unsigned char>(digits, 16);
  if (digits.size() != 2 || !byte) throw std::invalid_argument("\\x needs two hex digits");
  return static_cast<char>(*byte);
}

/// What stands after a backslash in quotes.
char escapeSequence(std::string_view& rest) {
  const std::string_view letter = take(rest, 1);
  if (letter == "\"" || letter == "\\") return letter.front();
  if (letter == "t") return '\t';
  if (letter == "n") return '\n';
  if (letter == "r") return '\r';
  if (letter == "x") return byteEscape(rest);
  throw std::invalid_argument("unknown escape " + inQuotes("\\" + std::string(letter)));
}

std::string quotedWord(std::string_view& rest) {
  std::string word;
  take(rest, 1);
  while (!rest.empty()) {
    word += take(rest, std::min(rest.find_first_of("\"\\"), rest.size()));
    const std::string_view stop = take(rest, 1);
    if (stop == "\\") word += escapeSequence(rest);
    if (stop != "\"") continue;
    if (!rest.empty() && blanks.find(rest.front()) == std::string_view::npos)
      throw std::invalid_argument("text right after a closing quote");
    return word;
  }
  throw std::invalid_argument("unterminated quote");
}

} // namespace

std::vector<std::string> splitWords(std::string_view line) {
  std::vector<std::string> words;
  for (;;) {
    take(line, line.find_first_not_of(blanks));
    if (line.empty() || line.front() == '#') return words;
    words.push_back(line.front() == '"' ? quotedWord(line) : std::string(take(line, line.find_first_of(blanks))));
  }
}

std::string asWord(std::string_view word) {
  std::string safe = escaped(word);
  if (!word.empty() && safe == word && word.find(' ') == std::string_view::npos && word.front() != '#' &&
      word.front() != '"')
    return safe;
  std::string quoted = "\"";
  for (const char sign : safe)
    quoted.append(sign == '"' ? "\\" : "") += sign;
  return quoted + '"';
}

std::string inQuotes(std::string_view word) {
  constexpr std::size_t longest = 60;
  if (word.size() <= longest) return '"' + escaped(word) + '"';
  std::size_t cut = longest;
  while (cut > 0 && (word[cut] & 0xc0) == 0x80) // not inside a UTF-8 character
    --cut;
  return '"' + escaped(word.substr(0, cut)) + "...\"";
}

} // namespace desktop
