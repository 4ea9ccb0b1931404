#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

/// The entries from the first one of that name on.
std::string from(const std::string& name, const std::string& trace) {
  return trace.substr(std::min(trace.find(name), trace.size()));
}

TEST(WindowCommands, WithoutAWindowThereIsNothingToActOn) {
  EXPECT_EQ(
      TestDesktop().play({"click \"Open Login Items\"\nclose\nresize 500 500\nshow window\nchoose /A.app\ncancel"}),
      "status\timage\n"
      "lost\tclick \"Open Login Items\"\nlost\tclose\nlost\tresize 500 500\nlost\tshow window\n"
      "lost\tchoose /A.app\nlost\tcancel\nterminate\n");
}

TEST(WindowCommands, AClickBringsTheProgramToTheFrontAndACloseDoesNot) {
  TestDesktop desktop;
  const auto frontmost = [&] { return desktop.machine.applications.frontmost->name; };
  desktop.play({
      "menu Settings…\nfront Editor\nclick Nonsense\nclick \"Open Login Items\" 2",
      [&] { EXPECT_EQ(frontmost(), "Editor"); },
      "click \"Save (Ctrl+S)\"",
      [&] { EXPECT_EQ(frontmost(), "Tarnwick"); },
      "front Editor\nclose",
      [&] { EXPECT_EQ(frontmost(), "Editor"); },
  });
}

TEST(WindowCommands, ACheckboxChangesWhenItIsClickedAndTheUserKeepsTheirSize) {
  const auto trace =
      TestDesktop().play({"menu Settings…\nclick \"Save (Ctrl+S)\"\nclick \"Find (Ctrl+F)\"\n"
                          "click \"Save (Ctrl+S)\"\nshow window\nresize 100 600.5\nclose\nmenu Settings…"});
  EXPECT_NE(trace.find("checkbox\tSave (Ctrl+S)\ton\n"), std::string::npos);
  EXPECT_NE(trace.find("checkbox\tFind (Ctrl+F)\toff\n"), std::string::npos);
  EXPECT_NE(trace.find("heading\tText Editing\n"), std::string::npos);
  EXPECT_NE(trace.find("label\tVersion 1.0.0\n"), std::string::npos);
  EXPECT_EQ(from("window\tTarnwick Settings\t460", trace),
            "window\tTarnwick Settings\t460\t600.5\nfront\tTarnwick\nterminate\n");
}

TEST(WindowCommands, WhatHasBeenStartedCanBeChosen) {
  EXPECT_EQ(from("default", TestDesktop().play({"app Mail com.example.mail\napp Plain\nend Mail\nmenu Settings…\n"
                                                "click \"Choose App…\"\nchoose /Applications/Mail.app\n"
                                                "click \"Choose App…\"\nchoose /Applications/Plain.app\n"
                                                "click \"Choose App…\"\nchoose /Applications/Finder.app\n"
                                                "show defaults"})),
            "default\texemptBundleIDs\tcom.example.mail\nterminate\n");
}

TEST(WindowCommands, AnAlertMayStandInFrontOfAPanel) {
  EXPECT_EQ(from("panel", TestDesktop().play({"menu Settings…\nclick \"Choose App…\"\nquit\nclose\nresize 500 500\n"
                                              "menu Settings…\nclick \"Choose App…\"\nshow alert\n"
                                              "front Finder\ndown forwarddelete\ncancel\nclick Cancel\ncancel"})),
            "panel\tChoose Application to Exempt\n"
            "lost\tquit\nlost\tclose\nlost\tresize 500 500\nlost\tmenu Settings…\nlost\tclick \"Choose App…\"\n"
            "lost\tshow alert\nswallowed\tdown\t0x75\t0x800000\n"
            "alert\tMove selected item to Bin?\tThis will move the selected Finder item to Bin.\tMove to Bin\tCancel\n"
            "lost\tcancel\nanswer\tCancel\nanswer\t-\nterminate\n");
}

} // namespace
} // namespace desktop
