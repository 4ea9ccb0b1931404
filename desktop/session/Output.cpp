#include "desktop/session/Output.hpp"

#include "desktop/session/KeyNames.hpp"

namespace desktop {
namespace {

std::string quoted(const std::string& text) {
  return "\"" + text + "\"";
}

/// The fields from `first` on, each quoted; a lone empty one stands for none.
std::string list(const JournalEntry& entry, std::size_t first) {
  if (entry.size() == first + 1 && entry[first].empty()) return "nothing";
  std::string text;
  for (std::size_t index = first; index < entry.size(); ++index) {
    text += (index == first ? "" : ", ") + quoted(entry[index]);
  }
  return text;
}

/// "Ctrl+C pressed", of the three fields that tell of an event.
std::string keyAt(const JournalEntry& entry, std::size_t first) {
  const auto code = static_cast<std::uint16_t>(std::stoul(entry[first + 1], nullptr, 16));
  const auto flags = std::stoull(entry[first + 2], nullptr, 16);
  return describeKey(code, flags) + (entry[first] == "down" ? " pressed" : " released");
}

struct Sentence {
  const char* name;
  std::string (*tell)(const JournalEntry&);
};

constexpr Sentence sentences[] = {
    {"key", [](const JournalEntry& f) { return (f[1].empty() ? "nobody" : f[1]) + " receives " + keyAt(f, 2); }},
    {"swallowed", [](const JournalEntry& f) { return keyAt(f, 1) + ", and no application receives it"; }},
    {"post", [](const JournalEntry& f) { return "Tarnwick posts " + keyAt(f, 1); }},
    {"front", [](const JournalEntry& f) { return f[1] + " comes to the front"; }},
    {"status",
     [](const JournalEntry& f) {
       return "the status bar shows Tarnwick's " + (f[1] == "image" ? "image" : "name, " + quoted(f[1]));
     }},
    {"prompt", [](const JournalEntry&) { return std::string("the system offers to grant Accessibility access"); }},
    {"alert",
     [](const JournalEntry& f) { return "alert " + quoted(f[1]) + " " + quoted(f[2]) + ", buttons " + list(f, 3); }},
    {"panel", [](const JournalEntry& f) { return "panel " + quoted(f[1]); }},
    {"answer", [](const JournalEntry& f) { return f[1].empty() ? "cancelled" : "answered " + quoted(f[1]); }},
    {"open", [](const JournalEntry& f) { return "the system opens " + f[1]; }},
    {"updater",
     [](const JournalEntry& f) {
       return std::string(f[1] == "started" ? "the updater starts" : "the updater checks");
     }},
    {"window", [](const JournalEntry& f) { return "window " + quoted(f[1]) + ", " + f[2] + " by " + f[3]; }},
    {"item",
     [](const JournalEntry& f) {
       if (f[1].empty()) return std::string("--------");
       return f[1] + (f[3].empty() ? "" : "  Cmd+" + f[3]) + (f[2] == "enabled" ? "" : "  (disabled)");
     }},
    {"heading", [](const JournalEntry& f) { return f[1] + ":"; }},
    {"label", [](const JournalEntry& f) { return std::string(f[1]); }},
    {"button", [](const JournalEntry& f) { return "( " + f[1] + " )"; }},
    {"checkbox", [](const JournalEntry& f) { return (f[2] == "on" ? "[x] " : "[ ] ") + f[1]; }},
    {"separator", [](const JournalEntry&) { return std::string("--------"); }},
    {"default", [](const JournalEntry& f) { return f[1] + " holds " + list(f, 2); }},
    {"lost", [](const JournalEntry&) { return std::string("nothing to act on"); }},
    {"terminate", [](const JournalEntry&) { return std::string("Tarnwick has quit"); }},
};

} // namespace

std::string traceLine(const JournalEntry& entry) {
  std::string line;
  for (const std::string& field : entry) {
    if (&field != &entry.front()) line += '\t';
    line += field.empty() ? "-" : escaped(field);
  }
  return line;
}

std::string sentenceFor(const JournalEntry& happened) {
  JournalEntry entry = happened;
  for (std::string& field : entry)
    field = escaped(field);
  for (const Sentence& sentence : sentences) {
    if (entry.front() == sentence.name) return "    " + sentence.tell(entry);
  }
  return "    " + traceLine(happened);
}

} // namespace desktop
