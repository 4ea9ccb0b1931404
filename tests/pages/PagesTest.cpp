#include "tests/support/TestDesktop.hpp"

#include <regex>

namespace desktop {
namespace {

namespace fs = std::filesystem;

const fs::path project = TARNWICK_SOURCE_DIR;

/// The pages for people, wherever they stand; not those of builds.
std::vector<fs::path> pages() {
  std::vector<fs::path> found;
  for (auto entry = fs::recursive_directory_iterator(project); entry != fs::recursive_directory_iterator(); ++entry) {
    const std::string name = entry->path().filename().string();
    if (name.starts_with('.') || name.starts_with("build")) entry.disable_recursion_pending();
    if (entry->path().extension() == ".md") found.push_back(entry->path());
  }
  return found;
}

/// Where the links and pictures of a page lead to, but for other sites and places of the page itself.
std::vector<std::string> relativeLinks(const std::string& page) {
  static const std::regex link(R"(\]\(([^)#:\s]+)[)#])");
  std::vector<std::string> targets;
  for (std::sregex_iterator each(page.begin(), page.end(), link), end; each != end; ++each)
    targets.push_back((*each)[1]);
  return targets;
}

TEST(Pages, LinkToWhatIsThere) {
  std::size_t links = 0;
  for (const fs::path& page : pages()) {
    for (const std::string& target : relativeLinks(contentsOf(page))) {
      ++links;
      EXPECT_TRUE(fs::exists(page.parent_path() / target)) << page << " links to " << target;
    }
  }
  EXPECT_GT(links, 10U) << "links are not found any more";
}

} // namespace
} // namespace desktop
