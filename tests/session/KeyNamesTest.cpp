#include "desktop/session/KeyNames.hpp"

#include "platform/KeyCodes.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>

using namespace desktop;

namespace {

// How keys and modifiers are typed and told, transcripts show.

// The platform's names, as its header lists them, but for what they say of the layout and of arrows.
TEST(KeyNames, AreThePlatformsOwn) {
  std::ifstream header(TARNWICK_SOURCE_DIR "/platform/KeyCodes.hpp");
  const std::regex entry(".* kVK_(ANSI_)?(\\w+?)(Arrow)? = (0x\\w+);");
  int named = 0;
  std::smatch parts;
  for (std::string line; std::getline(header, line);) {
    if (!std::regex_match(line, parts, entry)) continue;
    const auto code = static_cast<std::uint16_t>(std::stoi(parts[4], nullptr, 16));
    const std::string told = describeKey(code, 0);
    if (told.starts_with("key ")) continue;
    ++named;
    EXPECT_EQ(told, parts[2]);
    EXPECT_EQ(keyNamed(told).code, code);
  }
  EXPECT_EQ(named, 26 + 10 + 20 + 4 + 21) << "letters, digits, function keys, arrows and the others";
}

// What helps and pages list is typed as it stands there, and of names that stand side by side each means the same.
TEST(KeyNames, AreListedAsTheyAreTyped) {
  EXPECT_EQ(modifierNames(), "cmd command win super meta, ctrl control, option opt alt, shift, caps, fn");
  const std::string all = keyNames();
  const std::string signsEnd = "f20,";
  std::istringstream list(all.substr(all.find(signsEnd) + signsEnd.size()));
  std::string group;
  int named = 0;
  while (std::getline(list, group, ',')) {
    std::istringstream names(group);
    std::string first;
    names >> first;
    for (std::string name = first; names; names >> name, ++named)
      EXPECT_EQ(keyNamed(name), keyNamed(first)) << name;
  }
  EXPECT_GT(named, 30);
}

} // namespace
