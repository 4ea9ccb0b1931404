/// A session: the user of the desktop, played from a script or at a prompt.
///
/// Read Command first, what the user can do, then SessionGrammar with Words and KeyNames, which read it from a line,
/// and this header and WindowCommands, which do it. Output writes the trace, and main is the command.
#pragma once

#include "desktop/Desktop.hpp"
#include "desktop/drawing/Drawing.hpp"
#include "desktop/session/SessionGrammar.hpp"

#include <functional>
#include <optional>

namespace desktop {

/// The program's own `main`, under the name that it has in this build.
using Program = int (*)();

/// Carries out commands on the desktop. Those before the launch set the desktop up; the rest are carried out while the
/// program's run loop, or an alert or panel that it shows, asks what the user does next.
class Session {
public:
  /// Where the commands come from: the next one, or none at the end.
  using Source = std::function<std::optional<Command>()>;

  Session(Desktop& desktop, Program program, Source source);

  /// The whole session: returns once the input has ended and the program has quit.
  void run();
  /// Hears each command before it is carried out.
  std::function<void(const Command&)> announce = [](const Command&) {};

private:
  bool playNext();
  void play(const Command& command);
  /// The menu bar keeps the last application that has menus of its own there; Tarnwick has none.
  void noteMenuBarOwner();
  /// False when the command found nothing to act on.
  bool carryOut(const Command& command);
  bool carryOutOnProgram(const Command& command);
  /// What an alert or panel keeps the user from.
  bool carryOutUnlessBlocked(const Command& command);
  bool quit();
  bool chooseFromMenu(const std::string& title);
  bool show(Choice what);
  void showMenu() const;
  void showDefaults() const;
  /// False, with a sentence on standard error, when the file cannot be written.
  bool draw(const std::string& file) const;

  Desktop& desktop;
  Program program;
  Source source;
  /// The command with which the program was launched, when it was another than `launch`: carried out once it runs.
  std::optional<Command> waiting;
  /// A menu that was shown stays open for pictures of it, until the user does something else.
  MenuBarState menuBar;
};

} // namespace desktop
