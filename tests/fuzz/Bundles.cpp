/// Bundles with anything in them: what the program asks of one is answered from its dictionary, or not at all.
#include "app/Updates.hpp"
#include "desktop/appkit/Image.hpp"
#include "tests/fuzz/Fuzz.hpp"
#include "tests/support/TestDesktop.hpp"

namespace desktop {
namespace {

namespace fs = std::filesystem;

/// The bits of an input's first byte: what is unusual about the bundle.
enum Unusual : unsigned { NoDictionary = 1, DictionaryIsFolder = 2, NoIcon = 4, NoFramework = 8, ContentsIsFile = 16 };

/// One bundle, written anew for each input: its dictionary, its icon, its framework's code.
void write(const fs::path& bundle, unsigned unusual, std::string_view dictionary, std::string_view icon,
           std::string_view code) {
  const fs::path contents = bundle / "Contents";
  const fs::path framework = contents / "Frameworks/Sparkle.framework";
  fs::remove_all(bundle);
  fs::create_directories(bundle);
  if ((unusual & ContentsIsFile) != 0) return writeFile(contents, std::string(icon));
  fs::create_directories(contents / "Resources");
  if ((unusual & DictionaryIsFolder) != 0) fs::create_directory(contents / "Info.plist");
  if ((unusual & NoDictionary) == 0) writeFile(contents / "Info.plist", std::string(dictionary));
  if ((unusual & NoIcon) == 0) writeFile(contents / "Resources/AppIcon.icns", std::string(icon));
  if ((unusual & NoFramework) != 0) return;
  fs::create_directories(framework);
  writeFile(framework / "Sparkle", std::string(code));
}

/// The string that a dictionary has for a key; null for a value of another kind.
const std::u16string* stringIn(const PropertyList& dictionary, const char16_t* key) {
  const auto& entries = *dictionary.as<PropertyList::Dictionary>();
  const auto found = entries.find(key);
  return found != entries.end() ? found->second.as<std::u16string>() : nullptr;
}

bool isReal(const std::u16string* value) {
  return value != nullptr && !value->empty() && value->find(u"REPLACE_WITH") == std::u16string::npos;
}

} // namespace

void play(Bytes input) {
  static const TemporaryFolder folder;
  const fs::path path = folder.path / "It.app";
  const unsigned unusual = input.byte();
  const auto icon = input.take(input.byte());
  const auto code = input.take(input.byte() % 64);
  const auto bytes = input.rest();
  write(path, unusual, bytes, icon, code);

  const platform::AutoreleasePool outer;
  const LeakCheck nothingLeaks;
  Desktop machine;
  const platform::AutoreleasePool pool;
  PropertyList dictionary = PropertyList::Dictionary();
  const bool isReadable = (unusual & (NoDictionary | DictionaryIsFolder | ContentsIsFile)) == 0;
  if (auto read = parsePropertyList(bytes); isReadable && read && read.value.as<PropertyList::Dictionary>() != nullptr)
    dictionary = std::move(read.value);

  const auto bundle = platform::NSBundle::withURL(platform::NSURL::fileURLWithPath(path.string().c_str()));
  const auto* identifier = stringIn(dictionary, u"CFBundleIdentifier");
  ASSERT_TRUE(bundle);
  EXPECT_EQ(bundle.bundleIdentifier() ? bundle.bundleIdentifier().characters() : u"(none)",
            identifier != nullptr ? *identifier : u"(none)");
  const bool updates = isReal(stringIn(dictionary, u"SUFeedURL")) && isReal(stringIn(dictionary, u"SUPublicEDKey"));
  EXPECT_EQ(tarnwick::isConfiguredForUpdates(bundle), updates);
  const bool hasUpdater = (unusual & (NoFramework | ContentsIsFile)) == 0 &&
                          code.find("SPUStandardUpdaterController") != std::string_view::npos;
  EXPECT_TRUE(!hasUpdater || tarnwick::startUpdater(bundle));
  machine.mainBundle->open(path);
  EXPECT_EQ(Image::applicationIcon()->bytes, (unusual & (NoIcon | ContentsIsFile)) != 0 ? "" : icon);
}

} // namespace desktop
