#include "desktop/session/Help.hpp"
#include "desktop/session/KeyNames.hpp"
#include "desktop/session/Patterns.hpp"
#include "tests/support/Command.hpp"

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

/// What a page shows where these stand.
std::string shown(std::string page, const std::vector<std::pair<std::string, std::string>>& escapes) {
  for (const auto& [escape, sign] : escapes)
    for (std::size_t at = 0; (at = page.find(escape, at)) != std::string::npos; at += sign.size())
      page.replace(at, escape.size(), sign);
  return page;
}

std::string manualPage() {
  return shown(contentsOf(project / "docs" / "tarnwick.1"),
               {{"\\-", "-"}, {"\\(aq", "'"}, {"\\(ga", "`"}, {"\\e", "\\"}});
}

TEST(Pages, ListWhatTheCommandKnows) {
  const std::string manual = manualPage();
  const std::string sessions = shown(contentsOf(project / "docs" / "sessions.md"), {{"\\|", "|"}});
  std::string section = ".SH OPTIONS\n";
  const auto add = [&](const std::string& written, std::string_view purpose) {
    section += ".TP\n.B " + written + '\n' + std::string(purpose) + '\n';
    const std::string row = "\n| `" + written + "` | " + std::string(purpose);
    EXPECT_NE(sessions.find(row), std::string::npos) << "docs/sessions.md lacks" << row;
  };
  const auto expectSection = [&] {
    EXPECT_NE(manual.find(section + ".SH"), std::string::npos) << "docs/tarnwick.1 lacks, all of it:\n" << section;
  };
  for (const Option& option : options)
    add(option.usage(), option.purpose);
  expectSection();
  section = "# starts a comment.\n";
  for (const Pattern& pattern : patterns)
    add(pattern.usage(), pattern.purpose);
  expectSection();
  for (const std::string& page : {manual, sessions})
    for (const std::string& names : {modifierNames(), keyNames()})
      EXPECT_NE(page.find(names), std::string::npos) << "a page lacks " << names;
}

TEST(Pages, ShowAnExampleAsItGoes) {
  const std::string manual = manualPage();
  const auto begin = manual.find(".EX\n> ") + 4;
  std::string example = manual.substr(begin, manual.find(".EE\n") - begin);
  const TemporaryFolder folder;
  Terminal terminal(folder.path, {});
  terminal.shown();
  for (std::size_t size = 0; !example.empty(); example.erase(0, size)) {
    size = std::min(example.find("\n> "), example.size() - 1) + 1;
    const std::string lines = example.substr(2, size - 2);
    const std::string seen = terminal.type(lines.substr(0, lines.find('\n') + 1));
    EXPECT_TRUE(seen.ends_with(lines + (size < example.size() ? "> " : ""))) << seen << "but the page has\n" << lines;
  }
}

} // namespace
} // namespace desktop
