/// Pictures: of any image file a part that is one, and drawings that no text and no image breaks.
#include "desktop/drawing/Shapes.hpp"
#include "desktop/foundation/Text.hpp"
#include "tests/fuzz/Fuzz.hpp"
#include "tests/support/TestDesktop.hpp"

#include <cmath>

namespace desktop {
namespace {

void expectWellFormed(const std::string& picture) {
  EXPECT_TRUE(utf16(picture)) << picture;
  bool inMarkup = false;
  for (const char each : picture) {
    EXPECT_TRUE(static_cast<unsigned char>(each) >= ' ' || each == '\n' || (each == '\t' && !inMarkup)) << picture;
    if (each != '<' && each != '>') continue;
    EXPECT_EQ(each == '>', inMarkup) << picture;
    inMarkup = !inMarkup;
  }
}

} // namespace

void play(Bytes input) {
  const platform::AutoreleasePool pool;
  const LeakCheck nothingLeaks;
  Desktop machine;
  const auto image = create<Image>();
  image->isTemplate = input.byte() % 2 == 1;
  const double width = std::abs(input.number<float>());
  const std::string name(input.take(input.byte()));
  image->bytes = input.rest();
  for (const double pixels : {0.0, 16.0, width, 1e9}) {
    const std::string_view png = image->png(pixels);
    EXPECT_TRUE(png.empty() || (image->bytes.find(png) != std::string::npos && png.starts_with("\x89PNG")));
  }

  machine.appKit.screen = CGSize{std::isfinite(width) ? width : 800, 600};
  auto& application = machine.start(name, name);
  machine.applications.frontmost = shared(&application);
  const MenuBarState menuBar{false, shared(&application)};
  expectWellFormed(drawScreen(machine, menuBar));
  Svg svg({100, 100});
  drawImage(svg, *image, {{0, 0}, {width, 20}}, "label");
  svg.text(utf16(name).value_or(u"?"), {1, 1}, {}, "label");
  const Group group(svg, dataAttribute("choose", utf16(name).value_or(u"?")));
  expectWellFormed(std::move(svg).finished());
}

} // namespace desktop
