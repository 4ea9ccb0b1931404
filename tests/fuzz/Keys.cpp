/// Key events of any kind, in any order with everything that decides about them, held against the table of shortcuts.
#include "desktop/session/Output.hpp"
#include "remap/KeyRemapper.hpp"
#include "tests/fuzz/Fuzz.hpp"
#include "tests/support/Shortcuts.hpp"
#include "tests/support/TestDesktop.hpp"

#include <cstdio>
#include <set>

namespace desktop {
namespace {

using tarnwick::KeyRemapper;

constexpr std::pair<std::string_view, bool KeyRemapper::*> switches[] = {
    {clipboard, &KeyRemapper::mapClipboard},
    {redo, &KeyRemapper::mapRedo},
    {newFile, &KeyRemapper::mapNewFile},
    {save, &KeyRemapper::mapSave},
    {wordSkip, &KeyRemapper::mapWordSkip},
    {find, &KeyRemapper::mapFind},
    {swap, &KeyRemapper::mapAtQuoteSwap},
    {bold, &KeyRemapper::mapBold},
    {underline, &KeyRemapper::mapUnderline},
    {italic, &KeyRemapper::mapItalic},
    {lockScreen, &KeyRemapper::mapLockScreen},
    {deleteToBin, &KeyRemapper::mapFinderDeleteToBin},
    {confirm, &KeyRemapper::mapFinderDeleteConfirm},
    {rename, &KeyRemapper::mapFinderRename},
};
constexpr const char16_t* identifiers[] = {u"com.apple.finder", u"com.example.editor", u"app.tarnwick.Tarnwick",
                                           u"com.apple.Finder", u"com.example.other"};
constexpr const char* roles[] = {"AXTextField", "AXTextArea", "AXComboBox", "AXList", "AXGroup", ""};

/// Told at the process's end.
struct Count {
  long events = 0;
  ~Count() { std::printf("%ld key events were held against the table\n", events); }
} count;

class Typist {
public:
  explicit Typist(Bytes bytes) : input(bytes) {
    for (const char16_t* identifier : identifiers)
      machine.start("Application", utf8(identifier));
    machine.start("Nameless", "");
    machine.mainBundle->identifier = string(u"app.tarnwick.Tarnwick");
    machine.journal.reader = [this](const JournalEntry& entry) { entries.push_back(entry); };
    EXPECT_TRUE(remapper->start());
  }

  void typeAll() {
    look();
    while (!input.empty()) {
      if (const unsigned kind = input.byte(); kind % 16 < keyKinds) {
        const Typed typed = key();
        if (kind < 128) type(kind % 2 == 0 ? kCGEventKeyDown : kCGEventKeyUp, typed);
        for (CGEventFlags held = 0; kind >= 128 && held <= modifiers; held += shift) {
          type(kCGEventKeyDown, {typed.code, typed.flags ^ held});
          type(kCGEventKeyUp, {typed.code, typed.flags ^ held});
        }
      } else {
        change(kind % 16);
        look();
      }
    }
    answer("Cancel");
    remapper->stop();
  }

private:
  static constexpr unsigned keyKinds = 10;
  enum Change { OtherEvent = keyKinds, Switch, Front, Focus, Exemption, Answer };

  platform::AutoreleasePool outer;
  Desktop machine;
  platform::AutoreleasePool pool;
  std::shared_ptr<KeyRemapper> remapper = KeyRemapper::make();
  const Ref<Event> event = create<Event>();
  Bytes input;
  std::vector<JournalEntry> entries;

  // What the table needs to know, as the desktop is by now.
  Situation situation{"", false, false, {}};
  bool focusAnswers = false;
  std::u16string frontmost;
  std::set<std::u16string> exempt;
  bool isPending = false;

  Typed key() {
    const unsigned chosen = input.byte();
    const unsigned held = input.byte();
    Typed typed{chosen % 128, (held & 15) * shift};
    if (chosen >= 128) typed.code = shortcuts[chosen % std::size(shortcuts)].typed.code;
    if (chosen >= 250) typed.code = input.number<std::int64_t>();
    if ((held & 16) != 0) typed.flags |= kCGEventFlagMaskSecondaryFn;
    if ((held & 32) != 0) typed.flags |= kCGEventFlagMaskAlphaShift | kCGEventFlagMaskNumericPad | 0x101;
    if (held >= 240) typed.flags ^= input.number<CGEventFlags>();
    return typed;
  }

  void type(CGEventType type, const Typed& typed) {
    ++count.events;
    const Fate fate = fateOf(typed);
    EXPECT_EQ(actual(machine, *event, type, typed), fate)
        << std::hex << (type == kCGEventKeyDown ? "down 0x" : "up 0x") << typed.code << ", flags 0x" << typed.flags;
    isPending = isPending || (fate.swallowed && type == kCGEventKeyDown);
    EXPECT_TRUE(entries.empty()) << "something happened before the callback was through";
  }

  Fate fateOf(const Typed& typed) const {
    if (!remapper->enabled) return {false, typed.code, typed.flags, {}, 0, 0, 0};
    Fate fate = expected(typed, situation);
    if (frontmost.empty()) fate.ownIdentifier = 0;
    if (!focusAnswers) fate.role = 0;
    if (frontmost != u"app.tarnwick.Tarnwick" && !exempt.contains(frontmost)) return fate;
    return {false, typed.code, typed.flags, {fate.calls[0], fate.calls[1]}, 1, 1, 0};
  }

  void change(unsigned what) {
    auto& applications = machine.applications;
    const auto application = [&]() -> Ref<RunningApplication> {
      const std::size_t chosen = input.byte() % (applications.running.size() + 1);
      return chosen < applications.running.size() ? std::next(applications.running.begin(), chosen)->second : nullptr;
    };
    switch (what) {
    case OtherEvent:
      return sendOther();
    case Switch: {
      const std::size_t chosen = input.byte() % (std::size(switches) + 1);
      bool& changed = chosen < std::size(switches) ? (*remapper).*(switches[chosen].second) : remapper->enabled;
      changed = !changed;
      return;
    }
    case Front:
      applications.frontmost = application();
      return;
    case Focus: {
      applications.focusElsewhere = input.byte() % 4 == 0 ? application() : nullptr;
      if (applications.frontmost) applications.frontmost->role = input.oneOf(roles);
      if (applications.frontmost && applications.frontmost->role == "") applications.frontmost->role = std::nullopt;
      const unsigned answers = input.byte();
      machine.accessibility.trusted = answers < 250;
      machine.accessibility.focusAnswer = static_cast<AccessibilityAnswer>(answers % 16 < 5 ? answers % 16 : 0);
      machine.accessibility.roleAnswer = static_cast<AccessibilityAnswer>(answers / 16 < 5 ? answers / 16 : 0);
      return;
    }
    case Exemption: {
      const std::u16string identifier = input.oneOf(identifiers);
      const platform::NSString text(utf8(identifier).c_str());
      const bool isNew = exempt.insert(identifier).second;
      isNew ? remapper->addExemptBundleID(text) : remapper->removeExemptBundleID(text);
      if (!isNew) exempt.erase(identifier);
      return;
    }
    default:
      return answer(input.byte() % 2 == 0 ? "Cancel" : "Move to Bin");
    }
  }

  /// Notifications, and events that no tap of ours asks for: they are not even looked at.
  void sendOther() {
    const auto type = static_cast<CGEventType>(input.number<std::uint32_t>());
    if (type == kCGEventKeyDown || type == kCGEventKeyUp) return;
    Calls calls;
    event->calls = &calls;
    const EventTap& tap = *machine.server.installed().front();
    const auto handed = referenceTo<CGEventRef>(event.get());
    EXPECT_EQ(tap.callback(nullptr, type, handed, tap.userInfo), handed);
    EXPECT_EQ(calls, Calls());
  }

  void look() {
    const auto& applications = machine.applications;
    const auto& front = applications.frontmost;
    const auto& focused = applications.focusElsewhere ? applications.focusElsewhere : front;
    const auto isProper = [](AccessibilityAnswer answer) { return answer == AccessibilityAnswer::Proper; };
    frontmost = front && front->identifier ? front->identifier->text : u"";
    situation.finder = frontmost == u"com.apple.finder";
    focusAnswers =
        machine.accessibility.trusted && isProper(machine.accessibility.focusAnswer) && focused && focused->role;
    situation.text = focusAnswers && isProper(machine.accessibility.roleAnswer) &&
                     std::ranges::find(roles, *focused->role) < std::begin(roles) + 3;
    situation.off.clear();
    for (const auto& [checkbox, gate] : switches) {
      if (!((*remapper).*gate)) situation.off.push_back(checkbox);
    }
  }

  /// The question, if there is one by now; after consent the Finder comes forward and gets its own shortcut.
  void answer(const std::string& button) {
    machine.runLoop.nextCommand = [&] { return machine.appKit.frontAlert()->press(button, 1); };
    machine.runLoop.wait(1);
    std::string happened;
    for (const JournalEntry& entry : std::exchange(entries, {}))
      happened += entry.front() == "alert" ? "alert\n" : traceLine(entry) + '\n';
    std::string wanted = isPending ? "alert\nanswer\t" + button + '\n' : "";
    if (isPending && button == "Move to Bin") {
      wanted += "front\tFinder\n" + keyLine("post\tdown", "cmd+delete") + keyLine("post\tup", "cmd+delete") +
                keyLine("key\tFinder\tdown", "cmd+delete") + keyLine("key\tFinder\tup", "cmd+delete");
    }
    EXPECT_EQ(happened, wanted);
    isPending = false;
  }
};

} // namespace

void play(Bytes input) {
  const LeakCheck nothingLeaks;
  Typist(input).typeAll();
}

} // namespace desktop
