#include "tests/support/Command.hpp"

#include <algorithm>
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

bool shows(const std::string& picture, const std::string& text) {
  const auto texts = textsIn(picture);
  return std::any_of(texts.begin(), texts.end(), [&](const DrawnText& drawn) { return drawn.text == text; });
}

bool has(const std::string& picture, const std::string& markup) {
  return picture.find(markup) != std::string::npos;
}

/// Plays lines that end in a moment worth seeing.
class DrawingTest : public testing::Test {
protected:
  TestDesktop desktop;
  TemporaryFolder folder;

  std::string draw(const std::string& lines) {
    play(lines + "\ndraw " + file("it"));
    return drawn("it");
  }
  void play(const std::string& lines) { EXPECT_FALSE(has(desktop.play({lines}), "lost")) << desktop.trace(); }
  std::string file(const std::string& name) const { return (folder.path / name).string(); }
  std::string drawn(const std::string& name) const { return contentsOf(file(name)); }
  void exempt(const std::u16string& identifier) { desktop.store(u"exemptBundleIDs", PropertyList::Array{identifier}); }
};

TEST_F(DrawingTest, TextsAreNeverTakenForMarkup) {
  exempt(u"</text>&amp;\u0001\xD800\uFFFF\"'");
  const std::string picture = draw("screen 800 1100\nmenu Settings…");
  EXPECT_TRUE(shows(picture, "&lt;/text&gt;&amp;amp;\uFFFD\uFFFD\uFFFD\"'"));
}

TEST_F(DrawingTest, LongIdentifiersAreShortenedAndTheirButtonsAreNot) {
  exempt(u"com.example." + std::u16string(200, u'w') + u".end");
  const std::string picture = draw("screen 800 1100\nmenu Settings…\nresize 500 950");
  const DrawnText identifier = textWith(picture, "…w");
  const DrawnText button = textWith(picture, "Remove");
  EXPECT_EQ(identifier.text.substr(0, 12), "com.example.");
  EXPECT_EQ(identifier.text.substr(identifier.text.size() - 4), ".end");
  EXPECT_LE(identifier.x + identifier.width, button.x);
  const auto window = matchesIn(picture, "<rect x=\"([^\"]+)\" [^>]*width=\"500\"");
  ASSERT_FALSE(window.empty());
  EXPECT_LE(button.x + button.width, std::stod(window.front()[1]) + 500 - 20);
}

TEST_F(DrawingTest, WhatIsScrolledAwayIsCutOff) {
  play("screen 800 600\nmenu Settings…\ndraw " + file("low") + "\nscreen 800 1100\nresize 612 900\ndraw " +
       file("high"));
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

TEST_F(DrawingTest, AlertsAndPanelsLieOverTheWindowWhichIsThenInactive) {
  play("menu Settings…\ndraw " + file("window") + "\nclick \"Choose App…\"\ndraw " + file("panel") +
       "\ncancel\nfront Finder\npress forwarddelete\ndraw " + file("alert"));
  EXPECT_FALSE(has(drawn("window"), "class=\"inactive\""));
  EXPECT_TRUE(has(drawn("window"), "class=\"closeLight\""));
  for (const char* name : {"panel", "alert"}) {
    EXPECT_TRUE(has(drawn(name), "class=\"inactive\""));
    EXPECT_FALSE(has(drawn(name), "class=\"closeLight\""));
  }
  const auto isOverWindow = [](const std::string& picture, const char* text) {
    return has(picture.substr(picture.find(">General Shortcuts<")), text);
  };
  EXPECT_TRUE(isOverWindow(drawn("panel"), ">Add Exemption<"));
  EXPECT_TRUE(isOverWindow(drawn("alert"), ">Move selected item to Bin?<"));
  EXPECT_LT(textWith(drawn("alert"), "Cancel").x, textWith(drawn("alert"), "Move to Bin").x)
      << "the first button is the right one";
}

TEST_F(DrawingTest, OnlyWhatNothingLiesOverIsMarked) {
  play("menu Settings…\nshow menu\ndraw " + file("window") + "\nclick \"Choose App…\"\ndraw " + file("panel") +
       "\ncancel\nfront Finder\npress forwarddelete\ndraw " + file("alert"));
  const auto marks = [&](const char* name) {
    std::set<std::string> found;
    const std::string picture = drawn(name); // the matches point into it
    for (const auto& match : matchesIn(picture, "<g data-(?!scroll|travel)([^>]+)>"))
      found.insert(match[1]);
    return found;
  };
  const auto window = marks("window");
  for (const char* mark : {"front=\"Tarnwick\"", "window=\"Tarnwick Settings\"", "close=\"Tarnwick Settings\"",
                           "checkbox=\"Swap @ and &quot;\"", "button=\"Open Login Items\"", "status=\"Tarnwick\"",
                           "menu=\"Tarnwick\"", "entry=\"Quit Tarnwick\""})
    EXPECT_EQ(window.count(mark), 1U) << mark;
  EXPECT_EQ(window.count("entry=\"Check for Updates...\""), 0U) << "a disabled one";
  EXPECT_EQ(marks("panel"), (std::set<std::string>{"front=\"Tarnwick\"", "panel=\"Choose Application to Exempt\"",
                                                   "choose=\"/Applications/Editor.app\"", "cancel=\"Cancel\""}));
  EXPECT_EQ(marks("alert"), (std::set<std::string>{"front=\"Finder\"", "alert=\"Move selected item to Bin?\"",
                                                   "button=\"Move to Bin\"", "button=\"Cancel\""}));
}

TEST_F(DrawingTest, TheMenuIsOpenUntilTheUserGoesOn) {
  play("show menu\ndraw " + file("open") + "\ndraw " + file("still") + "\nwait 0\ndraw " + file("closed") +
       "\nquit\ndraw " + file("gone"));
  EXPECT_TRUE(shows(drawn("open"), "⌘Q"));
  EXPECT_TRUE(has(drawn("open"), "class=\"disabledLabel\">Check for Updates...<"));
  EXPECT_EQ(drawn("open"), drawn("still"));
  EXPECT_FALSE(shows(drawn("closed"), "⌘Q"));
  EXPECT_TRUE(has(drawn("closed"), "<mask")) << "the status item's image";
  EXPECT_FALSE(has(drawn("gone"), "<mask"));
}

TEST_F(DrawingTest, TheMenuBarTellsWhoIsInFrontAndTheTime) {
  play("menu Settings…\nwait 8340\ndraw " + file("editor") + "\nfront none\ndraw " + file("nobody") +
       "\napp Mail\nfront Mail\nmenu Settings…\nend Mail\ndraw " + file("ended") +
       "\nfront Editor\nquit\nfront none\ndraw " + file("afterwards"));
  EXPECT_TRUE(shows(drawn("editor"), "Editor")) << "the program has no menus of its own";
  EXPECT_TRUE(shows(drawn("editor"), "12:00 PM"));
  EXPECT_FALSE(shows(drawn("nobody"), "Editor"));
  EXPECT_FALSE(shows(drawn("ended"), "Mail"));
  EXPECT_FALSE(shows(drawn("afterwards"), "Editor"));
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

TEST_F(DrawingTest, DamagedImagesLeaveTheirPlaceEmpty) {
  const auto resources = desktop.bundle / "Contents" / "Resources";
  fs::remove(resources / "MenuBarTemplate.png");
  const std::string entry("ic08\xff\xff\xff\xff", 8);
  writeFile(resources / "AppIcon.icns",
            "icns" + std::string(4, '\0') + entry + "\x89PNG\r\n\x1a\n" + std::string(16, '\1'));
  const std::string picture = draw("menu Settings…");
  EXPECT_TRUE(shows(picture, "Tarnwick")) << "the status item's title";
  EXPECT_FALSE(has(picture, "<image"));
}

TEST_F(DrawingTest, AFileThatCannotBeWrittenIsToldOf) {
  testing::internal::CaptureStderr();
  const std::string trace = desktop.play({"screen none\ndraw " + file("none") + "\ndraw " + file("no/folder.svg")});
  const std::string complaint = testing::internal::GetCapturedStderr();
  EXPECT_EQ(complaint,
            "tarnwick: the picture " + file("no/folder.svg") + " cannot be written: No such file or directory\n");
  EXPECT_TRUE(has(trace, "lost\tdraw " + file("no/folder.svg") + "\n"));
  EXPECT_TRUE(shows(drawn("none"), "No screen"));
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
