#include "desktop/session/Session.hpp"

#include "desktop/runtime/Printing.hpp"
#include "desktop/session/WindowCommands.hpp"

#include <cerrno>
#include <cstring>
#include <fstream>

namespace desktop {
namespace {

void type(Desktop& desktop, CGEventType type, KeyStroke key) {
  desktop.server.type(type, key.code, key.flags);
}

bool switchTo(Desktop& desktop, const std::optional<std::string>& name) {
  if (!name) {
    desktop.applications.frontmost = nullptr;
    return true;
  }
  RunningApplication* const application = desktop.applications.named(*name);
  if (application == nullptr) return false;
  desktop.applications.frontmost = shared(application);
  return true;
}

bool focus(Desktop& desktop, const std::optional<std::string>& role) {
  if (!desktop.applications.frontmost) return false;
  desktop.applications.frontmost->role = role;
  return true;
}

void setScreen(Desktop& desktop, const std::optional<Extent>& size) {
  desktop.appKit.screen = size ? std::optional(CGSize{size->width, size->height}) : std::nullopt;
}

TapGrant grantOf(Choice choice) {
  if (choice == Choice::Allow) return TapGrant::Allow;
  return choice == Choice::Refuse ? TapGrant::Refuse : TapGrant::Auto;
}

} // namespace

Session::Session(Desktop& target, Program start, Source commands)
    : desktop(target), program(start), source(std::move(commands)) {
  desktop.runLoop.nextCommand = [this] { return playNext(); };
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
  desktop.runLoop.inputEnded = !launches;
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
  if (!done) tell({"lost", command.text});
  if (command.verb != Verb::Draw)
    menuBar.menuIsOpen = done && command.verb == Verb::Show && command.choice == Choice::Menu;
}

void Session::noteMenuBarOwner() {
  Ref<RunningApplication>& owner = menuBar.owner;
  if (!desktop.applications.tarnwick || desktop.applications.frontmost.get() != desktop.applications.tarnwick.get())
    owner = desktop.applications.frontmost;
  if (owner && desktop.applications.named(owner->name) != owner.get()) owner = nullptr;
}

bool Session::carryOut(const Command& command) {
  switch (command.verb) {
  case Verb::Trust:
    desktop.accessibility.trusted = command.choice == Choice::Yes;
    return true;
  case Verb::Taps:
    desktop.server.grant = grantOf(command.choice);
    return true;
  case Verb::Screen:
    setScreen(desktop, command.size);
    return true;
  case Verb::App:
    desktop.start(*command.name, command.bundleIdentifier.value_or(""));
    return true;
  case Verb::End:
    // The program does not just vanish: it is made to quit.
    if (command.name == "Tarnwick" && desktop.applications.tarnwick) return quit();
    return desktop.applications.end(*command.name);
  case Verb::Front:
    return switchTo(desktop, command.name);
  case Verb::Focus:
    return focus(desktop, command.role);
  case Verb::Launch:
    return true;
  case Verb::Raw:
    type(desktop, command.choice == Choice::Down ? kCGEventKeyDown : kCGEventKeyUp, command.key);
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
    desktop.runLoop.wait(command.seconds);
    return true;
  case Verb::Show:
    return show(command.choice);
  case Verb::Draw:
    return draw(command.path);
  default:
    return !desktop.appKit.isTerminated && carryOutOnProgram(command);
  }
}

bool Session::carryOutOnProgram(const Command& command) {
  AppKit& appKit = desktop.appKit;
  switch (command.verb) {
  case Verb::Tap:
    return desktop.server.disableTaps(command.choice == Choice::Timeout ? kCGEventTapDisabledByTimeout
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
  AppKit& appKit = desktop.appKit;
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
  const AppKit& appKit = desktop.appKit;
  if (appKit.isTerminated || appKit.frontModal() != nullptr) return false;
  appKit.application->terminate(nullptr);
  return true;
}

bool Session::chooseFromMenu(const std::string& title) {
  const Menu* menu = desktop.appKit.statusMenu();
  const auto item = shared(menu != nullptr ? menu->itemWithTitle(title) : nullptr);
  if (!item || !item->enabled) return false;
  sendAction(item->action, item->target, item.get());
  return true;
}

bool Session::show(Choice what) {
  switch (what) {
  case Choice::Menu:
    if (desktop.appKit.statusMenu() == nullptr) return false;
    showMenu();
    return true;
  case Choice::Alert:
    if (desktop.appKit.frontAlert() == nullptr) return false;
    tell(desktop.appKit.frontAlert()->entry());
    return true;
  case Choice::Window:
    return showWindow(desktop);
  case Choice::Defaults:
    showDefaults();
    return true;
  default:
    return false;
  }
}

void Session::showMenu() const {
  for (const auto& item : desktop.appKit.statusMenu()->items) {
    if (item->isSeparator) {
      tell({"item", ""});
      continue;
    }
    tell(
        {"item", textOf(item->title.get()), item->enabled ? "enabled" : "disabled", textOf(item->keyEquivalent.get())});
  }
}

void Session::showDefaults() const {
  const std::u16string key = u"exemptBundleIDs";
  JournalEntry entry{"default", utf8(key)};
  const PropertyList* const value = desktop.defaults->file->value(key);
  const auto* const stored = value != nullptr ? value->as<PropertyList::Array>() : nullptr;
  if (stored != nullptr) {
    for (const PropertyList& element : *stored) {
      const auto* const text = element.as<std::u16string>();
      entry.push_back(text != nullptr ? utf8(*text) : "(no text)");
    }
  }
  if (entry.size() == 2) entry.emplace_back();
  tell(entry);
}

bool Session::draw(const std::string& file) const {
  const std::string picture = drawScreen(desktop, menuBar);
  std::ofstream stream(file, std::ios::binary);
  stream << picture;
  stream.close();
  if (stream) return true;
  complain("tarnwick: the picture " + file + " cannot be written: " + std::strerror(errno));
  return false;
}

} // namespace desktop
