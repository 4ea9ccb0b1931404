/// The prompt: a session that a person types, command after command.
#pragma once

#include "desktop/Desktop.hpp"
#include "desktop/session/SessionGrammar.hpp"

#include <functional>
#include <optional>
#include <string>

namespace desktop {

/// Reads commands until `exit` or the end of the lines. A mistake is told, and the next line is read.
class Prompt {
public:
  /// The next line that was typed; none at the end.
  using NextLine = std::function<std::optional<std::string>()>;
  using Say = std::function<void(const std::string&)>;

  /// The desktop outlives the prompt.
  Prompt(Desktop& desktop, NextLine nextLine);

  /// From now on every command is answered: where nothing else is told of it, by what came of it, and where it was
  /// lost, by what there is. Takes over the journal's reader and remark, which go on hearing all.
  void answer(Say say);
  /// The next command. Where one launches Tarnwick without saying so, `launch` comes first, so that what the launch
  /// tells is not taken for its answer.
  std::optional<Command> next();

private:
  void answerLast();
  std::optional<Command> read();

  Desktop& desktop;
  NextLine nextLine;
  Say say;
  SessionGrammar grammar{"-"};
  /// What has been typed and not been asked for yet.
  std::optional<Command> typed;
  bool launched = false;
  /// The one that is being carried out, until something is told of it.
  std::optional<Command> unanswered;
};

} // namespace desktop
