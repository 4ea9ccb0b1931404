/// The order of desktop/: who changes a header of platform/ finds its stand-in by name, and no folder looks ahead.
#include "tests/support/TestDesktop.hpp"

#include <algorithm>
#include <regex>

namespace desktop {
namespace {

namespace fs = std::filesystem;

const fs::path root = TARNWICK_SOURCE_DIR;

/// Each includes only itself and those before it. What lies in desktop/ itself puts the first four together.
const std::vector<std::string> folders{"runtime", "foundation", "quartz", "appkit", "", "drawing", "session"};
constexpr std::ptrdiff_t mirrors = 4;

/// Of `foundation/Strings.hpp` foundation, of `Desktop.hpp` nothing.
std::string folderOf(const fs::path& inDesktop) {
  return inDesktop.parent_path().string();
}

std::ptrdiff_t placeOf(const std::string& folder) {
  return std::ranges::find(folders, folder) - folders.begin();
}

/// Paths from desktop/ on.
std::vector<fs::path> files() {
  std::vector<fs::path> found;
  for (const auto& entry : fs::recursive_directory_iterator(root / "desktop")) {
    if (entry.is_regular_file()) found.push_back(fs::relative(entry.path(), root / "desktop"));
  }
  return found;
}

TEST(Rooms, IncludeNoLaterOnes) {
  const std::regex include("#include \"desktop/([^\"]+)\"");
  std::size_t includes = 0;
  for (const fs::path& file : files()) {
    ASSERT_LT(placeOf(folderOf(file)), folders.size()) << "desktop/" << file.string() << " is in no known folder";
    const std::string text = contentsOf(root / "desktop" / file);
    for (std::sregex_iterator each(text.begin(), text.end(), include), end; each != end; ++each, ++includes) {
      const std::string folder = folderOf((*each)[1].str());
      EXPECT_LE(placeOf(folder), placeOf(folderOf(file)))
          << "desktop/" << file.string() << " includes desktop/" << (*each)[1] << ", of a later folder";
    }
  }
  EXPECT_GT(includes, 100U) << "includes are no longer written as this test reads them";
}

TEST(Rooms, HaveAFileForEachPlatformHeader) {
  const std::regex runTimeSide("extern \"C\"|theClass<\"|make<\"");
  const auto all = files();
  std::size_t mirrored = 0;
  for (const auto& entry : fs::directory_iterator(root / "platform")) {
    if (!std::regex_search(contentsOf(entry.path()), runTimeSide)) continue;
    ++mirrored;
    EXPECT_TRUE(std::ranges::any_of(
        all,
        [&](const fs::path& file) { return file.stem() == entry.path().stem() && placeOf(folderOf(file)) < mirrors; }))
        << "platform/" << entry.path().filename().string() << " has no stand-in file of its name in desktop/";
  }
  EXPECT_GT(mirrored, 15U) << "headers no longer look as this test expects";
}

/// On a Mac there is no stand-in to be included.
TEST(Rooms, LeavePortableTestsAlone) {
  const std::regex allowed("<.*|\"(app|platform|remap|settings|tests/portable)/.*");
  const std::regex include("#include ([^\n]*)");
  std::size_t includes = 0;
  for (const auto& entry : fs::directory_iterator(root / "tests/portable")) {
    const std::string text = contentsOf(entry.path());
    for (std::sregex_iterator each(text.begin(), text.end(), include), end; each != end; ++each, ++includes)
      EXPECT_TRUE(std::regex_match((*each)[1].str(), allowed)) << entry.path() << " includes " << (*each)[1];
  }
  EXPECT_GT(includes, 10U);
}

TEST(Rooms, OpenEachHeaderWithASentence) {
  for (const fs::path& file : files()) {
    if (file.extension() != ".hpp") continue;
    EXPECT_TRUE(contentsOf(root / "desktop" / file).starts_with("/// "))
        << "desktop/" << file.string() << " does not say what it is for";
  }
}

} // namespace
} // namespace desktop
