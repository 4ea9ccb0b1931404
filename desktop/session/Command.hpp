/// What a session can ask for.
#pragma once

#include "desktop/session/KeyNames.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace desktop {

/// What a line of a session asks for. Those before Launch prepare the desktop; Launch and all after it launch Tarnwick,
/// unless that has been done.
enum class Verb {
  Trust,
  Taps,
  Screen,
  App,
  End,
  Front,
  Focus,
  Launch,
  Raw,
  Down,
  Up,
  Press,
  Tap,
  Menu,
  Click,
  Choose,
  Cancel,
  Close,
  Resize,
  Wait,
  Show,
  Draw,
  Quit,
};

/// Whether a command launches Tarnwick where that has not been done before.
constexpr bool impliesLaunch(Verb verb) {
  return verb >= Verb::Launch;
}

/// The words that some commands let the user choose from.
enum class Choice { None, Yes, No, Auto, Allow, Refuse, Down, Up, Timeout, Input, Menu, Window, Alert, Defaults };

/// Width and height in points, finite and not negative.
struct Extent {
  double width = 0;
  double height = 0;
};

/// One checked line of a session. Fields that its verb does not use keep their defaults.
struct Command {
  int line = 0;                      ///< from 1
  std::string text;                  ///< the whole line as typed, without its line end
  std::vector<std::string> headings; ///< in a whole session, the comments on the lines right before it
  Verb verb = Verb::Launch;
  Choice choice = Choice::None;                ///< trust, taps, raw, tap, show
  std::optional<std::string> name;             ///< app, end, front; absent in `front none`
  std::optional<std::string> bundleIdentifier; ///< app, if given
  std::optional<std::string> role;             ///< focus; absent in `focus none`
  std::optional<Extent> size;                  ///< screen, resize; absent in `screen none`
  KeyStroke key;                               ///< raw, down, up, press
  std::uint64_t times = 1;                     ///< press: pairs of down and up
  std::string title;                           ///< menu, click
  std::uint64_t row = 1;                       ///< click: which of equal titles, from 1
  std::string path;                            ///< choose, draw
  double seconds = 0;                          ///< wait: finite and not negative
};

} // namespace desktop
