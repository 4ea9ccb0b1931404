#include "tests/support/Command.hpp"

#include <iterator>
#include <regex>
#include <set>
#include <sstream>

namespace desktop {
namespace {

namespace fs = std::filesystem;

struct DrawnText {
  double x; ///< of its left end
  double y;
  double width;
  std::string text;
};

std::vector<std::smatch> matchesIn(const std::string& picture, const char* pattern) {
  const std::regex expression(pattern);
  return {std::sregex_iterator(picture.begin(), picture.end(), expression), {}};
}

std::vector<DrawnText> textsIn(const std::string& picture) {
  std::vector<DrawnText> texts;
  for (const auto& match : matchesIn(picture, "<text x=\"([^\"]+)\" y=\"([^\"]+)\"(?: text-anchor=\"([a-z]+)\")?"
                                              "[^>]*textLength=\"([^\"]+)\"[^>]*>([^<]*)<")) {
    const double width = std::stod(match[4]);
    const double before = match[3] == "middle" ? width / 2 : match[3] == "end" ? width : 0;
    texts.push_back({std::stod(match[1]) - before, std::stod(match[2]), width, match[5]});
  }
  return texts;
}

/// The first one with this part; fails the test when there is none.
DrawnText textWith(const std::string& picture, const std::string& part) {
  for (const DrawnText& drawn : textsIn(picture)) {
    if (drawn.text.find(part) != std::string::npos) return drawn;
  }
  ADD_FAILURE() << part << " is not in the picture";
  return {};
}

bool has(const std::string& picture, const std::string& markup) {
  return picture.find(markup) != std::string::npos;
}

// The settings window, the menu and an alert are held whole by their pictures in docs/pictures, and that no text is
// taken for markup by a fuzz target.

/// Plays lines that draw some moments worth seeing.
class DrawingTest : public testing::Test {
protected:
  TestDesktop desktop;
  TemporaryFolder folder;

  std::string file(const std::string& name) const { return (folder.path / name).string(); }
  std::string drawn(const std::string& name) const { return contentsOf(file(name)); }
  /// A picture's name stands for its file.
  void play(const std::string& lines) {
    const std::string session = std::regex_replace(lines, std::regex("\ndraw "), "\ndraw " + file(""));
    EXPECT_FALSE(has(desktop.play({session}), "lost")) << desktop.trace();
  }
  std::string draw(const std::string& lines) {
    play(lines + "\ndraw it");
    return drawn("it");
  }
};

TEST_F(DrawingTest, WhatIsScrolledAwayIsCutOff) {
  play("screen 800 600\nmenu Settings…\ndraw low\nscreen 800 1100\nresize 612 900\ndraw high");
  const std::string low = drawn("low");
  EXPECT_TRUE(has(low, "class=\"scroller\""));
  const auto clip = matchesIn(low, "y=\"([^\"]+)\" width=\"612\" height=\"500\"/></clipPath>");
  const auto hidden = matchesIn(low, "data-scroll=\"([^\"]+)\"");
  ASSERT_EQ(clip.size() * hidden.size(), 1U);
  const double end = std::stod(clip[0][1]) + 500;
  const double version = textWith(low, "Version 1.0.0").y;
  EXPECT_GT(version, end);
  EXPECT_LT(version - std::stod(hidden[0][1]), end);
  EXPECT_FALSE(has(drawn("high"), "class=\"scroller\""));
  EXPECT_TRUE(has(drawn("high"), "data-scroll=\"0\""));
}

TEST_F(DrawingTest, AlertsAndPanelsLieOverTheWindowWhichIsThenInactiveAndNotMarked) {
  play("menu Settings…\nshow menu\ndraw window\nclick \"Choose App…\"\ndraw panel\ncancel\nfront Finder\n"
       "press forwarddelete\ndraw alert");
  for (const char* name : {"window", "panel", "alert"}) {
    const bool isActive = name == std::string("window");
    EXPECT_EQ(has(drawn(name), "class=\"inactive\""), !isActive) << name;
    EXPECT_EQ(has(drawn(name), "class=\"closeLight\""), isActive) << name;
  }
  const auto isOverWindow = [](const std::string& picture, const char* text) {
    return has(picture.substr(picture.find(">General Shortcuts<")), text);
  };
  EXPECT_TRUE(isOverWindow(drawn("panel"), ">Add Exemption<"));
  EXPECT_TRUE(isOverWindow(drawn("alert"), ">Move selected item to Bin?<"));
  EXPECT_LT(textWith(drawn("alert"), "Cancel").x, textWith(drawn("alert"), "Move to Bin").x)
      << "the first button is the right one";

  const auto marks = [&](const char* name) {
    std::set<std::string> found;
    const std::string picture = drawn(name); // the matches point into it
    for (const auto& match : matchesIn(picture, "<g data-(?!scroll|travel)([^>]+)>"))
      found.insert(match[1]);
    return found;
  };
  EXPECT_FALSE(marks("window").contains("entry=\"Check for Updates...\"")) << "a disabled one";
  EXPECT_EQ(marks("panel"), (std::set<std::string>{"front=\"Tarnwick\"", "panel=\"Choose Application to Exempt\"",
                                                   "choose=\"/Applications/Editor.app\"", "cancel=\"Cancel\""}));
}

TEST_F(DrawingTest, TheMenuIsOpenUntilTheUserGoesOn) {
  play("show menu\ndraw open\ndraw still\nwait 0\ndraw closed\nquit\ndraw gone");
  EXPECT_TRUE(has(drawn("open"), ">⌘Q<"));
  EXPECT_TRUE(has(drawn("open"), "class=\"disabledLabel\">Check for Updates...<"));
  EXPECT_EQ(drawn("open"), drawn("still"));
  EXPECT_FALSE(has(drawn("closed"), ">⌘Q<"));
  EXPECT_TRUE(has(drawn("closed"), "<mask")) << "the status item's image";
  EXPECT_FALSE(has(drawn("gone"), "<mask"));
}

TEST_F(DrawingTest, TheMenuBarTellsWhoIsInFrontAndTheTime) {
  play("menu Settings…\nwait 8340\ndraw editor\nfront none\ndraw nobody\napp Mail\nfront Mail\nmenu Settings…\n"
       "end Mail\ndraw ended\nfront Editor\nquit\nfront none\ndraw afterwards\nscreen none\ndraw dark");
  EXPECT_TRUE(has(drawn("editor"), ">Editor<")) << "the program has no menus of its own";
  EXPECT_TRUE(has(drawn("editor"), ">12:00 PM<"));
  EXPECT_FALSE(has(drawn("nobody"), ">Editor<"));
  EXPECT_FALSE(has(drawn("ended"), ">Mail<"));
  EXPECT_FALSE(has(drawn("afterwards"), ">Editor<"));
  EXPECT_TRUE(has(drawn("dark"), ">No screen<"));
}

TEST_F(DrawingTest, EveryClassHasAColourAndLabelsHaveTwo) {
  const std::string picture = draw("menu Settings…\nclick \"Bold (Ctrl+B)\"\nclick \"Choose App…\"\nshow menu");
  std::set<std::string> classes;
  for (const auto& match : matchesIn(picture, "class=\"([^\"]+)\"")) {
    std::istringstream words(match[1]);
    classes.insert(std::istream_iterator<std::string>(words), {});
  }
  classes.erase("inactive");
  EXPECT_GT(classes.size(), 20U);
  for (const std::string& name : classes)
    EXPECT_TRUE(has(picture, "\n." + name + "{")) << name;
  const std::string dark = picture.substr(picture.find("@media (prefers-color-scheme:dark){"));
  EXPECT_TRUE(has(dark, ".label{fill:rgba(255,255,255"));
  EXPECT_TRUE(has(dark, ".window{fill:#323232}"));
}

/// Draws docs/pictures anew in a copy of that folder.
TEST(PicturesTest, AreWhatTheirSessionsDraw) {
  const fs::path kept = fs::path(TARNWICK_SOURCE_DIR) / "docs" / "pictures";
  const TemporaryFolder folder;
  fs::copy(kept, folder.path);
  for (const auto& entry : fs::directory_iterator(kept)) {
    if (entry.path().extension() != ".svg") continue;
    const std::string name = entry.path().stem().string();
    fs::remove(folder.path / (name + ".svg"));
    const CommandRun run = runCommand(folder.path, "--trace --defaults " + name + ".plist " + name + ".session");
    EXPECT_EQ(run.status, 0) << run.complaints;
    EXPECT_FALSE(has(run.output, "lost")) << run.output;
    EXPECT_TRUE(contentsOf(folder.path / (name + ".svg")) == contentsOf(entry.path()))
        << name << ".svg is out of date: run ./dev record, look at the result and commit it";
  }
}

} // namespace
} // namespace desktop
