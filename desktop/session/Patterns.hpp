/// All commands there are, once: for the grammar of sessions, for the helps, and for the pages that list them.
#pragma once

#include "desktop/session/Command.hpp"

#include <string>
#include <string_view>

namespace desktop {

/// How a command is written, and what it is for. Arguments in lower case are choices, those in upper case kinds of
/// values, those in brackets may be left out.
struct Pattern {
  std::optional<Verb> verb; ///< none for what only the prompt knows
  std::string_view name;
  std::string_view arguments;
  std::string_view purpose;

  /// `press KEYS [TIMES]`
  std::string usage() const { return std::string(name) + (arguments.empty() ? "" : " ") + std::string(arguments); }
};

// Of two patterns of one command the first is meant when its word is given.
inline constexpr Pattern patterns[] = {
    {Verb::Trust, "trust", "yes|no", "Tarnwick is trusted with Accessibility, or not"},
    {Verb::Taps, "taps", "auto|allow|refuse", "it gets the keyboard as trust says, always, never"},
    {Verb::Screen, "screen", "none", "there is no screen"},
    {Verb::Screen, "screen", "W H", "the screen's size, without menu bar and Dock"},
    {Verb::App, "app", "NAME [BUNDLE-ID]", "an application starts, in the background"},
    {Verb::End, "end", "NAME", "an application ends; Tarnwick quits"},
    {Verb::Front, "front", "none", "no application is in front"},
    {Verb::Front, "front", "NAME", "the user brings an application to the front"},
    {Verb::Focus, "focus", "none", "nothing in front has the keyboard focus"},
    {Verb::Focus, "focus", "ROLE", "an element of this Accessibility role has it"},
    {Verb::Launch, "launch", "", "Tarnwick starts"},
    {Verb::Raw, "raw", "down|up CODE FLAGS", "a key event with exactly these numbers"},
    {Verb::Down, "down", "KEYS", "a key is pressed"},
    {Verb::Up, "up", "KEYS", "a key is released"},
    {Verb::Press, "press", "KEYS [TIMES]", "a key is pressed and released, so many times"},
    {Verb::Tap, "tap", "timeout|input", "the system takes the keyboard from Tarnwick"},
    {Verb::Menu, "menu", "TITLE", "the user chooses an entry of Tarnwick's menu"},
    {Verb::Click, "click", "TITLE [ROW]", "the user clicks a button or checkbox"},
    {Verb::Choose, "choose", "PATH", "the user chooses an application in the open panel"},
    {Verb::Cancel, "cancel", "", "the user cancels the open panel"},
    {Verb::Close, "close", "", "the user closes the settings window"},
    {Verb::Resize, "resize", "W H", "the user drags the settings window to this size"},
    {Verb::Wait, "wait", "SECONDS", "time passes"},
    {Verb::Show, "show", "menu|window|alert|defaults", "tells what is there"},
    {Verb::Draw, "draw", "FILE.svg", "draws the screen of the moment, light and dark"},
    {Verb::Quit, "quit", "", "the system quits Tarnwick"},
    {std::nullopt, "help", "", "at the prompt: tells commands and keys"},
    {std::nullopt, "exit", "", "at the prompt: ends the session, as Ctrl+D does"},
};

} // namespace desktop
