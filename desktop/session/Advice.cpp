#include "desktop/session/Advice.hpp"

#include "desktop/session/WindowCommands.hpp"
#include "desktop/session/Words.hpp"

#include <algorithm>
#include <utility>

namespace desktop {

namespace {

using Names = std::vector<std::string>;

/// The names as a session writes them: `OK, "Move to Bin"`.
std::string listed(const Names& names) {
  std::string list;
  for (const std::string& name : names)
    list += (list.empty() ? "" : ", ") + asWord(name);
  return list.empty() ? "nothing" : list;
}

/// Letters and digits alone, whatever their case: of `Settings...` and `Settings…` the same.
std::string folded(std::string_view name) {
  std::string rest;
  for (const char sign : name) {
    if (sign >= 'A' && sign <= 'Z') rest += static_cast<char>(sign - 'A' + 'a');
    if ((sign >= 'a' && sign <= 'z') || (sign >= '0' && sign <= '9')) rest += sign;
  }
  return rest;
}

std::string_view from(std::size_t place, std::string_view name) {
  return name.substr(std::min(place, name.size()));
}

/// Whether so many slips make one of the other: a letter that is wrong, missing or too much, or two that are swapped.
bool isWithin(std::size_t slips, std::string_view one, std::string_view other) {
  while (!one.empty() && !other.empty() && one.front() == other.front()) {
    one.remove_prefix(1);
    other.remove_prefix(1);
  }
  if (slips == 0 || (one.empty() && other.empty())) return one == other;
  const bool swapped = one.size() > 1 && other.size() > 1 && one[0] == other[1] && one[1] == other[0];
  return isWithin(slips - 1, from(1, one), from(1, other)) || isWithin(slips - 1, from(1, one), other) ||
         isWithin(slips - 1, one, from(1, other)) || (swapped && isWithin(slips - 1, from(2, one), from(2, other)));
}

bool isPart(std::string_view one, std::string_view other) {
  return std::min(one.size(), other.size()) > 1 &&
         (one.find(other) != std::string_view::npos || other.find(one) != std::string_view::npos);
}

constexpr std::size_t lastStep = 3;

/// From near to far: no slip, one, two, and at last a part of the name; in a short name a second slip, and in a very
/// short one any, makes another name.
bool isNear(std::size_t step, std::string_view one, std::string_view other) {
  if (one.empty() || other.empty()) return false;
  if (step == lastStep) return isPart(one, other);
  return step * 3 <= std::max(one.size(), other.size()) && isWithin(step, one, other);
}

std::string offer(std::string_view wanted, const std::string& where, const Names& names) {
  return nearMatches(wanted, names) + where + ": " + listed(names);
}

Names applications(const Desktop& desktop) {
  Names names;
  for (const auto& [name, application] : desktop.applications.running)
    names.push_back(name);
  return names;
}

Names buttonsOf(const Alert& alert) {
  Names names;
  for (const auto& button : alert.buttons)
    names.push_back(textOf(button->title.get()));
  return names;
}

/// What the open panel can show of the folder that it opens in.
Names installedApplications(const Desktop& desktop) {
  Names paths;
  for (const auto& [path, identifier] : desktop.installed)
    paths.push_back(path);
  return paths;
}

std::string adviceOnMenu(const Menu* menu, const std::string& title) {
  if (menu == nullptr) return "Tarnwick has no menu";
  const MenuItem* const grey = menu->itemWithTitle(title);
  if (grey != nullptr) return asWord(title) + " is grey";
  Names entries;
  for (const auto& item : menu->items)
    if (!item->isSeparator) entries.push_back(textOf(item->title.get()));
  return offer(title, "the menu has", entries);
}

/// Of commands that need Tarnwick and no alert or panel in front of it.
std::string adviceUnlessBlocked(const Desktop& desktop, const Command& command) {
  const Window* const window = desktop.appKit.frontWindow();
  switch (command.verb) {
  case Verb::Menu:
    return adviceOnMenu(desktop.appKit.statusMenu(), command.title);
  case Verb::Tap:
    return "Tarnwick does not have the keyboard";
  case Verb::Click:
    if (window == nullptr) return "neither an alert nor a window is open";
    return offer(command.title, "the window has", buttonsInWindow(desktop.appKit));
  case Verb::Choose:
  case Verb::Cancel:
    return "the open panel is not shown";
  default:
    return window == nullptr ? "no window is open" : "";
  }
}

std::string adviceOnProgram(const Desktop& desktop, const Command& command) {
  if (desktop.appKit.isTerminated) return "Tarnwick has quit, and nothing more comes of it; exit leaves the prompt";
  if (const Alert* const alert = desktop.appKit.frontAlert())
    return offer(command.title, "an alert waits for a click on one of its buttons", buttonsOf(*alert));
  if (desktop.appKit.frontPanel() != nullptr)
    return "the open panel waits: choose PATH, or cancel; it lists: " + listed(installedApplications(desktop));
  return adviceUnlessBlocked(desktop, command);
}

std::string outcomeOfClick(const Desktop& desktop, const Command& command) {
  const Button* const button = buttonInWindow(desktop.appKit, command.title, command.row);
  if (button == nullptr || !button->isCheckbox()) return "clicked";
  return asWord(command.title) + (button->isOn() ? " is on" : " is off");
}

/// As it is added to the exemptions; empty where the path leads to no application, or to one that cannot be told apart.
std::string identifierAt(const std::string& path) {
  const Ref<Bundle> bundle(platform::adopt, create<Bundle>().detach()->initWithURL(fileURL(path).get()));
  if (!bundle || !bundle->identifier) return "";
  return textOf(bundle->identifier->stringByTrimmingCharactersInSet(create<CharacterSet>().get()).get());
}

std::string outcomeOfChoice(const Desktop& desktop, const std::string& path) {
  const std::string identifier = identifierAt(path);
  if (!identifier.empty()) return asWord(identifier) + " is exempt";
  return "no application with an identifier is there, and none is exempted; " +
         offer(path, "the panel lists", installedApplications(desktop));
}

std::string outcomeOfMenu(const std::string& title) {
  for (const auto& [beginning, state] : {std::pair{"Disable ", " is disabled"}, {"Enable ", " is enabled"}})
    if (title.starts_with(beginning)) return title.substr(std::string_view(beginning).size()) + state;
  return "chosen";
}

} // namespace

std::string nearMatches(std::string_view name, const Names& names) {
  const std::string wanted = folded(name);
  Names near;
  for (std::size_t step = 0; near.empty() && step <= lastStep; ++step)
    for (const std::string& other : names)
      if (isNear(step, wanted, folded(other))) near.push_back(other);
  return near.empty() ? "" : "did you mean " + listed(near) + "? ";
}

std::string adviceFor(const Desktop& desktop, const Command& command) {
  switch (command.verb) {
  case Verb::End:
    if (command.name == "Tarnwick" && desktop.applications.tarnwick) return adviceOnProgram(desktop, command);
    [[fallthrough]];
  case Verb::Front:
    return offer(*command.name, "there run", applications(desktop));
  case Verb::Focus:
    return "no application is in front";
  case Verb::Show:
    return command.choice == Choice::Menu ? "there is no menu" : "none is open";
  case Verb::Draw: // told already why
    return "";
  default:
    return adviceOnProgram(desktop, command);
  }
}

std::string outcomeOf(const Desktop& desktop, const Command& command) {
  switch (command.verb) {
  case Verb::Trust:
    return command.choice == Choice::Yes ? "Tarnwick is trusted" : "Tarnwick is not trusted";
  case Verb::App:
    return *command.name + " runs, in the background";
  case Verb::End:
    return *command.name + " has ended";
  case Verb::Front:
    return command.name.value_or("no application") + " is in front";
  case Verb::Focus:
    return command.role.value_or("nothing") + " has the keyboard focus";
  case Verb::Menu:
    return outcomeOfMenu(command.title);
  case Verb::Click:
    return outcomeOfClick(desktop, command);
  case Verb::Choose:
    return outcomeOfChoice(desktop, command.path);
  case Verb::Close:
    return "the window is closed";
  case Verb::Draw:
    return command.path + " is drawn";
  default:
    return "done";
  }
}

} // namespace desktop
