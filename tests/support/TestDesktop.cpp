#include "tests/support/TestDesktop.hpp"

#include "desktop/session/KeyNames.hpp"
#include "desktop/session/Output.hpp"
#include "desktop/session/Session.hpp"

#include <cstdlib>
#include <deque>
#include <fstream>
#include <iterator>
#include <sstream>

int tarnwickMain();

namespace desktop {
namespace {

/// Hands out the commands of each step in turn; a look happens when the desktop asks for what comes after it.
class Script {
public:
  explicit Script(std::vector<Step> script) : steps(std::move(script)) {}

  std::optional<Command> next() {
    while (commands.empty() && step < steps.size())
      take(steps[step++]);
    if (commands.empty()) return std::nullopt;
    auto command = std::move(commands.front());
    commands.pop_front();
    return command;
  }

private:
  void take(const Step& taken) {
    if (const auto* look = std::get_if<std::function<void()>>(&taken)) return (*look)();
    std::istringstream lines(std::get<std::string>(taken));
    for (std::string line; std::getline(lines, line);) {
      auto read = grammar.read(line);
      if (auto* command = std::get_if<Command>(&read)) commands.push_back(std::move(*command));
      if (const auto* mistake = std::get_if<Mistake>(&read)) ADD_FAILURE() << mistake->text();
    }
  }

  std::vector<Step> steps;
  std::size_t step = 0;
  SessionGrammar grammar{"the test's session"};
  std::deque<Command> commands;
};

/// Runs the program as a process would, then lets go of what its process would have taken along.
void playOn(Desktop& machine, const std::vector<Step>& steps) {
  Script script(steps);
  Session(machine, tarnwickMain, [&] { return script.next(); }).run();
  const platform::AutoreleasePool pool;
  // The reference that the program's own variable keeps.
  objc_release(std::exchange(machine.appKit.application->delegate, nullptr));
}

/// What is made on first use and kept from then on is no leak: a session that uses it all.
void warmUp() {
  Desktop machine;
  playOn(machine, {"trust no", "taps allow", "launch", "click OK", "trust yes", "press ctrl+c", "menu Developer",
                   "menu Settings…", "front Finder", "press f2", "press escape", "press forwarddelete",
                   "click \"Move to Bin\"", "wait 1"});
}

} // namespace

TemporaryFolder::TemporaryFolder() {
  std::string name = testing::TempDir() + "/tarnwick-XXXXXX";
  if (::mkdtemp(name.data()) == nullptr) stop("no temporary folder can be made");
  path = name;
}

std::variant<std::vector<Command>, Mistake> readSession(const std::string& file, std::string_view text) {
  std::string bytes(text);
  SessionReader reader(file, Stream(fmemopen(bytes.data(), bytes.size(), "r"), std::fclose));
  std::vector<Command> commands;
  auto read = reader.next();
  for (; auto* command = std::get_if<Command>(&read); read = reader.next())
    commands.push_back(std::move(*command));
  if (auto* mistake = std::get_if<Mistake>(&read)) return std::move(*mistake);
  return commands;
}

void writeFile(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
}

std::string contentsOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::string keyLine(const std::string& beginning, std::string_view keys) {
  const KeyStroke key = keyNamed(keys);
  return beginning + '\t' + codeText(key.code) + '\t' + flagsText(key.flags) + '\n';
}

LeakCheck::LeakCheck(Start begun) : start(begun) {
  static bool isWarm = false;
  if (start == Start::Warm && !std::exchange(isWarm, true)) warmUp();
  before = liveObjects();
}

TestDesktop::TestDesktop(Start start) : nothingLeaks(start) {
  const auto contents = bundle / "Contents";
  std::filesystem::create_directories(contents / "Resources");
  writeFile(contents / "Info.plist", writeXml(PropertyList::Dictionary{
                                         {u"CFBundleIdentifier", u"app.tarnwick.Tarnwick"},
                                         {u"CFBundleShortVersionString", u"1.0.0"},
                                     }));
  for (const char* resource : {"MenuBarTemplate.png", "AppIcon.icns"}) {
    std::filesystem::copy(std::filesystem::path(TARNWICK_SOURCE_DIR) / "bundle" / resource, contents / "Resources");
  }
  machine.mainBundle->open(bundle);
  machine.journal.reader = [this](const JournalEntry& entry) { entries.push_back(entry); };
}

std::string TestDesktop::trace() const {
  std::string lines;
  for (const JournalEntry& entry : entries)
    lines += traceLine(entry) + '\n';
  return lines;
}

std::string TestDesktop::press(std::string_view keys) {
  const platform::AutoreleasePool own;
  const KeyStroke key = keyNamed(keys);
  const auto told = [&](CGEventType type) {
    const auto event = create<Event>();
    event->type = type;
    event->code = key.code;
    event->flags = key.flags;
    const bool passes = machine.server.throughTaps(event.get()) != nullptr;
    return passes ? describeKey(static_cast<std::uint16_t>(event->code), event->flags) : "swallowed";
  };
  std::string down = told(kCGEventKeyDown);
  EXPECT_EQ(told(kCGEventKeyUp), down) << keys << " released";
  return down;
}

std::string TestDesktop::play(const std::vector<Step>& steps) {
  playOn(machine, steps);
  return trace();
}

} // namespace desktop
