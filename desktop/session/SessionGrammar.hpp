/// From the lines of a session to its commands, or to what is wrong with them.
#pragma once

#include "desktop/session/Command.hpp"

#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace desktop {

/// What is wrong with a session, and where.
struct Mistake {
  std::string file;
  int line = 0; ///< from 1; 0 where the session as a whole is meant
  std::string what;

  /// `FILE:LINE: what is wrong`, or `FILE: what is wrong`.
  std::string text() const;
};

/// Checks the lines of one session in their order, remembering what later lines depend on: which applications run and
/// whether Tarnwick has been launched. It knows what the lines say, not what came of them: only `end` frees a name.
class SessionGrammar {
public:
  /// The name of the session in mistakes.
  explicit SessionGrammar(std::string file);

  /// The next line, without its `\n`: a command, a mistake, or neither when it is blank or a comment. After a mistake
  /// the next line is judged as if this one had been blank.
  std::variant<std::monostate, Command, Mistake> read(std::string_view line);

private:
  void follow(const Command& command);

  std::string file;
  int line = 0;
  bool launched = false;
  std::set<std::string> applications{"Finder", "Editor", "Tarnwick"};
};

/// All commands of a session, or its first mistake.
std::variant<std::vector<Command>, Mistake> readSession(const std::string& file, std::string_view text);

/// The same from a file, or from standard input for `-`. A file that cannot be read is a mistake without a line.
std::variant<std::vector<Command>, Mistake> readSessionFile(const std::string& file);

} // namespace desktop
