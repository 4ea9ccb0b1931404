#include "desktop/session/Session.hpp"

#include "desktop/session/WindowCommands.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

namespace desktop {
namespace {

void type(Desktop& desktop, CGEventType type, KeyStroke key) {
  desktop.server.type(type, key.code, key.flags);
}

bool bringToFront(Desktop& desktop, const std::optional<std::string>& name) {
  if (!name) {
    desktop.frontmost = nullptr;
    return true;
  }
  RunningApplication* const application = desktop.named(*name);
  if (application == nullptr) return false;
  desktop.frontmost = shared(application);
  return true;
}

bool focus(Desktop& desktop, const std::optional<std::string>& role) {
  if (!desktop.frontmost) return false;
  desktop.frontmost->role = role;
  return true;
}

void setScreen(Desktop& desktop, const std::optional<Extent>& size) {
  desktop.screen = size ? std::optional(CGSize{size->width, size->height}) : std::nullopt;
}

TapGrant grantOf(Word word) {
  if (word == Word::Allow) return TapGrant::Allow;
  return word == Word::Refuse ? TapGrant::Refuse : TapGrant::Auto;
}

} // namespace

Session::Session(Desktop& target, Program start, Source commands)
    : desktop(target), program(start), source(std::move(commands)) {
  desktop.nextCommand = [this] { return playNext(); };
}

void Session::run() {
  bool launches = false;
  while (!launches) {
    auto command = source();
    if (!command) break;
    launches = impliesLaunch(command->verb);
    if (launches && command->verb != Verb::Launch) {
      waiting = std::move(command);
    } else {
      play(*command);
    }
  }
  desktop.inputEnded = !launches;
  program();
}

bool Session::playNext() {
  auto command = waiting ? std::exchange(waiting, std::nullopt) : source();
  if (!command) return false;
  play(*command);
  return true;
}

void Session::play(const Command& command) {
  announce(command);
  noteMenuBarOwner();
  const bool done = carryOut(command);
  noteMenuBarOwner();
  if (!done) desktop.journal({"lost", command.text});
  if (command.verb != Verb::Draw) menuBar.menuIsOpen = done && command.verb == Verb::Show && command.word == Word::Menu;
}

void Session::noteMenuBarOwner() {
  Ref<RunningApplication>& owner = menuBar.owner;
  if (!desktop.tarnwick || desktop.frontmost.get() != desktop.tarnwick.get()) owner = desktop.frontmost;
  if (owner && desktop.named(owner->name) != owner.get()) owner = nullptr;
}

bool Session::carryOut(const Command& command) {
  switch (command.verb) {
  case Verb::Trust:
    desktop.trusted = command.word == Word::Yes;
    return true;
  case Verb::Taps:
    desktop.server.grant = grantOf(command.word);
    return true;
  case Verb::Screen:
    setScreen(desktop, command.size);
    return true;
  case Verb::App:
    desktop.start(*command.name, command.bundleIdentifier.value_or(""));
    return true;
  case Verb::End:
    // The program does not just vanish: it is made to quit.
    if (command.name == "Tarnwick" && desktop.tarnwick) return quit();
    return desktop.end(*command.name);
  case Verb::Front:
    return bringToFront(desktop, command.name);
  case Verb::Focus:
    return focus(desktop, command.role);
  case Verb::Launch:
    return true;
  case Verb::Raw:
    type(desktop, command.word == Word::Down ? kCGEventKeyDown : kCGEventKeyUp, command.key);
    return true;
  case Verb::Down:
    type(desktop, kCGEventKeyDown, command.key);
    return true;
  case Verb::Up:
    type(desktop, kCGEventKeyUp, command.key);
    return true;
  case Verb::Press:
    for (std::uint64_t count = 0; count < command.times; ++count) {
      type(desktop, kCGEventKeyDown, command.key);
      type(desktop, kCGEventKeyUp, command.key);
    }
    return true;
  case Verb::Wait:
    desktop.wait(command.seconds);
    return true;
  case Verb::Show:
    return show(command.word);
  case Verb::Draw:
    return draw(command.path);
  default:
    return !desktop.appKit->isTerminated && carryOutOnProgram(command);
  }
}

bool Session::carryOutOnProgram(const Command& command) {
  AppKit& appKit = *desktop.appKit;
  switch (command.verb) {
  case Verb::Tap:
    return desktop.server.disableTaps(command.word == Word::Timeout ? kCGEventTapDisabledByTimeout
                                                                    : kCGEventTapDisabledByUserInput);
  case Verb::Click:
    if (Alert* const alert = appKit.frontAlert()) return alert->press(command.title, command.row);
    return appKit.frontModal() == nullptr && clickInWindow(desktop, command.title, command.row);
  case Verb::Choose:
    if (appKit.frontPanel() == nullptr) return false;
    appKit.frontPanel()->choose(command.path);
    return true;
  case Verb::Cancel:
    if (appKit.frontPanel() == nullptr) return false;
    appKit.frontPanel()->cancel();
    return true;
  default:
    return appKit.frontModal() == nullptr && carryOutUnlessBlocked(command);
  }
}

bool Session::carryOutUnlessBlocked(const Command& command) {
  AppKit& appKit = *desktop.appKit;
  switch (command.verb) {
  case Verb::Menu:
    return chooseFromMenu(command.title);
  case Verb::Close:
    return closeWindow(appKit);
  case Verb::Resize:
    return resizeWindow(appKit, {command.size->width, command.size->height});
  case Verb::Quit:
    return quit();
  default:
    return false;
  }
}

bool Session::quit() {
  const AppKit& appKit = *desktop.appKit;
  if (appKit.isTerminated || appKit.frontModal() != nullptr) return false;
  appKit.application->terminate(nullptr);
  return true;
}

bool Session::chooseFromMenu(const std::string& title) {
  const Menu* menu = desktop.appKit->statusMenu();
  const auto item = shared(menu != nullptr ? menu->itemWithTitle(title) : nullptr);
  if (!item || !item->enabled) return false;
  sendAction(item->action, item->target, item.get());
  return true;
}

bool Session::show(Word what) {
  switch (what) {
  case Word::Menu:
    if (desktop.appKit->statusMenu() == nullptr) return false;
    showMenu();
    return true;
  case Word::Alert:
    if (desktop.appKit->frontAlert() == nullptr) return false;
    desktop.journal(desktop.appKit->frontAlert()->fact());
    return true;
  case Word::Window:
    return showWindow(desktop);
  case Word::Defaults:
    showDefaults();
    return true;
  default:
    return false;
  }
}

void Session::showMenu() const {
  for (const auto& item : desktop.appKit->statusMenu()->items) {
    if (item->isSeparator) {
      desktop.journal({"item", ""});
      continue;
    }
    desktop.journal(
        {"item", textOf(item->title.get()), item->enabled ? "enabled" : "disabled", textOf(item->keyEquivalent.get())});
  }
}

void Session::showDefaults() const {
  const std::u16string key = u"exemptBundleIDs";
  Fact fact{"default", utf8(key)};
  const PropertyList* const value = desktop.defaults->file->value(key);
  const auto* const stored = value != nullptr ? value->as<PropertyList::Array>() : nullptr;
  if (stored != nullptr) {
    for (const PropertyList& element : *stored) {
      const auto* const text = element.as<std::u16string>();
      fact.push_back(text != nullptr ? utf8(*text) : "(no text)");
    }
  }
  if (fact.size() == 2) fact.emplace_back();
  desktop.journal(fact);
}

bool Session::draw(const std::string& file) const {
  const std::string picture = drawScreen(desktop, menuBar);
  std::ofstream stream(file, std::ios::binary);
  stream << picture;
  stream.close();
  if (stream) return true;
  std::fprintf(stderr, "tarnwick: the picture %s cannot be written: %s\n", file.c_str(), std::strerror(errno));
  return false;
}

} // namespace desktop
