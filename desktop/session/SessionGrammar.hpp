/// From the lines of a session to its commands, or to what is wrong with them.
#pragma once

#include "desktop/session/Command.hpp"

#include <cstdio>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <variant>

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

using Stream = std::shared_ptr<std::FILE>;

/// The commands of a whole session, read one by one, so that many need no more memory than few.
class SessionReader {
public:
  /// From the stream as it goes on, copying what is read if there is a stream for that. `file` is the name of the
  /// session in mistakes.
  SessionReader(std::string file, Stream from, Stream to = nullptr);

  /// The next command or the first mistake; neither at the end. A stream that cannot be read is a mistake without a
  /// line.
  std::variant<std::monostate, Command, Mistake> next();

private:
  /// False at the end.
  bool readLine();

  std::string file;
  Stream stream;
  Stream copy;
  SessionGrammar grammar;
  std::string line;
  bool isFirst = true;
};

/// The session in a file, or on standard input for `-`, found to be without mistakes; else its first one. What is read
/// later is what was checked, whatever becomes of the file: a copy, which has no name and ends with its last reader.
std::variant<SessionReader, Mistake> checkedSession(const std::string& file);

} // namespace desktop
