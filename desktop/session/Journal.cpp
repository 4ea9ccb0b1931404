#include "desktop/session/Journal.hpp"

#include "desktop/session/KeyNames.hpp"
#include "desktop/session/Trace.hpp"

namespace desktop {
namespace {

std::string quoted(const std::string& text) {
  return "\"" + text + "\"";
}

/// The fields from `first` on, each quoted; a lone empty one stands for none.
std::string list(const Fact& fact, std::size_t first) {
  if (fact.size() == first + 1 && fact[first].empty()) return "nothing";
  std::string text;
  for (std::size_t index = first; index < fact.size(); ++index) {
    text += (index == first ? "" : ", ") + quoted(fact[index]);
  }
  return text;
}

/// "Ctrl+C pressed", of the three fields that tell of an event.
std::string keyAt(const Fact& fact, std::size_t first) {
  const auto code = static_cast<std::uint16_t>(std::stoul(fact[first + 1], nullptr, 16));
  const auto flags = std::stoull(fact[first + 2], nullptr, 16);
  return describeKey(code, flags) + (fact[first] == "down" ? " pressed" : " released");
}

struct Sentence {
  const char* name;
  std::string (*tell)(const Fact&);
};

constexpr Sentence sentences[] = {
    {"key", [](const Fact& f) { return (f[1].empty() ? "nobody" : f[1]) + " receives " + keyAt(f, 2); }},
    {"swallowed", [](const Fact& f) { return keyAt(f, 1) + ", and no application receives it"; }},
    {"post", [](const Fact& f) { return "Tarnwick posts " + keyAt(f, 1); }},
    {"front", [](const Fact& f) { return f[1] + " comes to the front"; }},
    {"status",
     [](const Fact& f) {
       return "the status bar shows Tarnwick's " + (f[1] == "image" ? "image" : "name, " + quoted(f[1]));
     }},
    {"prompt", [](const Fact&) { return std::string("the system offers to grant Accessibility access"); }},
    {"alert", [](const Fact& f) { return "alert " + quoted(f[1]) + " " + quoted(f[2]) + ", buttons " + list(f, 3); }},
    {"panel", [](const Fact& f) { return "panel " + quoted(f[1]); }},
    {"answer", [](const Fact& f) { return f[1].empty() ? "cancelled" : "answered " + quoted(f[1]); }},
    {"open", [](const Fact& f) { return "the system opens " + f[1]; }},
    {"updater",
     [](const Fact& f) { return std::string(f[1] == "started" ? "the updater starts" : "the updater checks"); }},
    {"window", [](const Fact& f) { return "window " + quoted(f[1]) + ", " + f[2] + " by " + f[3]; }},
    {"item",
     [](const Fact& f) {
       if (f[1].empty()) return std::string("--------");
       return f[1] + (f[3].empty() ? "" : "  Cmd+" + f[3]) + (f[2] == "enabled" ? "" : "  (disabled)");
     }},
    {"heading", [](const Fact& f) { return f[1] + ":"; }},
    {"label", [](const Fact& f) { return std::string(f[1]); }},
    {"button", [](const Fact& f) { return "( " + f[1] + " )"; }},
    {"checkbox", [](const Fact& f) { return (f[2] == "on" ? "[x] " : "[ ] ") + f[1]; }},
    {"separator", [](const Fact&) { return std::string("--------"); }},
    {"default", [](const Fact& f) { return f[1] + " holds " + list(f, 2); }},
    {"lost", [](const Fact&) { return std::string("nothing to act on"); }},
    {"terminate", [](const Fact&) { return std::string("Tarnwick has quit"); }},
};

} // namespace

std::string sentenceFor(const Fact& happened) {
  Fact fact = happened;
  for (std::string& field : fact)
    field = escaped(field);
  for (const Sentence& sentence : sentences) {
    if (fact.front() == sentence.name) return "    " + sentence.tell(fact);
  }
  return "    " + traceLine(happened);
}

} // namespace desktop
