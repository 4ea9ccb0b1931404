#include "settings/WindowSizing.hpp"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

using platform::NSSize;

TEST(WindowSizing, firstSizeFitsTheSettingsAndTheScreen) {
  constexpr NSSize defaultSize{540, 780};
  constexpr NSSize minimum{460, 500};
  const struct {
    const char* what;
    NSSize settings;
    std::optional<NSSize> screen;
    NSSize expected;
  } cases[] = {
      {"small settings keep the default size", {300, 200}, NSSize{1920, 1055}, {540, 780}},
      {"settings that just fit", {500, 644}, NSSize{660, 900}, {540, 780}},
      {"a point wider than fits", {501, 644}, NSSize{2000, 1200}, {541, 780}},
      {"a point taller than fits", {500, 645}, NSSize{2000, 1200}, {540, 781}},
      {"the screen limits both ways", {900, 900}, NSSize{800, 800}, {680, 680}},
      {"a screen a point too narrow and too low", {500, 644}, NSSize{659, 899}, {539, 779}},
      {"a low screen limits the height alone", {500, 644}, NSSize{1000, 700}, {540, 580}},
      {"a very low screen, but never below the minimum", {500, 644}, NSSize{1000, 560}, {540, 500}},
      {"a very narrow screen, but never below the minimum", {500, 644}, NSSize{500, 1200}, {460, 780}},
      {"without a screen nothing limits", {5000, 6000}, std::nullopt, {5040, 6136}},
      {"fractions survive", {520.5, 700.25}, NSSize{1920, 1055}, {560.5, 836.25}},
  };
  for (const auto& [what, settings, screen, expected] : cases) {
    const NSSize size = initialContentSize(settings, defaultSize, minimum, screen);
    EXPECT_EQ(size.width, expected.width) << what;
    EXPECT_EQ(size.height, expected.height) << what;
  }
}

TEST(WindowSizing, documentFollowsTheWindowAndHoldsTheSettings) {
  const struct {
    const char* what;
    NSSize visible;
    CGFloat settingsHeight;
    NSSize expected;
  } cases[] = {
      {"tall settings scroll", {540, 780}, 1000, {540, 1136}},
      {"low settings leave the document as tall as what is seen", {540, 780}, 100, {540, 780}},
      {"a point more than fills it", {540, 780}, 645, {540, 781}},
      {"no narrower than its least width", {380, 780}, 700, {400, 836}},
  };
  for (const auto& [what, visible, settingsHeight, expected] : cases) {
    // The settings are measured in a document of the width that it will have.
    EXPECT_EQ(documentWidth(visible.width), expected.width) << what;
    EXPECT_EQ(documentSize(visible, settingsHeight).width, expected.width) << what;
    EXPECT_EQ(documentSize(visible, settingsHeight).height, expected.height) << what;
  }
}

} // namespace
} // namespace tarnwick
